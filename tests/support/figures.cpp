#include "tests/support/figures.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace KelpTest {

bool hasTimeForAll() {
  const char* wanted = std::getenv("KELP_PROOF");
  return wanted != nullptr && std::string_view(wanted) == "1";
}

void reportFigure(const std::string& layer, const std::string& figure) {
  std::printf("FIGURE|%s|%s\n", layer.c_str(), figure.c_str());
  std::fflush(stdout);
}

std::string grouped(long long number) {
  std::string digits = std::to_string(number);
  for (size_t i = digits.size(); i > 3; i -= 3) digits.insert(i - 3, ",");
  return digits;
}

}  // namespace KelpTest
