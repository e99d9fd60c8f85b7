// The commands of the program, each in a file of its own.
#pragma once

#include "cli/exitcode.h"
#include "cli/options.h"

namespace KelpCli {

/// Reads every file and says what is wrong with it. Throws WriteFailure.
ExitCode runCheck(const Options& options);

/// Writes the tree of one file. Throws WriteFailure.
ExitCode runDump(const Options& options);

/// Lays the text of files out. Throws WriteFailure, but for files that are rewritten.
ExitCode runFormat(const Options& options);

/// Writes a table of the objects of one file. Throws WriteFailure.
ExitCode runList(const Options& options);

/// Writes one object of a file, or one of its properties. Throws WriteFailure.
ExitCode runShow(const Options& options);

/// Counts what files hold. Throws WriteFailure.
ExitCode runStats(const Options& options);

}  // namespace KelpCli
