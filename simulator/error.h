#pragma once

#include <stdexcept>

namespace simulator {

/// The machine's directory can't be made, read or written. The message names the path.
class MachineError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A scenario, a fault plan or a file of them isn't right. The message names the file and the place in it,
/// what was found and what was expected.
class ScenarioError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace simulator
