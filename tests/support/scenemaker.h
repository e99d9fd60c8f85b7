// Scenes drawn at random that between them hold every form of the language.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace KelpTest {

/// The same number gives the same scene everywhere.
class SceneMaker {
 public:
  explicit SceneMaker(uint64_t number) : random(number * 2 + 1) {}

  /// A scene that is good: its tokens with anything between them that may stand there, comments
  /// included.
  std::string scene();

 private:
  uint32_t below(uint32_t limit) { return static_cast<uint32_t>(random() % limit); }
  std::string oneOf(const std::vector<const char*>& choices) {
    return choices[below(static_cast<uint32_t>(choices.size()))];
  }

  void add(const std::string& token) { tokens.push_back(token); }
  void addObject();
  void addProperty();
  void addSum(int depth);
  void addTerm(int depth);
  void addAtom(int depth);
  void addReference(int depth);
  void addCall(int depth);
  void addArguments(const char* name, int count, int depth);
  void addInterpolation(int depth);
  void addTypedList();
  void addHexForm();
  void addSignedNumber();
  std::string name();
  std::string number();
  std::string text();
  std::string gap();
  std::string joined();

  std::mt19937_64 random;
  std::vector<std::string> tokens;
};

}  // namespace KelpTest
