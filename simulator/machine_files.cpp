#include "simulator/machine_files.h"

#include <algorithm>
#include <cstdio>

#include "simulator/files.h"
#include "simulator/scenario.h"

namespace simulator {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t LONGEST_TABLE = 65536;
constexpr char const* GLOBAL_VARIABLE = "-8be4df61-93ca-11d2-aa0d-00e098032b8c";

Device const& deviceNamed(Value const& value, std::vector<std::unique_ptr<Device>> const& devices) {
    std::string const name = value.text();
    for (auto const& device : devices)
        if (device->frame().name == name) return *device;
    value.refuse("the name of a device of this scenario");
}

std::string readRelative(Value const& value) {
    std::string const text = value.text();
    if (text.empty() || text[0] == '/' || text.find("..") != std::string::npos)
        value.refuse("a relative path without \"..\"");
    return text;
}

BlockDevice readBlockDevice(Value const& value, std::vector<std::unique_ptr<Device>> const& devices) {
    Object const object(value);
    BlockDevice block;
    block.name = object.at("name").text(64);
    if (block.name.empty() || block.name[0] == '.' || block.name.find('/') != std::string::npos)
        object.at("name").refuse("a name without \"/\"");
    if (auto const parent = object.find("parent"))
        block.parent = deviceNamed(*parent, devices).frame().pci.address;
    block.port = "host9";
    if (auto const port = object.find("port")) block.port = readRelative(*port);
    block.size = object.numberOr("size", 2097152, ~std::uint64_t{0});
    block.removable = object.booleanOr("removable", false);
    for (char const* file : {"vendor", "model", "type", "unique_id"})
        if (auto const text = object.find(file)) block.attributes[file] = text->text();
    block.attributes.try_emplace("type", "0");
    if (auto const list = object.find("partitions"))
        for (Value const& each : list->list()) {
            Object const part(each);
            block.partitions.push_back({static_cast<unsigned>(part.at("number").number(255, 1)),
                                        part.at("start").number(~std::uint64_t{0}),
                                        part.at("size").number(~std::uint64_t{0})});
            part.refuseOthers();
        }
    object.refuseOthers();
    return block;
}

BootEntry readBootEntry(Value const& value, std::vector<std::unique_ptr<Device>> const& devices) {
    Object const object(value);
    BootEntry entry;
    entry.number = static_cast<unsigned>(object.at("number").number(0xFFFF));
    if (auto const device = object.find("device")) entry.device = deviceNamed(*device, devices).frame().name;
    entry.active = object.booleanOr("active", true);
    if (auto const hex = object.find("hex"))
        if (!fromHex(hex->text(4096), entry.raw)) hex->refuse("pairs of hexadecimal digits");
    object.refuseOthers();
    return entry;
}

std::string rootOf(PciFunction const& pci) {
    return "pci" + pci.address.substr(0, 7);
}

void append(Bytes& bytes, std::initializer_list<int> more) {
    for (int const each : more)
        bytes.push_back(static_cast<std::uint8_t>(each));
}

/// A variable: 0 4 its attributes; then a load option (UEFI): 0 4 attributes, 1 is active; 4 2 length of the
/// path; 6 description in characters of two bytes; the path: root bridge (ACPI node), PCI node, end.
Bytes loadOption(BootEntry const& entry, Device const& device) {
    PciFunction const& pci = device.frame().pci;
    Bytes path = {2, 1, 12, 0, 0xD0, 0x41, 0x03, 0x0A};
    unsigned bus = 0;
    unsigned number = 0;
    unsigned function = 0;
    std::sscanf(pci.address.c_str(), "%*x:%x:%x.%x", &bus, &number, &function);
    append(path, {static_cast<int>(bus), 0, 0, 0});
    append(path, {1, 1, 6, 0, static_cast<int>(function), static_cast<int>(number), 0x7F, 0xFF, 4, 0});
    Bytes option = {7, 0, 0, 0, static_cast<std::uint8_t>(entry.active ? 1 : 0), 0, 0, 0};
    append(option, {static_cast<int>(path.size()), 0});
    for (char const c : entry.device)
        append(option, {c, 0});
    append(option, {0, 0});
    option.insert(option.end(), path.begin(), path.end());
    return option;
}

void makeBlockDevice(fs::path const& root, BlockDevice const& block) {
    fs::path place = "sys/devices";
    if (!block.parent.empty()) {
        place /= "pci" + block.parent.substr(0, 7);
        place /= block.parent;
    } else {
        place /= "pci-none";
    }
    fs::path const device = place / block.port / "target" / block.name;
    fs::path const directory = device / "block" / block.name;
    fs::create_directories(root / directory);
    for (auto const& [file, text] : block.attributes)
        writeText(root / device / file, text + "\n");
    writeText(root / directory / "size", std::to_string(block.size) + "\n");
    writeText(root / directory / "removable", block.removable ? "1\n" : "0\n");
    fs::create_symlink("../..", root / directory / "device");
    for (BlockDevice::Partition const& partition : block.partitions) {
        bool const digit = std::isdigit(static_cast<unsigned char>(block.name.back())) != 0;
        fs::path const own =
            root / directory / (block.name + (digit ? "p" : "") + std::to_string(partition.number));
        fs::create_directories(own);
        writeText(own / "start", std::to_string(partition.start) + "\n");
        writeText(own / "size", std::to_string(partition.size) + "\n");
    }
    fs::create_symlink(fs::path("..") / directory.lexically_relative("sys"), root / "sys/block" / block.name);
}

void makeBoot(fs::path const& root, MachineFiles const& files,
              std::vector<std::unique_ptr<Device>> const& devices) {
    fs::path const variables = root / "sys/firmware/efi/efivars";
    fs::create_directories(variables);
    Bytes order = {7, 0, 0, 0};
    for (unsigned const number : files.bootOrder)
        append(order, {static_cast<int>(number & 0xFF), static_cast<int>(number >> 8)});
    writeWholeFile(variables / (std::string("BootOrder") + GLOBAL_VARIABLE), order);
    for (BootEntry const& entry : files.bootEntries) {
        Bytes contents = entry.raw;
        for (auto const& device : devices)
            if (entry.device == device->frame().name) contents = loadOption(entry, *device);
        char name[16];
        std::snprintf(name, sizeof name, "Boot%04X", entry.number);
        writeWholeFile(variables / (std::string(name) + GLOBAL_VARIABLE), contents);
    }
    // The firmware's number of each root bridge is its bus number here.
    for (auto const& device : devices) {
        fs::path const bridge = root / "sys/devices" / rootOf(device->frame().pci) / "firmware_node";
        fs::create_directories(bridge);
        unsigned bus = 0;
        std::sscanf(device->frame().pci.address.c_str(), "%*x:%x", &bus);
        writeText(bridge / "uid", std::to_string(bus) + "\n");
    }
}

}  // namespace

MachineFiles readMachineFiles(Object const& scenario, std::vector<std::unique_ptr<Device>> const& devices) {
    MachineFiles files;
    if (auto const list = scenario.find("block_devices"))
        for (Value const& each : list->list())
            files.blockDevices.push_back(readBlockDevice(each, devices));
    files.mountTable = scenario.textOr("mtab", "", LONGEST_TABLE);
    files.fileSystemTable = scenario.textOr("fstab", "", LONGEST_TABLE);
    if (auto const boot = scenario.find("boot")) {
        Object const object(*boot);
        files.hasBoot = true;
        for (Value const& number : object.at("order").list())
            files.bootOrder.push_back(static_cast<unsigned>(number.number(0xFFFF)));
        for (Value const& entry : object.at("entries").list())
            files.bootEntries.push_back(readBootEntry(entry, devices));
        object.refuseOthers();
    }
    return files;
}

void makeMachineFiles(fs::path const& root, MachineFiles const& files,
                      std::vector<std::unique_ptr<Device>> const& devices) {
    try {
        for (BlockDevice const& block : files.blockDevices)
            makeBlockDevice(root, block);
        fs::create_directories(root / "etc");
        writeText(root / "etc/mtab", files.mountTable);
        writeText(root / "etc/fstab", files.fileSystemTable);
        if (files.hasBoot) makeBoot(root, files, devices);
    } catch (fs::filesystem_error const& error) {
        throw MachineError(error.path1().string() + " can't be made: " + error.code().message());
    }
}

}  // namespace simulator
