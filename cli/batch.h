// The pictures of one call, one after another.
#pragma once

#include "cli/command_line.h"

namespace radiashafts::cli {

inline constexpr char interruptedLine[] = "radiashafts: interrupted\n";

// Reads, renders and writes all jobs with the filter and the mask, which is null for none. While a
// picture is rendered the next filesAtOnce are read and as many written, so of one at a time at
// most three are in memory. Messages come in the jobs' order. One of several jobs that fails is
// told at once, and at the end a Failure names all that did. With failFast, and when the user
// cancels the filter, it is thrown at once, after the jobs before it are written.
void runBatch(const CommandLine& commandLine, standin::EntryPoint entry, const standin::Mask* mask);

}  // namespace radiashafts::cli
