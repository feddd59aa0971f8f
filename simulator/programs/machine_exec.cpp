#include "simulator/programs/machine_exec.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "simulator/files.h"
#include "simulator/machine.h"
#include "simulator/value.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

pid_t child = 0;

void passOn(int signal) {
    if (child > 0) ::kill(child, signal);
}

fs::path ownDirectory() {
    std::error_code error;
    fs::path const program = fs::read_symlink("/proc/self/exe", error);
    return error ? fs::path(".") : program.parent_path();
}

bool executable(fs::path const& file) {
    std::error_code error;
    return fs::is_regular_file(file, error) && ::access(file.c_str(), X_OK) == 0;
}

/// The programs beside this one come first: a build's own kslflash, not one installed earlier.
std::string findProgram(std::string const& name) {
    if (name.find('/') != std::string::npos) return name;
    if (fs::path const beside = ownDirectory() / name; executable(beside)) return beside;
    char const* path = std::getenv("PATH");
    std::string rest = path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin";
    while (true) {
        std::size_t const end = rest.find(':');
        fs::path const place = rest.substr(0, end);
        if (fs::path const file = (place.empty() ? fs::path(".") : place) / name; executable(file))
            return file;
        if (end == std::string::npos) return name;
        rest.erase(0, end + 1);
    }
}

/// The rules of all sources in one list, checked.
json gather(simulator::Machine& machine, std::vector<std::string> const& texts,
            std::vector<std::string> const& files) {
    json rules = json::array();
    auto const add = [&](std::string const& text, std::string const& name) {
        json parsed = simulator::parseJson(text, name);
        if (!parsed.is_array()) parsed = json::array({parsed});
        machine.addFaults(parsed, name);
        rules.insert(rules.end(), parsed.begin(), parsed.end());
    };
    for (std::string const& text : texts)
        add(text, "--fault");
    for (std::string const& file : files)
        add(simulator::readText(file), file);
    return rules;
}

/// Puts `value` before what a variable of the environment holds.
void prepend(char const* variable, std::string const& value, char separator) {
    char const* const old = std::getenv(variable);
    std::string const text = old != nullptr && *old != '\0' ? value + separator + old : value;
    ::setenv(variable, text.c_str(), 1);
}

}  // namespace

int execOnMachine(std::string const& directory, std::vector<std::string> const& faults,
                  std::vector<std::string> const& faultFiles, std::vector<std::string> const& command) {
    simulator::Machine machine(directory);
    json const rules = gather(machine, faults, faultFiles);
    fs::path const library = ownDirectory() / "libksl-door.so";
    if (!fs::exists(library))
        throw simulator::MachineError(library.string() + ": not there, expected beside ksl-machine");

    // The processes of this run share its fault plan and its counters.
    fs::path const runs = machine.directory() / "runs";
    fs::create_directories(runs);
    fs::path const plan = runs / (std::to_string(::getpid()) + ".faults");
    fs::path const counters = runs / (std::to_string(::getpid()) + ".counters");
    simulator::writeText(plan, rules.dump());
    simulator::writeText(counters, "");

    ::setenv("KSL_MACHINE_DIR", fs::canonical(machine.directory()).c_str(), 1);
    ::setenv("KSL_MACHINE_FAULTS", plan.c_str(), 1);
    ::setenv("KSL_MACHINE_RUN", counters.c_str(), 1);
    prepend("LD_PRELOAD", library, ':');
    // The address sanitizer wants to be the first library; behind this one it works as well. A sanitizer's
    // report ends a program with 1, which is also how programs end well.
    prepend("ASAN_OPTIONS", "verify_asan_link_order=0:exitcode=99", ':');
    prepend("UBSAN_OPTIONS", "exitcode=99", ':');

    std::string const program = findProgram(command[0]);
    std::vector<char*> arguments;
    for (std::string const& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    child = ::fork();
    if (child < 0)
        throw simulator::MachineError(std::string("no process can be made: ") + std::strerror(errno));
    if (child == 0) {
        ::execv(program.c_str(), arguments.data());
        int const error = errno;
        std::fprintf(stderr, "ksl-machine: %s can't be run: %s\n", command[0].c_str(), std::strerror(error));
        ::_exit(error == ENOENT ? 127 : 126);
    }
    // A terminal sends its signals to the command as well; others are passed on.
    std::signal(SIGINT, SIG_IGN);
    std::signal(SIGQUIT, SIG_IGN);
    std::signal(SIGTERM, passOn);
    std::signal(SIGHUP, passOn);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    std::error_code ignored;
    fs::remove(plan, ignored);
    fs::remove(counters, ignored);
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}
