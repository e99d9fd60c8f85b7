#include "kelp/source/streamedtext.h"

#include <algorithm>
#include <utility>

namespace Kelp {

namespace {

bool startsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }

// From where on a place needs its line: from the line's start, if that is not too far away.
const char* neededFrom(const SourcePosition& place) {
  if (place.at - place.lineStart <= SourcesReader::kLineContext) return place.lineStart;
  constexpr int kLongestCharacter = 4;
  const char* from = place.at - SourcesReader::kLineContext;
  for (int i = 0; i < kLongestCharacter && !startsCharacter(*from); ++i) ++from;
  return from;
}

}  // namespace

StreamedText::StreamedText(TextInput input, const char* name, size_t windowBytes)
    : window(std::move(input.read), windowBytes), expectedBytes(input.size) {
  source.name = CharString(name);
  source.directory = CharString(directoryOfFile(name).c_str());
  source.device = input.device;
  source.inode = input.inode;
  _show();
  _fill();
}

void StreamedText::readOn(std::initializer_list<SourcePosition*> places) {
  const auto isHere = [this](const SourcePosition* place) { return place->source == &source; };
  const char* from = source.end;
  for (const SourcePosition* place : places) {
    if (isHere(place)) from = std::min(from, neededFrom(*place));
  }
  int64_t cut = 0;
  for (const SourcePosition* place : places) {
    if (!isHere(place) || place->lineStart >= from) continue;
    cut = place->lineStart == source.begin ? source.cutCharacters : 0;
    cut += std::count_if(place->lineStart, from, startsCharacter);
    break;  // they all stand behind `from`, and so in this line
  }
  window.slide(from);
  for (SourcePosition* place : places) {
    if (!isHere(place)) continue;
    place->at = window.begin() + (place->at - from);
    place->lineStart = window.begin() + (std::max(place->lineStart, from) - from);
  }
  source.cutCharacters = cut;
  _show();
  _fill();
}

void StreamedText::close() {
  window = TextWindow([](char*, size_t) { return size_t{0}; }, 0);
  window.fill();
  source.cutCharacters = 0;
  _show();
}

void StreamedText::_fill() {
  const auto before = window.end() - window.begin();
  struct Shown {
    StreamedText& text;
    ~Shown() { text._show(); }
  } const shown{*this};
  window.fill();
  streamedBytes += window.end() - window.begin() - before;
}

void StreamedText::_show() {
  source.begin = window.begin();
  source.end = window.end();
  source.goesOn = window.goesOn();
}

}  // namespace Kelp
