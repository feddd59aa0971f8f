#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "simulator/machine.h"

/// What a program left behind.
struct RunResult {
    int status = -1;     ///< exit status, or 128 and the signal
    std::string output;  ///< standard output
    std::string errors;  ///< standard error
};

/// Runs a program with `input` on standard input in `directory` and waits for it.
RunResult runProgram(std::vector<std::string> const& arguments, std::filesystem::path const& directory,
                     std::string const& input = "");

std::string readText(std::filesystem::path const& file);
void writeText(std::filesystem::path const& file, std::string const& text);

/// A firmware package of the build, copied to a directory of its own, with the machine of its scenario; both
/// go when it goes.
class PackageRun {
  public:
    explicit PackageRun(std::string const& package);
    ~PackageRun();
    PackageRun(PackageRun const&) = delete;
    PackageRun& operator=(PackageRun const&) = delete;

    /// The package's files, and where the program runs.
    std::filesystem::path const& directory() const { return m_directory; }
    std::filesystem::path machineDirectory() const { return m_directory / "M"; }

    /// A new machine of the scenario in the package's folder, as it left the factory.
    void resetMachine() const;
    /// kslflash on the machine; `faults` are rules of the fault plan as JSON texts.
    RunResult flash(std::vector<std::string> const& arguments, std::string const& input = "",
                    std::vector<std::string> const& faults = {}) const;
    void powerCycle() const;

    std::vector<simulator::DeviceSummary> devices() const;
    /// "left 6.40/6.64 restart needed": name, running and stored firmware, state.
    std::string firmware(std::string const& device) const;
    std::vector<simulator::JournalEntry> journal() const;
    simulator::Bytes romImage(std::string const& device) const;
    /// The name of the package's file whose bytes are the device's stored firmware, or whose S-records are;
    /// empty when there is none.
    std::string fileStoredIn(std::string const& device) const;

    std::string componentLog() const { return readText(logDirectory() / "Component.log"); }
    std::string verboseLog() const { return readText(logDirectory() / "Verbose.log"); }
    std::filesystem::path logDirectory() const { return machineDirectory() / "root/var/ksl"; }
    void removeLogs() const;

  private:
    std::filesystem::path m_directory;
};

/// The program `name` of the build.
std::string builtProgram(std::string const& name);
