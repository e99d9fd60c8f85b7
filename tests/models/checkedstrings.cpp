#include "tests/models/checkedstrings.h"

#include <algorithm>
#include <cstring>

#include "tests/models/mismatch.h"

namespace KelpTest {

void CheckedStrings::step() {
  const size_t i = choices.below(kHandles);
  switch (choices.below(8)) {
    case 0:
      handles[i].freeMem();
      model[i].reset();
      break;
    case 1:
    case 2:
      assignHandle(i);
      break;
    case 3:
      assignText(i);
      break;
    case 4:
      split(i);
      break;
    case 5:
      setParts(i);
      break;
    case 6:
      appendText(i);
      break;
    default:
      join(i);
  }
  compare();
}

void CheckedStrings::assignHandle(size_t i) {
  const size_t other = choices.below(kHandles);
  if (choices.oneIn(4) && other != i) {
    handles[i] = std::move(handles[other]);
    model[i] = std::move(model[other]);
    model[other].reset();
  } else {
    handles[i] = handles[other];
    model[i] = model[other];
  }
}

void CheckedStrings::assignText(size_t i) {
  std::string made;
  const char* text = chosenArgument(made);
  const MaybeText expected = text != nullptr ? MaybeText(text) : MaybeText();
  if (!shortage.run([&] { handles[i] = text; })) return;
  if (expected) {
    write(i, *expected);
  } else {
    model[i].reset();
  }
}

// What lies in the split buffer is settled only where an old text is kept; the rest is written
// here.
void CheckedStrings::split(size_t i) {
  const int length = static_cast<int>(choices.below(120)) - 2;
  const int keep = static_cast<int>(choices.below(2));
  const bool kept = ownsAlone(i) || (model[i] != nullptr && keep != 0);
  if (!shortage.run([&] { handles[i].splitBuffer(length, keep); })) return;
  const size_t room = length < 0 ? 0 : static_cast<size_t>(length);
  const std::string expected = kept ? model[i]->substr(0, room) : std::string(room, 's');
  char* data = handles[i].buffer->data;
  if (kept) {
    expectThat("the kept text", std::memcmp(data, expected.data(), expected.size()) == 0);
  } else {
    std::memset(data, 's', room);
  }
  data[expected.size()] = '\0';
  write(i, expected);
}

void CheckedStrings::setParts(size_t i) {
  std::string made[2];
  const char* first = chosenArgument(made[0]);
  const char* second = chosenArgument(made[1]);
  const bool whole = first != nullptr && second != nullptr && *first != '\0' && *second != '\0';
  const std::string expected = whole ? std::string(first) + second : "";
  if (!shortage.run([&] { handles[i].set(first, second); })) return;
  if (whole) {
    write(i, expected);
  } else {
    model[i].reset();
  }
}

void CheckedStrings::appendText(size_t i) {
  std::string made;
  const char* piece = chosenArgument(made);
  const MaybeText expected =
      piece == nullptr ? MaybeText() : (model[i] != nullptr ? *model[i] : std::string()) + piece;
  if (!shortage.run([&] { handles[i].append(piece); })) return;
  if (expected) write(i, *expected);
}

void CheckedStrings::join(size_t i) {
  std::string made[3];
  const char* pieces[3] = {};
  MaybeText expected;
  for (size_t k = 0; k < 3; ++k) {
    pieces[k] = chosenArgument(made[k]);
    if (pieces[k] != nullptr) expected = expected.value_or("") + pieces[k];
  }
  if (!shortage.run([&] { handles[i] = Kelp::makeCharString(pieces[0], pieces[1], pieces[2]); })) {
    return;
  }
  model[i] = expected ? std::make_shared<std::string>(*expected) : nullptr;
}

// Whoever owns a buffer alone writes into it, everybody else gets a new one.
void CheckedStrings::write(size_t i, const std::string& text) {
  if (ownsAlone(i)) {
    *model[i] = text;
  } else {
    model[i] = std::make_shared<std::string>(text);
  }
}

std::string CheckedStrings::madeText() {
  static constexpr uint32_t kLengths[] = {0, 1, 2, 3, 38, 39, 40, 41, 100, 300};
  const uint32_t length = kLengths[choices.below(std::size(kLengths))];
  return std::string(length, static_cast<char>('a' + choices.below(26)));
}

// Null, a new text, or a place inside the text of a handle.
const char* CheckedStrings::chosenArgument(std::string& made) {
  constexpr size_t kLongest = 2000;
  const uint32_t kind = choices.below(8);
  if (kind == 0) return nullptr;
  const size_t other = choices.below(kHandles);
  if (kind > 3 || model[other] == nullptr || model[other]->size() > kLongest) {
    made = madeText();
    return made.c_str();
  }
  return handles[other].chars() + choices.below(static_cast<uint32_t>(model[other]->size()) + 1);
}

void CheckedStrings::compare() const {
  for (size_t i = 0; i < kHandles; ++i) {
    expectSame("null", model[i] == nullptr, handles[i].isNull());
    if (model[i] == nullptr) continue;
    expectThat("the text", *model[i] == handles[i].chars());
    expectSame("the length", model[i]->size(), static_cast<size_t>(handles[i].length()));
    expectSame("handles on the buffer", model[i].use_count(),
               long{handles[i].buffer->referenceCount});
    for (size_t k = 0; k < i; ++k) {
      expectSame("a shared buffer", model[i] == model[k], handles[i].buffer == handles[k].buffer);
      expectSame("equality", model[k] != nullptr && *model[i] == *model[k],
                 handles[i] == handles[k]);
    }
  }
}

}  // namespace KelpTest
