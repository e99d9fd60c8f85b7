// What a test has proved, in figures: `make proof` collects them into its table.
#pragma once

#include <string>

namespace KelpTest {

/// Whether there is time for the full number of cases (KELP_PROOF=1 in the environment); in
/// everyday runs tests of models and random cases do a small part of them.
bool hasTimeForAll();

/// Prints one figure for the table of `make proof`. `layer` is a word or two ("derived negatives"),
/// `figure` what was counted, with its unit ("93,412 cases, live counts back in all").
void reportFigure(const std::string& layer, const std::string& figure);

/// 1234567 as "1,234,567".
std::string grouped(long long number);

}  // namespace KelpTest
