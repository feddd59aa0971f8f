#pragma once

#include <optional>

/// Reads the command line into the run's state. Parsed anew in each pass. Nothing unless an option ends the
/// pass, whose code it then is.
std::optional<int> parseOptions(int argc, char* argv[]);
