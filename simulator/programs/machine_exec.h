#pragma once

#include <string>
#include <vector>

/// Runs a command on the machine in `directory`: the program's paths and requests go through the preloaded
/// library that lies beside this one. `faults` are JSON texts of one rule or a list, `faultFiles` files of
/// such. Returns the command's exit status; 128 and the signal's number for one that was killed; 126 and 127,
/// as shells do, for one that can't be run. Throws ScenarioError and MachineError.
int execOnMachine(std::string const& directory, std::vector<std::string> const& faults,
                  std::vector<std::string> const& faultFiles, std::vector<std::string> const& command);
