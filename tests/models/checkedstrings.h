// Strings side by side with a model of them.
#pragma once

#include <array>
#include <memory>
#include <string>

#include "kelp/utils/charstring.h"
#include "tests/models/choices.h"
#include "tests/models/shortage.h"

namespace KelpTest {

/// Some handles, and what they hold and share by the rules.
class CheckedStrings {
 public:
  CheckedStrings(Choices& source, Shortage& memory) : choices(source), shortage(memory) {}

  /// One operation on one handle, then everything is compared. Throws Mismatch.
  void step();

 private:
  static constexpr size_t kHandles = 6;
  using Buffer = std::shared_ptr<std::string>;

  void assignHandle(size_t i);
  void assignText(size_t i);
  void split(size_t i);
  void setParts(size_t i);
  void appendText(size_t i);
  void join(size_t i);
  bool ownsAlone(size_t i) const { return model[i] != nullptr && model[i].use_count() == 1; }
  void write(size_t i, const std::string& text);
  std::string madeText();
  const char* chosenArgument(std::string& made);
  void compare() const;

  Choices& choices;
  Shortage& shortage;
  std::array<Kelp::CharString, kHandles> handles;
  std::array<Buffer, kHandles> model;
};

}  // namespace KelpTest
