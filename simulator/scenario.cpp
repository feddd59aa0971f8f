#include "simulator/scenario.h"

#include <algorithm>
#include <functional>
#include <set>

#include "simulator/array_controller.h"
#include "simulator/csmi_adapter.h"

namespace simulator {

namespace {

/// Every kind of device: its name in scenarios and how the rest of its description is read.
struct Kind {
    char const* name;
    bool hasNode;
    std::unique_ptr<Device> (*make)(DeviceFrame, Object const&, std::filesystem::path const& firmware);
};

std::unique_ptr<Device> makePciFunction(DeviceFrame frame, Object const&, std::filesystem::path const&) {
    return std::make_unique<Device>(std::move(frame));
}

constexpr Kind KINDS[] = {
    {"array_controller", true, makeArrayController},
    {"csmi_adapter", true, makeCsmiAdapter},
    {"pci_function", false, makePciFunction},
};

/// The drivers that give a controller a node.
constexpr char const* BLOCK_DRIVER = "xqrth";
constexpr char const* CSMI_KIND = "csmi_adapter";
constexpr char const* CSMI_NODE = "/dev/mpt2ctl";
constexpr char const* GENERIC_DRIVERS[] = {"vqsa",  "vqvsa",  "vqvsac", "vqvsag", "vqvsaw",
                                           "vqdsa", "vqdsac", "vqdsag", "vqdsaw", "vqahcisr"};

bool isHexadecimal(std::string const& text, std::size_t at, std::size_t length) {
    return text.size() >= at + length &&
           std::all_of(text.begin() + static_cast<std::ptrdiff_t>(at),
                       text.begin() + static_cast<std::ptrdiff_t>(at + length),
                       [](unsigned char c) { return std::isdigit(c) || (c >= 'a' && c <= 'f'); });
}

std::string readAddress(Value const& value) {
    std::string const text = value.json().is_string() ? value.text() : "";
    bool const good = text.size() == 12 && isHexadecimal(text, 0, 4) && text[4] == ':' &&
                      isHexadecimal(text, 5, 2) && text[7] == ':' && isHexadecimal(text, 8, 2) &&
                      text[10] == '.' && text[11] >= '0' && text[11] <= '7';
    if (!good) value.refuse("a PCI address like \"0000:0b:00.0\", in lower case");
    return text;
}

/// A name that becomes a file name.
std::string readFileName(Value const& value) {
    std::string const text = value.json().is_string() ? value.text(64) : "";
    bool const good =
        !text.empty() && text[0] != '.' &&
        text.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-") ==
            std::string::npos;
    if (!good) value.refuse("a name of letters, digits, '.', '_' and '-'");
    return text;
}

PciFunction readPci(Object const& object) {
    PciFunction pci;
    pci.address = readAddress(object.at("address"));
    pci.vendor = static_cast<std::uint16_t>(object.numberOr("vendor", 0x1E5C, 0xFFFF));
    pci.device = static_cast<std::uint16_t>(object.numberOr("device", 0x3239, 0xFFFF));
    pci.subsystemVendor = static_cast<std::uint16_t>(object.numberOr("subsystem_vendor", pci.vendor, 0xFFFF));
    pci.subsystemDevice = static_cast<std::uint16_t>(object.numberOr("subsystem_device", 0, 0xFFFF));
    pci.deviceClass = static_cast<std::uint32_t>(object.numberOr("class", 0x010400, 0xFFFFFF));
    if (auto const driver = object.find("driver")) pci.driver = readFileName(*driver);
    if (auto const slot = object.find("slot")) pci.slot = readFileName(*slot);
    if (auto const overrides = object.find("sysfs"))
        for (auto const& [name, value] : Object(*overrides).all()) {
            bool const dangling =
                value.json().is_object() && value.json() == nlohmann::json{{"dangling", true}};
            if (!value.json().is_string() && !value.json().is_null() && !dangling)
                value.refuse("the file's text, null for no such file, or {\"dangling\": true}");
            if (name.empty() || name[0] == '.' || name.find('/') != std::string::npos)
                throw ScenarioError(value.where() + ": not the name of a file");
            pci.overrides[name] = value.json();
        }
    object.refuseOthers();
    return pci;
}

std::string nodeOf(DeviceFrame const& frame, Object const& object) {
    std::string const instance = std::to_string(frame.instance);
    if (frame.kind == CSMI_KIND) return CSMI_NODE + (":" + instance);
    if (frame.pci.driver == BLOCK_DRIVER) return "/dev/xqrth/c" + instance + "d0";
    if (std::find(std::begin(GENERIC_DRIVERS), std::end(GENERIC_DRIVERS), frame.pci.driver) !=
        std::end(GENERIC_DRIVERS))
        return "/dev/sg" + instance;
    std::string names = BLOCK_DRIVER;
    for (char const* driver : GENERIC_DRIVERS)
        names += std::string(", ") + driver;
    throw ScenarioError(object.where() + ".pci.driver: found \"" + frame.pci.driver +
                        "\", expected a driver that gives the device a node: " + names);
}

std::unique_ptr<Device> readDevice(Value const& value, std::filesystem::path const& firmware,
                                   std::map<std::string, unsigned>& nextInstance) {
    Object const object(value);
    DeviceFrame frame;
    frame.name = readFileName(object.at("name"));
    std::vector<std::string> kinds;
    for (Kind const& kind : KINDS)
        kinds.push_back(kind.name);
    frame.kind = object.at("kind").choice(kinds);
    Kind const& kind = *std::find_if(std::begin(KINDS), std::end(KINDS),
                                     [&](Kind const& row) { return row.name == frame.kind; });
    frame.pci = readPci(Object(object.at("pci")));
    if (auto const fastPath = object.find("fast_path"))
        frame.fastPath = fastPath->choice({"enabled", "disabled"});
    if (kind.hasNode) {
        // One count for all generic drivers: they share the names /dev/sg0, /dev/sg1, ...
        bool const isCsmi = frame.kind == CSMI_KIND;
        unsigned& next = nextInstance[isCsmi                             ? CSMI_KIND
                                      : frame.pci.driver == BLOCK_DRIVER ? BLOCK_DRIVER
                                                                         : "sg"];
        frame.instance = static_cast<unsigned>(object.numberOr("instance", next, isCsmi ? 255 : 4095));
        next = std::max(next, frame.instance + 1);
        frame.node = nodeOf(frame, object);
        frame.nodePresent = object.booleanOr("node_present", true);
        if (auto const layout = object.find("layout"))
            frame.oldLayout = layout->choice({"new", "old"}) == "old";
    }
    std::unique_ptr<Device> device = kind.make(std::move(frame), object, firmware);
    object.refuseOthers();
    return device;
}

/// Refuses a second device with the same name, address or node.
void refuseTwins(Value const& value, Device const& device, std::set<std::string>& taken) {
    DeviceFrame const& frame = device.frame();
    std::pair<char const*, std::string> const facts[] = {
        {"name", frame.name}, {"PCI address", frame.pci.address}, {"node", frame.node}};
    for (auto const& [what, text] : facts)
        if (!text.empty() && !taken.insert(std::string(what) + " " + text).second)
            throw ScenarioError(value.where() + ": found the " + what + " \"" + text +
                                "\" a second time, expected each device to have its own");
}

}  // namespace

Scenario readScenario(Value const& value, std::filesystem::path const& firmware) {
    Object const object(value);
    Scenario scenario;
    scenario.name = object.textOr("machine", "virtual machine");
    object.textOr("comment", "", 4096);
    std::map<std::string, unsigned> nextInstance;
    std::set<std::string> taken;
    for (Value const& device : object.at("devices").list()) {
        scenario.devices.push_back(readDevice(device, firmware, nextInstance));
        refuseTwins(device, *scenario.devices.back(), taken);
    }
    scenario.files = readMachineFiles(object, scenario.devices);
    if (auto const faults = object.find("faults")) scenario.faults.add(*faults);
    object.refuseOthers();
    return scenario;
}

}  // namespace simulator
