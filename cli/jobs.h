// Doing the same with many files, in several processes if wished.
#pragma once

#include <functional>
#include <string>

#include "cli/exitcode.h"
#include "cli/filenames.h"
#include "cli/output.h"

namespace CLI {
class App;
}

namespace KelpCli {

/// --jobs N. Adds --files-from, too: who has many files has a list of them.
void addJobs(CLI::App& command, Options& options);

/// What is done with a file: prints to the output and to standard error, and says how it went.
using FileWork = std::function<ExitCode(const std::string& file, Output& output)>;

/// Does it with all files and gives the worst result. With more than one job, processes of their
/// own share the files, for pools of nodes belong to one thread; what is printed comes in the order
/// of the files all the same, and a process that dies is reported for the file it was at, and for
/// no other. Throws WriteFailure, UsageError, InvalidSourceFile.
ExitCode forEachFile(const Options& options, Output& output, const FileWork& work);

}  // namespace KelpCli
