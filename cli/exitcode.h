// What the program tells its caller.
#pragma once

namespace KelpCli {

enum ExitCode {
  kGood = 0,     ///< all scenes were read
  kInvalid = 1,  ///< a scene breaks the rules of the language, or `format --check` found something
  kTrouble = 2,  ///< a file cannot be read or written, memory ran out, or the usage is wrong
};

}  // namespace KelpCli
