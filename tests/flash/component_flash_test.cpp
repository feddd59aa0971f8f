// The flash of drives, carriers, cache modules and memories: what goes out, byte by byte.

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <numeric>

#include "flash/component_operations.h"
#include "flash/nvram.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/drives.h"
#include "storage/schema/identity.h"
#include "sysmod/device_handle.h"
#include "tests/flash/flash_fixture.h"
#include "tests/storage/answers.h"

namespace flash_test {
namespace {

constexpr char SUCCESS[] = "ATTR_VALUE_STATUS_SUCCESS";
constexpr char MISSING[] = "ATTR_VALUE_STATUS_ARGUMENT_MISSING";
constexpr char INVALID[] = "ATTR_VALUE_STATUS_ARGUMENT_INVALID";

std::string hex(Bytes const& bytes) {
    std::string text;
    for (auto const byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned>(byte));
        text += digits;
    }
    return text;
}

/// Takes the commands that carry firmware, and remembers them.
class Components : public Answers {
  public:
    struct Taken {
        std::string block;
        Bytes data;
    };

    using Answers::Answers;

    std::vector<Taken> taken;
    std::size_t failing = 0;             ///< from 1: the one that fails
    std::vector<std::size_t> attention;  ///< from 1: those that meet a unit attention
    std::vector<std::size_t> lost;       ///< from 1: those that don't reach the controller
    std::map<unsigned, Bytes> memories;

    int ioctl(int descriptor, unsigned long number, void* record) override {
        simulator::Request const request = simulator::requestOf(number);
        simulator::Command command;
        std::string reason;
        if (simulator::decodeRecord(request, record, command, reason) != 0 || !isMine(command.block))
            return Answers::ioctl(descriptor, number, record);
        taken.push_back({hex(command.block), command.dataOut});
        auto const isOneOf = [this](std::vector<std::size_t> const& numbers) {
            return std::find(numbers.begin(), numbers.end(), taken.size()) != numbers.end();
        };
        if (isOneOf(lost)) {
            errno = EIO;
            return -1;
        }
        simulator::Reply reply;
        if (isOneOf(attention)) {
            reply.commandStatus = 1;
            reply.scsiStatus = 2;
            reply.sense = {6, 0x29, 0};
        } else if (taken.size() == failing) {
            reply.commandStatus = 1;
            reply.scsiStatus = 2;
            reply.sense = {5, 0x26, 0};
        } else if (command.block[0] == 0x26) {
            auto const memory = memories.find(command.block[2]);
            if (memory == memories.end()) {
                reply.commandStatus = 4;
            } else {
                reply.data = memory->second;
                if (reply.data.size() < command.room()) reply.commandStatus = 2;
            }
        }
        simulator::encodeReply(request, record, command, reply);
        return 0;
    }

  private:
    static bool isMine(Bytes const& block) {
        if (block.size() == 16 || (block.size() == 10 && block[0] == 0x3B)) return true;
        return block.size() == 10 && (block[6] == 0x6C || block[6] == 0x46);
    }
};

class ComponentFlash : public FlashTest {
  protected:
    ComponentFlash() {
        discover(oneController());
        Core::SysMod::PropertyTable table;
        Core::SysMod::toPropertyTable(controller().handle(), table);
        table[Core::SysMod::Route] = "QRTH:0201000000000000";
        drive = DevicePointer(new Schema::PhysicalDrive(Core::SysMod::toDeviceInfo(table), 0x0102,
                                                        Schema::PhysicalDrive::eData));
        only().receive(drive);
        components = std::make_unique<Components>(*door);
        image.resize(70000);
        std::iota(image.begin(), image.end(), std::uint8_t{1});
    }
    ~ComponentFlash() override { components.reset(); }

    Schema::ArrayController& controller() const { return dynamic_cast<Schema::ArrayController&>(only()); }
    std::pair<char const*, std::string> address() const {
        return {"ATTR_NAME_BUFFER_ADDRESS", std::to_string(reinterpret_cast<std::uintptr_t>(image.data()))};
    }
    static std::pair<char const*, std::string> size(std::size_t bytes) {
        return {"ATTR_NAME_BUFFER_SIZE", std::to_string(bytes)};
    }
    template <class Operation>
    static Core::OperationReturn performOn(Core::Device& device, Arguments const& arguments) {
        OperationPointer const operation(new Operation);
        for (auto const& [name, value] : arguments)
            operation->SetArgument(Core::DeviceOperation::eSET, name, value.c_str());
        return device.perform(operation);
    }
    Core::OperationReturn flashDrive(char const* type, std::size_t bytes) {
        components->taken.clear();
        return performOn<Operations::WriteFlashPhysicalDrive>(
            *drive, {address(), size(bytes), {"ATTR_NAME_FLASH_TYPE", type}});
    }
    template <class Operation>
    static std::string verdict(DevicePointer const& device) {
        auto const told = Operation().pFilter()->apply(device);
        if (told) return "available";
        return attribute(told, "ATTR_NAME_UNAVAILABLE_REASON").substr(30);
    }

    DevicePointer drive;
    std::unique_ptr<Components> components;
    Bytes image;
};

constexpr char WRITE_BUFFER[] = "ATTR_VALUE_FLASH_TYPE_SCSI_WRITE_BUFFER";
constexpr char MICROCODE[] = "ATTR_VALUE_FLASH_TYPE_ATA_PASSTHRU_DOWNLOAD_MICROCODE";

TEST_F(ComponentFlash, WritesADriveInChunks) {
    struct Row {
        char const* type;
        std::size_t size;
        Strings blocks;
    };
    Row const rows[] = {
        {WRITE_BUFFER, 1, {"3b070000000000000100"}},
        {WRITE_BUFFER, 32767, {"3b0700000000007fff00"}},
        {WRITE_BUFFER, 32768, {"3b070000000000800000"}},
        {WRITE_BUFFER, 32769, {"3b070000000000800000", "3b070000800000000100"}},
        {WRITE_BUFFER, 65536, {"3b070000000000800000", "3b070000800000800000"}},
        {WRITE_BUFFER, 65537, {"3b070000000000800000", "3b070000800000800000", "3b070001000000000100"}},
        {MICROCODE, 32767, {"850a0600030040000000000000009200"}},
        {MICROCODE, 32768, {"850a0600030040000000000000009200"}},
        {MICROCODE, 32769, {"850a0600030040000000000000009200", "850a0600030001000000400000009200"}},
        {"anything else", 65536, {"850a0600030040000000000000009200", "850a0600030040000000400000009200"}},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(testing::Message() << row.size << " " << row.type);
        EXPECT_EQ(SUCCESS, status(flashDrive(row.type, row.size)));
        ASSERT_EQ(row.blocks.size(), components->taken.size());
        Bytes arrived;
        for (std::size_t i = 0; i < row.blocks.size(); ++i) {
            EXPECT_EQ(row.blocks[i], components->taken[i].block);
            arrived.insert(arrived.end(), components->taken[i].data.begin(), components->taken[i].data.end());
        }
        // A SATA drive takes whole sectors: zeros fill the last one.
        Bytes expected(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(row.size));
        if (row.type != WRITE_BUFFER) expected.resize((row.size + 511) / 512 * 512);
        EXPECT_TRUE(expected == arrived);
    }
    // From 65,536 sectors on the offset goes on in the next byte; from 64 KiB in WRITE BUFFER as well.
    image.resize(17 << 20);
    EXPECT_EQ(SUCCESS, status(flashDrive(MICROCODE, image.size())));
    EXPECT_EQ("850a0600030040000000000080009200", components->taken[512].block);
}

TEST_F(ComponentFlash, EndsAtTheFirstChunkThatADriveRefuses) {
    for (char const* type : {WRITE_BUFFER, MICROCODE}) {
        for (std::size_t const failing : {1U, 2U, 3U}) {
            components->failing = failing;
            auto const result = flashDrive(type, 70000);
            EXPECT_EQ("38", attribute(result, "ATTR_NAME_SCSI_ASC"));
            EXPECT_FALSE(result);
            EXPECT_EQ(failing, components->taken.size());
        }
    }
}

TEST_F(ComponentFlash, SendsAComponentWholeThroughTheController) {
    struct Row {
        char const* what;
        std::size_t size;
        std::string block;
    };
    Row const rows[] = {
        {"carrier", 1, "2700020100006c000101"},     {"carrier", 32768, "2700020100006c800001"},
        {"carrier", 32769, "2700020100006c800101"}, {"carrier", 65535, "2700020100006cffff01"},
        {"cache", 49152, "2700000000006cc00000"},   {"cache", 49151, "2700000000006cbfff00"},
        {"memory", 256, "2700a201000046010000"},    {"memory", 3, "2700a201000046000300"},
    };
    auto const perform = [&](std::string const& what, std::size_t bytes) {
        components->taken.clear();
        if (what == "carrier")
            return performOn<Operations::WriteFlashDriveActiveCarrier>(*drive, {address(), size(bytes)});
        if (what == "cache") return performOn<Operations::WriteFlashFBWC>(only(), {address(), size(bytes)});
        return performOn<Operations::WriteFlashNVRAM>(
            only(), {address(), size(bytes), {"ATTR_NAME_BMIC_I2C_ID", "162"}});
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(testing::Message() << row.what << " " << row.size);
        EXPECT_EQ(SUCCESS, status(perform(row.what, row.size)));
        ASSERT_EQ(1U, components->taken.size());
        EXPECT_EQ(row.block, components->taken[0].block);
        EXPECT_TRUE(Bytes(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(row.size)) ==
                    components->taken[0].data);
    }
    components->failing = 1;
    for (char const* what : {"carrier", "cache", "memory"})
        EXPECT_EQ("38", attribute(perform(what, 256), "ATTR_NAME_SCSI_ASC")) << what;
    components->failing = 0;
    only().clear(drive);
    EXPECT_EQ("ATTR_VALUE_STATUS_FAILURE", status(perform("carrier", 256))) << "no controller above it";
    EXPECT_TRUE(components->taken.empty());
}

TEST_F(ComponentFlash, ReadsAMemoryIntoAFile) {
    std::string const path = testing::TempDir() + "nvram-" + std::to_string(getpid());
    auto const read = [&](std::string const& to) {
        components->taken.clear();
        return performOn<Operations::ReadNVRAM>(
            only(), {{"ATTR_NAME_OUTPUT_FILE_NAME", to}, {"ATTR_NAME_BMIC_I2C_ID", "80"}});
    };
    EXPECT_FALSE(read(path));
    EXPECT_FALSE(std::filesystem::exists(path)) << "nothing is there to be read";
    components->memories[80] = Bytes(image.begin(), image.begin() + 255);
    EXPECT_FALSE(read(path));
    EXPECT_FALSE(std::filesystem::exists(path)) << "a part of it is no memory";
    components->memories[80] = Bytes(image.begin(), image.begin() + 256);
    EXPECT_EQ(SUCCESS, status(read(path)));
    ASSERT_EQ(1U, components->taken.size());
    EXPECT_EQ("26005000000046010000", components->taken[0].block);
    std::ifstream file(path, std::ios::binary);
    Bytes const written{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    EXPECT_TRUE(components->memories[80] == written);
    EXPECT_EQ(SUCCESS, status(read(testing::TempDir() + "no/such/folder/nvram")));
    std::filesystem::remove(path);
    EXPECT_EQ("ATTR_VALUE_STATUS_FAILURE", status(read("/dev/full")));
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
    std::filesystem::create_symlink("/dev/full", path);
    EXPECT_EQ("ATTR_VALUE_STATUS_FAILURE", status(read(path)));
    EXPECT_TRUE(std::filesystem::is_symlink(path)) << "it isn't ours to remove";
    std::filesystem::remove(path);
}

/// A controller that needs a moment, and a command that got lost, hide no memory.
TEST_F(ComponentFlash, FindsTheMemoriesThatAnswer) {
    components->memories = {{3, Bytes(256)}, {80, Bytes(256)}, {200, Bytes(256)}};
    struct Row {
        std::vector<std::size_t> attention;
        std::vector<std::size_t> lost;
        std::vector<std::uint8_t> found;
    };
    Row const rows[] = {{{}, {}, {3, 80, 200}},     {{4}, {}, {3, 80, 200}}, {{4, 5}, {}, {3, 80, 200}},
                        {{4, 5, 6}, {}, {80, 200}}, {{}, {81}, {3, 200}},    {{}, {100, 101}, {3, 80}}};
    for (Row const& row : rows) {
        components->taken.clear();
        components->attention = row.attention;
        components->lost = row.lost;
        EXPECT_EQ(row.found, Operations::answeringI2CIdentities(only()));
    }
}

TEST_F(ComponentFlash, SendsNothingWithoutGoodArguments) {
    Core::Device& box = only();
    std::pair<char const*, std::string> const type{"ATTR_NAME_FLASH_TYPE", WRITE_BUFFER};
    std::pair<char const*, std::string> const identity{"ATTR_NAME_BMIC_I2C_ID", "80"};
    std::pair<char const*, std::string> const file{"ATTR_NAME_OUTPUT_FILE_NAME", "/dev/null"};
    std::pair<char const*, std::string> const noAddress{"ATTR_NAME_BUFFER_ADDRESS", "0"};
    std::pair<char const*, std::string> const cutAddress{"ATTR_NAME_BUFFER_ADDRESS", address().second + "x"};
    auto const sizeText = [](char const* text) {
        return std::pair<char const*, std::string>{"ATTR_NAME_BUFFER_SIZE", text};
    };
    auto const memoryOf = [&](char const* number) {
        return performOn<Operations::WriteFlashNVRAM>(
            box, {address(), size(9), {"ATTR_NAME_BMIC_I2C_ID", number}});
    };
    using Operations::WriteFlashDriveActiveCarrier;
    using Operations::WriteFlashFBWC;
    using Operations::WriteFlashNVRAM;
    using Operations::WriteFlashPhysicalDrive;
    struct Row {
        Core::OperationReturn result;
        char const* status;
        char const* argument;
    };
    Row const rows[] = {
        {performOn<WriteFlashPhysicalDrive>(*drive, {size(9), type}), MISSING, "BUFFER_ADDRESS"},
        {performOn<WriteFlashPhysicalDrive>(*drive, {address(), type}), MISSING, "BUFFER_SIZE"},
        {performOn<WriteFlashPhysicalDrive>(*drive, {address(), size(9)}), MISSING, "FLASH_TYPE"},
        {performOn<WriteFlashPhysicalDrive>(*drive, {}), MISSING, "FLASH_TYPE"},
        {performOn<WriteFlashPhysicalDrive>(*drive, {noAddress, size(9), type}), INVALID, "BUFFER_ADDRESS"},
        {performOn<WriteFlashPhysicalDrive>(*drive, {address(), size(0), type}), INVALID, "BUFFER_SIZE"},
        {flashDrive(WRITE_BUFFER, (16 << 20) + 1), INVALID, "BUFFER_SIZE"},
        {flashDrive(MICROCODE, (32 << 20) + 1), INVALID, "BUFFER_SIZE"},
        {performOn<WriteFlashDriveActiveCarrier>(*drive, {size(9)}), MISSING, "BUFFER_ADDRESS"},
        {performOn<WriteFlashDriveActiveCarrier>(*drive, {address()}), MISSING, "BUFFER_SIZE"},
        {performOn<WriteFlashDriveActiveCarrier>(*drive, {address(), size(65536)}), INVALID, "BUFFER_SIZE"},
        {performOn<WriteFlashFBWC>(box, {size(9)}), MISSING, "BUFFER_ADDRESS"},
        {performOn<WriteFlashFBWC>(box, {address()}), MISSING, "BUFFER_SIZE"},
        {performOn<WriteFlashFBWC>(box, {address(), size(65536)}), INVALID, "BUFFER_SIZE"},
        {performOn<WriteFlashFBWC>(box, {noAddress, size(9)}), INVALID, "BUFFER_ADDRESS"},
        {performOn<WriteFlashNVRAM>(box, {size(9), identity}), MISSING, "BUFFER_ADDRESS"},
        {performOn<WriteFlashNVRAM>(box, {address(), identity}), MISSING, "BUFFER_SIZE"},
        {performOn<WriteFlashNVRAM>(box, {address(), size(9)}), MISSING, "BMIC_I2C_ID"},
        {memoryOf("256"), INVALID, "BMIC_I2C_ID"},
        {memoryOf("one"), INVALID, "BMIC_I2C_ID"},
        {memoryOf("-1"), INVALID, "BMIC_I2C_ID"},
        {memoryOf("80x"), INVALID, "BMIC_I2C_ID"},
        {memoryOf("18446744073709551617"), INVALID, "BMIC_I2C_ID"},
        {performOn<WriteFlashFBWC>(box, {address(), sizeText("80x")}), INVALID, "BUFFER_SIZE"},
        {performOn<WriteFlashFBWC>(box, {address(), sizeText("18446744073709551617")}), INVALID,
         "BUFFER_SIZE"},
        {performOn<WriteFlashFBWC>(box, {address(), sizeText("abc")}), INVALID, "BUFFER_SIZE"},
        {performOn<WriteFlashFBWC>(box, {address(), sizeText("1 62")}), INVALID, "BUFFER_SIZE"},
        {performOn<WriteFlashFBWC>(box, {cutAddress, size(9)}), INVALID, "BUFFER_ADDRESS"},
        {performOn<Operations::ReadNVRAM>(box, {identity}), MISSING, "OUTPUT_FILE_NAME"},
        {performOn<Operations::ReadNVRAM>(box, {file}), MISSING, "BMIC_I2C_ID"},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(row.status, status(row.result)) << row.argument;
        EXPECT_EQ(std::string("ATTR_NAME_") + row.argument, attribute(row.result, "ATTR_NAME_ARGUMENT_NAME"));
    }
    EXPECT_TRUE(components->taken.empty());
}

TEST_F(ComponentFlash, IsForTheControllersAndDrivesThatCan) {
    using namespace Operations;
    DevicePointer const box = controllers().front();
    constexpr char NOT_SUPPORTED[] = "OPERATION_NOT_SUPPORTED";
    constexpr char UPGRADE[] = "REQUIRE_CONTROLLER_FIRMWARE_UPGRADE";
    struct Row {
        char const* family;
        char const* version;
        char const* carrier;
        char const* cache;
        char const* memory;
    };
    static Row const rows[] = {
        {"DOGWOOD", "6.40", "available", "available", "available"},
        {"CEDAR", "0.02", "available", "available", "available"},
        {"CEDAR", "0.01", "available", "available", UPGRADE},
        {"BIRCH", "0.01", NOT_SUPPORTED, NOT_SUPPORTED, "available"},
        {"QBX_HARRIER", "6.40", NOT_SUPPORTED, NOT_SUPPORTED, NOT_SUPPORTED},
        {"ALDER", "6.40", NOT_SUPPORTED, NOT_SUPPORTED, NOT_SUPPORTED},
    };
    components->memories[80] = Bytes(256);
    Schema::publish(*drive, "ATTR_NAME_CARRIER_AUTHENTICATION_STATUS",
                    "ATTR_VALUE_CARRIER_AUTHENTICATION_STATUS_OK");
    Schema::publish(*box, "ATTR_NAME_FLASHLIGHT_SUPPORTED", "ATTR_VALUE_FLASHLIGHT_SUPPORTED_TRUE");
    Schema::publish(*box, "ATTR_NAME_FLASHLIGHT_INSTALLED", "ATTR_VALUE_FLASHLIGHT_INSTALLED_TRUE");
    auto const become = [&](char const* family, char const* version) {
        Schema::publish(*box, "ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY",
                        (std::string("ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_") + family).c_str());
        Schema::publish(*box, "ATTR_NAME_FIRMWARE_VERSION", version);
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(testing::Message() << row.family << " " << row.version);
        become(row.family, row.version);
        EXPECT_EQ(row.carrier, verdict<WriteFlashDriveActiveCarrier>(drive));
        EXPECT_EQ(row.cache, verdict<WriteFlashFBWC>(box));
        EXPECT_EQ(row.memory, verdict<WriteFlashNVRAM>(box));
        EXPECT_EQ(row.memory, verdict<ReadNVRAM>(box));
    }
    EXPECT_NE(ABSENT, attribute(WriteFlashDriveActiveCarrier().pFilter()->apply(drive),
                                "ATTR_NAME_UNAVAILABLE_REASON_COMMENT"));
    become("DOGWOOD", "6.40");
    Schema::publish(*box, "ATTR_NAME_FLASHLIGHT_INSTALLED", "ATTR_VALUE_FLASHLIGHT_INSTALLED_FALSE");
    EXPECT_EQ("WRITE_CACHE_NOT_INSTALLED", verdict<WriteFlashFBWC>(box));
    box->Clear("ATTR_NAME_FLASHLIGHT_SUPPORTED");
    EXPECT_EQ("WRITE_CACHE_NOT_SUPPORTED", verdict<WriteFlashFBWC>(box));
    drive->Clear("ATTR_NAME_CARRIER_AUTHENTICATION_STATUS");
    EXPECT_EQ("CARRIER_AUTHENTICATION_STATUS_NOT_OK", verdict<WriteFlashDriveActiveCarrier>(drive));
    components->memories.clear();
    EXPECT_EQ("NVRAM_NOT_FOUND", verdict<WriteFlashNVRAM>(box));

    EXPECT_EQ("available", verdict<WriteFlashPhysicalDrive>(drive)) << "nothing is told of its modes";
    Schema::publish(*drive, "ATTR_NAME_DRIVE_SUPPORTS_WRITE_BUFFER_MODE_5",
                    "ATTR_VALUE_DRIVE_SUPPORTS_WRITE_BUFFER_MODE_5_TRUE");
    EXPECT_EQ(NOT_SUPPORTED, verdict<WriteFlashPhysicalDrive>(drive)) << "whole images only";
    Schema::publish(*drive, "ATTR_NAME_INTERFACE", "ATTR_VALUE_INTERFACE_SATA");
    EXPECT_EQ("available", verdict<WriteFlashPhysicalDrive>(drive));
}

/// The values of an argument, with commas between.
std::string offered(Core::DeviceOperation& operation, DevicePointer const& device, char const* argument) {
    std::string values;
    auto const root = operation.getCapabilityPtr(device);
    for (auto child = root->beginChild(); child != root->endChild(); ++child) {
        if (attribute(**child, "ATTR_NAME_ATTRIBUTE_NAME") != argument) continue;
        values = "values:";
        for (auto value = (*child)->beginChild(); value != (*child)->endChild(); ++value)
            values += " " + attribute(**value, argument);
    }
    return values;
}

TEST_F(ComponentFlash, OffersWhatTheDeviceTakes) {
    using namespace Operations;
    DevicePointer const box = controllers().front();
    WriteFlashPhysicalDrive flash;
    struct Row {
        char const* interface;
        char const* type;
    };
    static Row const rows[] = {{"SAS", WRITE_BUFFER},
                               {"SAS_SSD", WRITE_BUFFER},
                               {"PARALLEL_SCSI", WRITE_BUFFER},
                               {"SATA", MICROCODE},
                               {"SATA_SSD", MICROCODE}};
    for (Row const& row : rows) {
        Schema::publish(*drive, "ATTR_NAME_INTERFACE",
                        (std::string("ATTR_VALUE_INTERFACE_") + row.interface).c_str());
        EXPECT_EQ(std::string("values: ") + row.type, offered(flash, drive, "ATTR_NAME_FLASH_TYPE"));
    }
    EXPECT_EQ("values:", offered(flash, drive, "ATTR_NAME_FIRMWARE_FILE_NAME"));
    WriteFlashDriveActiveCarrier carrier;
    EXPECT_EQ("values:", offered(carrier, drive, "ATTR_NAME_FIRMWARE_FILE_NAME"));
    WriteFlashFBWC cache;
    EXPECT_EQ("values:", offered(cache, box, "ATTR_NAME_FIRMWARE_FILE_NAME"));
    components->memories = {{0, Bytes(256)}, {80, Bytes(256)}, {255, Bytes(256)}};
    WriteFlashNVRAM write;
    EXPECT_EQ("values: 0 80 255", offered(write, box, "ATTR_NAME_BMIC_I2C_ID"));
    EXPECT_EQ("values:", offered(write, box, "ATTR_NAME_FIRMWARE_FILE_NAME"));
    ReadNVRAM read;
    EXPECT_EQ("values:", offered(read, box, "ATTR_NAME_OUTPUT_FILE_NAME"));
}

}  // namespace
}  // namespace flash_test
