#pragma once

#include <string>

#include "tests/support/package_run.h"

/// Compares the verbose log with tests/program/transcripts/<name>.log. With KSL_REWRITE_LOGS set the file is
/// written anew, to be read line by line before it is committed.
void expectVerboseLog(PackageRun const& package, std::string const& name);
