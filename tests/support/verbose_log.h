#pragma once

#include <string>

#include "tests/support/package_run.h"

/// Compares with the file `name` in tests/program/transcripts. With KSL_REWRITE_LOGS set the file is written
/// anew, to be read line by line before it is committed.
void expectTranscript(std::string const& text, std::string const& name);

/// The same for the verbose log of a run and <name>.log. Addresses and times of day are replaced by words,
/// and a device's list of attributes becomes one line.
void expectVerboseLog(PackageRun const& package, std::string const& name);
