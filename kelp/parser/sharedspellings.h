// SharedSpellings: one buffer for a name that a text gives again and again.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "kelp/utils/charstring.h"

namespace Kelp {

/// A small table of names that came at least twice. Scenes repeat a few types and property names in
/// every object; sharing them saves an allocation each, and whoever writes to one of them gets a
/// copy as always. Names that come once, as those of most objects, do not drive them out.
class SharedSpellings {
 public:
  /// Shares spellings for the time of a parse, and forgets them all at its end.
  class Use {
   public:
    explicit Use(SharedSpellings& table) : spellings(table) { spellings.isInUse = true; }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    ~Use() {
      spellings.isInUse = false;
      spellings.slots.reset();
    }

   private:
    SharedSpellings& spellings;
  };

  /// A string of these characters, none of which is NUL; from the third time on the same buffer as
  /// the second time, while the table is in use and remembers it. Throws std::bad_alloc.
  CharString share(std::string_view spelling);

 private:
  struct Slot {
    CharString text;
    size_t length = 0;
    uint64_t mix = 0;      // of the text
    uint64_t lastMix = 0;  // of the spelling that last looked for the slot and was not the text
  };
  static constexpr size_t kSlots = 1024;
  static constexpr size_t kLongest = 64;  // longer ones are no names

  std::unique_ptr<Slot[]> slots;  // made when the first name comes
  bool isInUse = false;
};

}  // namespace Kelp
