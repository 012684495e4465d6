// The pictures of one call, one after another.
#pragma once

#include "cli/command_line.h"

namespace radiashafts::cli {

inline constexpr char interruptedLine[] = "radiashafts: interrupted\n";

// Reads, renders and writes all jobs with the filter and the mask, which is null for none. While a
// picture is rendered the next one is read and the last one written, so at most three are in
// memory. Messages come in the jobs' order. Throws a Failure of the first job that fails, after the
// jobs before it are written; those after it are not.
void runBatch(const CommandLine& commandLine, standin::EntryPoint entry, const standin::Mask* mask);

}  // namespace radiashafts::cli
