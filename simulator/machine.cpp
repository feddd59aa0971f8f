#include "simulator/machine.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "simulator/csmi_records.h"
#include "simulator/files.h"
#include "simulator/machine_core.h"
#include "simulator/virtual_clock.h"

namespace simulator {

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

constexpr std::uint64_t SHORTEST_EXCHANGE = 1000;  // microseconds
constexpr std::uint64_t POWER_CYCLE_TIME = 120'000'000;

char const* directionName(Direction direction) {
    constexpr char const* names[] = {"none", "in", "out", "both"};
    return names[static_cast<int>(direction)];
}

std::string outcomeText(Command const& command, Reply const& reply) {
    if (reply.error != 0) return "errno " + errorName(reply.error);
    char text[64];
    if (reply.scsiStatus == CHECK_CONDITION) {
        std::snprintf(text, sizeof text, "status 2 sense %X/%02X/%02X", reply.sense.key, reply.sense.asc,
                      reply.sense.ascq);
    } else if (reply.scsiStatus != 0) {
        std::snprintf(text, sizeof text, "status %u", reply.scsiStatus);
    } else if (reply.commandStatus == COMMAND_UNDERRUN) {
        std::snprintf(text, sizeof text, "underrun, %zu of %zu", reply.data.size(), command.room());
    } else if (reply.commandStatus != COMMAND_DONE) {
        std::snprintf(text, sizeof text, "command status %u", reply.commandStatus);
    } else {
        return "good";
    }
    return text;
}

/// A fault that keeps the command from the device.
Reply refusal(FaultRule const& rule) {
    Reply reply;
    reply.error = rule.kind == FaultKind::Errno ? rule.error : rule.kind == FaultKind::Vanish ? ENODEV : 0;
    reply.scsiStatus = rule.kind == FaultKind::Status ? rule.scsiStatus : 0;
    reply.sense = rule.sense;
    if (rule.kind == FaultKind::CommandStatus) reply.commandStatus = rule.commandStatus;
    if (rule.kind == FaultKind::Status) reply.commandStatus = COMMAND_TARGET_STATUS;
    return reply;
}

bool refuses(FaultRule const& rule) {
    return rule.kind == FaultKind::Errno || rule.kind == FaultKind::Vanish ||
           rule.kind == FaultKind::Status || rule.kind == FaultKind::CommandStatus;
}

/// A fault that changes the reply of a command that the device carried out.
void spoil(FaultRule const& rule, Command const& command, Reply& reply) {
    std::size_t const available = std::min(reply.data.size(), command.room());
    switch (rule.kind) {
        case FaultKind::Truncate: {
            std::size_t const kept =
                rule.fraction ? static_cast<std::size_t>(static_cast<double>(available) * *rule.fraction)
                              : rule.length;
            if (kept < available)
                reply.data.resize(kept);
            else
                reply.notes.push_back("nothing to truncate");
            break;
        }
        case FaultKind::Corrupt:
            if (available != 0)
                corrupt(std::span(reply.data).first(available), rule.seed);
            else if (command.dataOut.empty())
                reply.notes.push_back("nothing to corrupt");
            break;
        case FaultKind::RandomReply:
            if (command.room() != 0 && reply.good()) {
                reply.data.resize(command.room());
                RandomBytes(rule.seed).fill(reply.data);
            } else {
                reply.notes.push_back("no reply to replace");
            }
            break;
        case FaultKind::Delay:
            reply.microseconds += rule.microseconds;
            break;
        default:
            break;
    }
}

}  // namespace

Reply MachineCore::carryOut(Device& device, Command const& command, FaultRule const* rule) {
    if (rule == nullptr) return device.execute(command);
    if (refuses(*rule)) {
        if (ScsiTarget* const target = device.targetOf(command)) target->missed(command);
        if (rule->kind == FaultKind::Vanish) vanished.insert(device.frame().name);
        return refusal(*rule);
    }
    Command arriving = command;
    if (rule->kind == FaultKind::Corrupt) corrupt(arriving.dataOut, rule->seed);
    Reply reply = device.execute(arriving);
    spoil(*rule, command, reply);
    return reply;
}

/// One exchange: fault plan, device, clock, journal, state. `refusedWith` is an errno for a record that the
/// node's driver doesn't take.
Reply MachineCore::exchange(Device& device, Command const& given, RequestInfo const& info, int refusedWith,
                            std::string const& reason) {
    Command command = given;
    command.now = clock;
    JournalEntry entry;
    entry.event = "exchange";
    entry.microseconds = clock;
    entry.device = device.frame().name;
    entry.node = device.frame().node;
    entry.request = info.name;
    entry.number = info.number;
    entry.command = info.hasCommand && !command.block.empty() ? device.commandName(command) : info.name;
    ScsiTarget const* const target = info.hasCommand ? device.targetOf(command) : nullptr;
    if (target != nullptr) entry.unit = target->name();
    FaultRule const* rule =
        scenario.faults.next(entry.device, entry.unit, entry.command, device.opcode(command));
    entry.exchange = scenario.faults.exchanges();

    Reply reply;
    if (vanished.count(entry.device) != 0) {
        reply.error = ENODEV;
    } else if (refusedWith != 0 && (rule == nullptr || !refuses(*rule))) {
        reply.error = refusedWith;
        reply.notes.push_back(reason);
    } else if (!info.hasCommand && (rule == nullptr || !refuses(*rule))) {
        if (rule != nullptr) spoil(*rule, command, reply);
        device.scan(clock);  // the one request without a command: REGNEWD
    } else {
        reply = carryOut(device, command, rule);
    }
    if (rule != nullptr) entry.fault = rule->text;
    if (reply.data.size() > command.room()) reply.data.resize(command.room());
    if (reply.good() && command.direction == Direction::In && reply.data.size() < command.room())
        reply.commandStatus = COMMAND_UNDERRUN;
    reply.microseconds = std::max(reply.microseconds, SHORTEST_EXCHANGE);
    if (command.timeoutMilliseconds != 0 && reply.microseconds > command.timeoutMilliseconds * 1000)
        reply.notes.push_back("took " + std::to_string(reply.microseconds / 1000) + " ms, the time-out was " +
                              std::to_string(command.timeoutMilliseconds) + " ms");
    clock += reply.microseconds;

    Bytes const& moved = command.dataOut.empty() ? reply.data : command.dataOut;
    entry.block = command.block;
    entry.direction = directionName(command.direction);
    entry.length = command.bufferSize;
    entry.timeoutMilliseconds = command.timeoutMilliseconds;
    entry.outcome = outcomeText(command, reply);
    entry.error = reply.error;
    entry.scsiStatus = reply.scsiStatus;
    entry.commandStatus = reply.commandStatus;
    if (reply.scsiStatus == CHECK_CONDITION) {
        entry.senseKey = reply.sense.key;
        entry.asc = reply.sense.asc;
        entry.ascq = reply.sense.ascq;
    }
    entry.dataLength = moved.size();
    entry.dataCrc = crc32(moved);
    entry.dataFirst.assign(
        moved.begin(), moved.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(16, moved.size())));
    entry.errors = reply.errors;
    entry.notes = reply.notes;
    journal(std::move(entry));
    for (std::string const& event : reply.events)
        journalEvent("firmware", device.frame().name, event);
    changed(device);
    return reply;
}

Machine::Machine(fs::path const& directory) : m_core(std::make_unique<MachineCore>(directory)) {}
Machine::~Machine() = default;

fs::path const& Machine::directory() const {
    return m_core->directory;
}
fs::path Machine::root() const {
    return m_core->directory / "root";
}

void Machine::addFaults(json const& rules, std::string const& source) {
    m_core->locked([&] { m_core->scenario.faults.add(Value(rules, source)); });
}

void Machine::shareRun(fs::path const& file) {
    m_core->locked([&] { m_core->runFile = file; });
}

std::uint64_t Machine::exchangeCount() {
    return m_core->locked([&] { return m_core->scenario.faults.exchanges(); });
}

std::vector<std::string> Machine::nodes() const {
    std::vector<std::string> names;
    for (auto const& device : m_core->scenario.devices) {
        std::string const file = device->frame().nodeFile();
        if (!file.empty() && std::find(names.begin(), names.end(), file) == names.end())
            names.push_back(file);
    }
    return names;
}

int Machine::openNode(std::string const& node) {
    return m_core->locked([&] {
        // A node that devices share opens as long as one of them is there.
        Device const* device = nullptr;
        int error = ENOENT;
        for (auto const& each : m_core->scenario.devices) {
            if (error == 0 || node.empty() || each->frame().nodeFile() != node) continue;
            device = each.get();
            error = !device->frame().nodePresent                        ? ENOENT
                    : m_core->vanished.count(device->frame().name) != 0 ? ENODEV
                                                                        : 0;
        }
        if (error == 0) return 0;
        JournalEntry entry;
        entry.event = "open";
        entry.microseconds = m_core->clock;
        entry.device = device != nullptr ? device->frame().name : "";
        entry.node = node;
        entry.error = error;
        entry.outcome = "errno " + errorName(error);
        m_core->journal(std::move(entry));
        return error;
    });
}

int Machine::ioctl(std::string const& node, unsigned long number, void* record) {
    return m_core->locked([&] {
        Request const request = requestOf(number);
        Device* device = m_core->find(node);
        if (device == nullptr && request == Request::Csmi && record != nullptr)
            device = m_core->find(node + ":" + std::to_string(csmiController(record)));
        if (device == nullptr) return ENODEV;
        RequestInfo info{requestName(number), static_cast<std::uint32_t>(number), false};
        Command command;
        if (request == Request::Unknown || !device->answers(request))
            return m_core->exchange(*device, command, info, ENOTTY, "not a request of this node's driver")
                .error;
        if (request == Request::RegisterNewDisks)
            return m_core->exchange(*device, command, info, 0, "").error;
        std::string reason;
        bool const isCsmi = request == Request::Csmi;
        int const refused = isCsmi ? decodeCsmi(info.number, record, command, reason)
                                   : decodeRecord(request, record, command, reason);
        info.hasCommand = true;
        Reply const reply = m_core->exchange(*device, command, info, refused, reason);
        if (reply.error == 0 && isCsmi)
            encodeCsmi(info.number, record, command, reply);
        else if (reply.error == 0)
            encodeReply(request, record, command, reply);
        return reply.error;
    });
}

Reply Machine::transact(std::string const& node, Command const& command) {
    return m_core->locked([&] {
        Device* device = m_core->find(node);
        if (device == nullptr || command.block.empty()) {
            Reply reply;
            reply.error = device == nullptr ? ENODEV : EINVAL;
            return reply;
        }
        RequestInfo const info{command.carrier == Carrier::PassThrough ? "pass-through" : "SCSI", 0, true};
        return m_core->exchange(*device, command, info, 0, "");
    });
}

void Machine::sleep(std::uint64_t microseconds) {
    int const error = sleepInDirectory(m_core->directory.c_str(), microseconds);
    if (error != 0)
        throw MachineError(m_core->directory.string() + ": the clock can't go on: " + std::strerror(error));
}

std::uint64_t Machine::now() {
    return m_core->locked([&] { return m_core->clock; });
}

void Machine::powerCycle() {
    m_core->locked([&] {
        m_core->journalEvent("power-cycle", "", "power off and on");
        m_core->clock += POWER_CYCLE_TIME;
        m_core->vanished.clear();
        for (auto const& device : m_core->scenario.devices) {
            std::vector<std::string> events;
            device->powerCycle(events);
            for (ScsiTarget* const target : device->targets())
                target->powerCycle(events);
            for (std::string const& event : events)
                m_core->journalEvent("firmware", device->frame().name, event);
            m_core->changed(*device);
        }
    });
}

std::vector<DeviceSummary> Machine::devices() {
    return m_core->locked([&] {
        std::vector<DeviceSummary> rows;
        auto const add = [&](DeviceSummary row, std::vector<FirmwarePart> const& parts) {
            if (row.state.empty()) row.state = "ok";
            std::string const owner = row.name;
            rows.push_back(std::move(row));
            for (FirmwarePart const& part : parts) {
                DeviceSummary inside;
                inside.name = owner + "/" + part.name;
                inside.kind = part.kind;
                inside.product = part.firmware->family();
                inside.running = part.firmware->running();
                inside.stored = part.firmware->stored();
                inside.state = part.firmware->restartNeeded() ? "restart needed" : "ok";
                rows.push_back(std::move(inside));
            }
        };
        for (auto const& device : m_core->scenario.devices) {
            DeviceSummary row;
            row.name = device->frame().name;
            row.kind = device->frame().kind;
            row.node = device->frame().node;
            device->summarise(row);
            if (m_core->vanished.count(row.name) != 0)
                row.state += row.state.empty() ? "vanished" : ", vanished";
            add(std::move(row), device->parts());
            for (ScsiTarget const* const target : device->targets()) {
                DeviceSummary behind;
                behind.name = device->frame().name + "/" + target->name();
                target->summarise(behind, m_core->clock);
                add(std::move(behind), target->parts());
            }
        }
        return rows;
    });
}

std::vector<JournalEntry> Machine::journal() const {
    return readJournal(m_core->directory / "journal.jsonl");
}

Bytes Machine::romImage(std::string const& name, Rom rom) {
    return m_core->locked([&] {
        auto const part = [&](std::string const& owner, std::vector<FirmwarePart> const& parts) {
            for (FirmwarePart const& each : parts)
                if (owner + "/" + each.name == name) return each.firmware;
            return static_cast<PartFirmware const*>(nullptr);
        };
        for (auto const& device : m_core->scenario.devices) {
            std::string const& own = device->frame().name;
            if (own == name) return device->romImage(rom);
            if (auto const* const found = part(own, device->parts())) return found->contents();
            for (ScsiTarget const* const target : device->targets()) {
                std::string const behind = own + "/" + target->name();
                if (behind == name) return target->romImage(rom);
                if (auto const* const found = part(behind, target->parts())) return found->contents();
            }
        }
        throw MachineError("no device \"" + name + "\" in " + m_core->directory.string());
    });
}

}  // namespace simulator
