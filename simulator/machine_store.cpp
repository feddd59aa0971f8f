/// The machine's directory: making it, reading it, and keeping it as the machine changes.

#include <algorithm>

#include "simulator/machine_core.h"
#include "simulator/virtual_clock.h"

namespace simulator {

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

constexpr char const* OWN_ENTRIES[] = {"machine.json", "state.json",    "state.json.new",
                                       "clock",        "journal.jsonl", "lock",
                                       "firmware",     "root",          "runs"};
constexpr std::uintmax_t LARGEST_SCENARIO = 16 * 1024 * 1024;

std::string clockText(std::uint64_t sequence, std::uint64_t microseconds) {
    char text[CLOCK_SIZE + 1];
    formatClock({sequence, microseconds}, text);
    return text;
}

/// A device's state with that of what is behind it.
json wholeState(Device const& device) {
    json state = device.saveState();
    for (ScsiTarget const* const target : device.targets())
        if (!target->pristine()) state["targets"][target->name()] = target->saveState();
    return state;
}

json stateOf(std::map<std::string, json> const& devices, std::set<std::string> const& vanished) {
    return {{"devices", devices}, {"vanished", vanished}};
}

/// Throws MachineError unless `directory` is absent, empty or a machine.
void refuseForeignDirectory(fs::path const& directory) {
    std::error_code error;
    if (!fs::exists(directory, error)) return;
    if (!fs::is_directory(directory, error))
        throw MachineError(directory.string() + " is not a directory, expected a place for a machine");
    bool const empty = fs::is_empty(directory, error);
    if (error) throw MachineError(directory.string() + " can't be read: " + error.message());
    if (!empty &&
        (!fs::exists(directory / "machine.json", error) || !fs::exists(directory / "state.json", error)))
        throw MachineError(
            directory.string() +
            " is neither empty nor a machine (a machine has machine.json and state.json); it is left alone");
}

void make(fs::path const& given, json const& document, std::string const& name, std::string const& text) {
    fs::path const directory = fs::absolute(given);
    Scenario const scenario = readScenario(Value(document, name), directory / "firmware");
    refuseForeignDirectory(directory);
    try {
        for (char const* entry : OWN_ENTRIES)
            fs::remove_all(directory / entry);
        fs::create_directories(directory / "firmware");
    } catch (fs::filesystem_error const& error) {
        throw MachineError(error.path1().string() + " can't be made: " + error.code().message());
    }
    makeFileTree(directory / "root", scenario.devices);
    makeMachineFiles(directory / "root", scenario.files, scenario.devices);
    std::map<std::string, json> states;
    for (auto const& device : scenario.devices) {
        device->initialise();
        for (ScsiTarget* const target : device->targets())
            target->initialise();
        states[device->frame().name] = wholeState(*device);
    }
    writeText(directory / "machine.json", text);
    writeText(directory / "state.json", stateOf(states, {}).dump(1) + "\n");
    writeText(directory / "clock", clockText(2, 0));
    JournalEntry entry;
    entry.sequence = 1;
    entry.event = "machine";
    entry.text = scenario.name;
    writeText(directory / "journal.jsonl", toJson(entry).dump() + "\n");
}

}  // namespace

void Machine::create(fs::path const& directory, fs::path const& scenarioFile) {
    std::error_code error;
    std::uintmax_t const size = fs::file_size(scenarioFile, error);
    if (error)
        throw ScenarioError(scenarioFile.string() + ": " + error.message() + ", expected a scenario file");
    if (size > LARGEST_SCENARIO)
        throw ScenarioError(scenarioFile.string() + ": found " + std::to_string(size) +
                            " bytes, expected at most " + std::to_string(LARGEST_SCENARIO));
    std::string const text = readText(scenarioFile);
    make(directory, parseJson(text, scenarioFile.string()), scenarioFile.string(), text);
}

void Machine::create(fs::path const& directory, json const& scenario) {
    make(directory, scenario, "scenario", scenario.dump(2) + "\n");
}

MachineCore::MachineCore(fs::path const& given) : directory(fs::absolute(given)) {
    std::error_code error;
    fs::path const file = directory / "machine.json";
    if (!fs::exists(file, error))
        throw MachineError(directory.string() + " is no machine: there is no machine.json in it");
    json const document = parseJson(readText(file), file.string());
    scenario = readScenario(Value(document, file.string()), directory / "firmware");
    for (auto const& device : scenario.devices)
        if (!device->frame().node.empty()) m_byNode[device->frame().node] = device.get();
}

Device* MachineCore::find(std::string const& node) {
    auto const found = m_byNode.find(node);
    return found == m_byNode.end() ? nullptr : found->second;
}

/// Reads state.json if another process has written it since. It is always replaced as a whole, so another
/// inode or time means other contents.
void MachineCore::loadState() {
    fs::path const file = directory / "state.json";
    struct ::stat now {};
    bool const known = ::stat(file.c_str(), &now) == 0 && now.st_ino == m_stateFile.st_ino &&
                       now.st_mtim.tv_sec == m_stateFile.st_mtim.tv_sec &&
                       now.st_mtim.tv_nsec == m_stateFile.st_mtim.tv_nsec &&
                       now.st_size == m_stateFile.st_size;
    if (known) return;
    json const state = parseJson(readText(file), file.string());
    try {
        for (auto const& device : scenario.devices) {
            json const& own = state.at("devices").at(device->frame().name);
            device->loadState(own);
            json const none = json::object();
            json const& behind = own.contains("targets") ? own.at("targets") : none;
            for (ScsiTarget* const target : device->targets()) {
                target->reset();
                auto const kept = behind.find(target->name());
                if (kept != behind.end())
                    target->loadState(*kept);
                else if (!target->pristine())
                    throw MachineError(file.string() + " doesn't fit machine.json: no state of " +
                                       target->name());
            }
            m_saved[device->frame().name] = own;
        }
        vanished = state.at("vanished").get<std::set<std::string>>();
        m_savedVanished = vanished;
    } catch (json::exception const& error) {
        throw MachineError(file.string() + " doesn't fit machine.json: " + error.what());
    }
    m_stateFile = now;
}

void MachineCore::begin() {
    m_lines.clear();
    m_stateChanged = false;
    if (m_underWay) m_stateFile = {};
    m_underWay = true;
    loadState();
    fs::path const file = directory / "clock";
    m_clockText = readText(file);
    ClockReading reading;
    if (!parseClock(m_clockText.c_str(), reading))
        throw MachineError(file.string() + " doesn't hold a number and a time");
    m_sequence = reading.sequence;
    clock = reading.microseconds;
    std::error_code error;
    if (!runFile.empty() && fs::exists(runFile, error)) scenario.faults.setCounters(readText(runFile));
    m_exchanges = scenario.faults.exchanges();
}

void MachineCore::commit() {
    if (!m_lines.empty()) appendText(directory / "journal.jsonl", m_lines);
    if (m_stateChanged || vanished != m_savedVanished) {
        fs::path const file = directory / "state.json";
        replaceText(file, stateOf(m_saved, vanished).dump(1) + "\n");
        m_savedVanished = vanished;
        if (::stat(file.c_str(), &m_stateFile) != 0) m_stateFile = {};
    }
    if (std::string const text = clockText(m_sequence, clock); text != m_clockText)
        overwriteText(directory / "clock", text);
    if (!runFile.empty() && scenario.faults.exchanges() != m_exchanges)
        overwriteText(runFile, scenario.faults.counters());
    m_underWay = false;
}

void MachineCore::journal(JournalEntry entry) {
    entry.sequence = m_sequence++;
    m_lines += toJson(entry).dump(-1, ' ', false, json::error_handler_t::replace) + '\n';
}

void MachineCore::journalEvent(std::string const& event, std::string const& device, std::string const& text) {
    JournalEntry entry;
    entry.event = event;
    entry.microseconds = clock;
    entry.device = device;
    entry.text = text;
    journal(std::move(entry));
}

void MachineCore::changed(Device const& device) {
    json state = wholeState(device);
    json& saved = m_saved[device.frame().name];
    if (state == saved) return;
    saved = std::move(state);
    m_stateChanged = true;
}

}  // namespace simulator
