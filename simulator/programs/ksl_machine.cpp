/// ksl-machine: the command line of the virtual machine room.

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "simulator/machine.h"
#include "simulator/programs/machine_exec.h"

namespace {

using Arguments = std::vector<std::string>;

/// A mistake on the command line; the message says what was found and what was expected.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

bool takeFlag(Arguments& arguments, std::string const& flag) {
    auto const found = std::find(arguments.begin(), arguments.end(), flag);
    if (found == arguments.end()) return false;
    arguments.erase(found);
    return true;
}

void expect(Arguments const& arguments, std::size_t count, char const* form) {
    for (std::string const& argument : arguments)
        if (argument.size() > 1 && argument[0] == '-')
            throw UsageError("found the option \"" + argument + "\", expected " + form);
    if (arguments.size() != count)
        throw UsageError("found " + std::to_string(arguments.size()) + " arguments, expected " + form);
}

int init(Arguments arguments) {
    expect(arguments, 2, "init DIR SCENARIO");
    simulator::Machine::create(arguments[0], std::filesystem::path(arguments[1]));
    return 0;
}

int exec(Arguments arguments) {
    Arguments faults;
    Arguments files;
    std::string directory;
    std::size_t i = 0;
    for (; i < arguments.size() && arguments[i] != "--"; ++i) {
        bool const option = arguments[i] == "--fault" || arguments[i] == "--faults";
        if (option && i + 1 == arguments.size())
            throw UsageError(arguments[i] + ": found no value, expected one");
        if (option) {
            (arguments[i] == "--fault" ? faults : files).push_back(arguments[i + 1]);
            ++i;
        } else if (directory.empty() && !arguments[i].starts_with("-")) {
            directory = arguments[i];
        } else {
            throw UsageError("found \"" + arguments[i] +
                             "\", expected exec [--fault JSON]... [--faults FILE]... DIR -- CMD ...");
        }
    }
    if (directory.empty() || i + 1 >= arguments.size())
        throw UsageError("exec: expected DIR, then --, then a command");
    return execOnMachine(directory, faults, files,
                         {arguments.begin() + static_cast<std::ptrdiff_t>(i) + 1, arguments.end()});
}

nlohmann::json toJson(simulator::DeviceSummary const& row) {
    nlohmann::json nvram = nlohmann::json::object();
    for (auto const& [offset, byte] : row.nvram)
        nvram[std::to_string(offset)] = byte;
    return {{"name", row.name},         {"kind", row.kind},       {"node", row.node},
            {"product", row.product},   {"running", row.running}, {"stored", row.stored},
            {"inactive", row.inactive}, {"state", row.state},     {"nvram", nvram}};
}

void printTable(std::vector<Arguments> const& rows) {
    std::vector<std::size_t> widths;
    for (Arguments const& row : rows) {
        widths.resize(std::max(widths.size(), row.size()), 0);
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    }
    for (Arguments const& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            line += row[i];
            if (i + 1 < row.size()) line.append(widths[i] - row[i].size() + 2, ' ');
        }
        std::cout << line << '\n';
    }
}

int show(Arguments arguments) {
    bool const json = takeFlag(arguments, "--json");
    expect(arguments, 1, "show DIR [--json]");
    std::vector<simulator::DeviceSummary> const devices = simulator::Machine(arguments[0]).devices();
    if (json) {
        nlohmann::json list = nlohmann::json::array();
        for (simulator::DeviceSummary const& row : devices)
            list.push_back(toJson(row));
        std::cout << list.dump(2) << '\n';
        return 0;
    }
    std::vector<Arguments> rows = {
        {"DEVICE", "KIND", "NODE", "PRODUCT", "RUNS", "STORED", "INACTIVE", "STATE"}};
    auto const cell = [](std::string const& text) { return text.empty() ? std::string("-") : text; };
    for (simulator::DeviceSummary const& row : devices)
        rows.push_back({row.name, row.kind, cell(row.node), cell(row.product), cell(row.running),
                        cell(row.stored), cell(row.inactive), row.state});
    printTable(rows);
    return 0;
}

int journal(Arguments arguments) {
    bool const json = takeFlag(arguments, "--json");
    expect(arguments, 1, "journal DIR [--json]");
    simulator::Machine const machine(arguments[0]);
    if (json) {
        std::ifstream lines(machine.directory() / "journal.jsonl", std::ios::binary);
        if (lines.peek() != std::ifstream::traits_type::eof()) std::cout << lines.rdbuf();
        return 0;
    }
    simulator::printJournal(machine.journal(), std::cout);
    return 0;
}

int powerCycle(Arguments arguments) {
    expect(arguments, 1, "power-cycle DIR");
    simulator::Machine(arguments[0]).powerCycle();
    return 0;
}

int help(Arguments arguments);

struct Command {
    char const* name;
    char const* form;
    char const* text;
    int (*run)(Arguments);
};

constexpr Command COMMANDS[] = {
    {"init", "init DIR SCENARIO", "make a machine in DIR from a scenario file, over an older one", init},
    {"exec", "exec [--fault JSON]... [--faults FILE]... DIR -- CMD ...",
     "run CMD on it; the exit status is CMD's, 128 and the signal's number if it was killed", exec},
    {"show", "show DIR [--json]", "its devices and the firmware that each holds", show},
    {"journal", "journal DIR [--json]", "what was exchanged", journal},
    {"power-cycle", "power-cycle DIR", "power off and on: what was written and deferred takes effect",
     powerCycle},
    {"--help", "--help", "this text", help},
};

int help(Arguments) {
    std::cout << "ksl-machine: virtual machines to try firmware updates on\n\n";
    for (Command const& command : COMMANDS)
        std::cout << "  ksl-machine " << command.form << "\n      " << command.text << '\n';
    std::cout
        << "\nCMD is looked for beside ksl-machine and then in PATH. A fault is a rule of the scenario's\n"
           "\"faults\", for instance '{\"match\": {\"exchange\": 7}, \"action\": {\"errno\": \"EIO\"}}'.\n"
           "Exit status 2: bad arguments, a bad scenario or a directory that can't be used.\n";
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    Arguments arguments(argv + 1, argv + argc);
    std::string const name = arguments.empty() ? "" : arguments[0];
    if (!arguments.empty()) arguments.erase(arguments.begin());
    try {
        for (Command const& command : COMMANDS)
            if (name == command.name) return command.run(std::move(arguments));
        throw UsageError("found \"" + name + "\", expected init, exec, show, journal, power-cycle or --help");
    } catch (std::exception const& error) {
        std::cerr << "ksl-machine: " << error.what() << '\n';
        return 2;
    }
}
