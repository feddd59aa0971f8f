#include "src/managementObjects.h"

#include <algorithm>

#include "common/string.h"
#include "infomgr/request_records.h"
#include "src/CLI.h"

namespace {

constexpr std::uint32_t ERROR_SIZE = 255;

constexpr unsigned char MANAGEMENT_READ = 0x26;
constexpr unsigned char MANAGEMENT_WRITE = 0x27;

constexpr unsigned char SENSE_SUBSYSTEM_INFORMATION = 0x66;
constexpr std::uint32_t SUBSYSTEM_SIZE = 1024;
constexpr std::size_t SERIAL_NUMBER = 44;
constexpr std::size_t SERIAL_NUMBER_SIZE = 32;

constexpr std::uint32_t NVRAM_SIZE = 2048;
constexpr std::size_t BOOT_STRAP = 0x7FD;
/// Buffers are filled with it beforehand, so that what didn't arrive shows: in NVRAM it is a byte that nobody
/// ever wrote, and no serial number has it.
constexpr unsigned char UNREAD = 255;
constexpr std::uint32_t NVRAM_BLOCK_SIZE = 16;

/// Direction words of the pass-through, and the flags that follow from their bits.
constexpr std::uint32_t READ_DIRECTION = 0x40;
constexpr std::uint32_t WRITE_DIRECTION = 0x80;
constexpr std::uint32_t EVERY_FLAG_WORD = 0x80;
constexpr struct {
    std::uint32_t direction;
    std::uint32_t flag;
} FLAGS[] = {{0x04, 0x01}, {0x80, 0x04}, {0x02, 0x02}};

std::uint32_t flagsOf(std::uint32_t direction) {
    std::uint32_t flags = EVERY_FLAG_WORD;
    for (auto const& row : FLAGS) {
        flags |= (direction & row.direction) != 0 ? row.flag : 0;
    }
    return flags;
}

/// Commands that the pass-through form reports as done: all the bytes, or fewer than asked for.
bool isDone(std::uint16_t status) {
    return status == 0 || status == 2;
}

void fillNvramBlock(unsigned char (&block)[NVRAM_BLOCK_SIZE], unsigned char operation) {
    block[0] = operation;
    block[6] = 0x42;
    block[8] = 0xD4;
    block[9] = 1;
}

/// Sends a command block to the controller's NVRAM. The status of the request itself is told and not
/// returned.
int sendNvramCommand(HMGMTOBJECT controller, std::uint32_t kind, std::uint32_t direction,
                     unsigned char (&block)[NVRAM_BLOCK_SIZE], unsigned char* data, std::uint32_t size) {
    unsigned char error[ERROR_SIZE] = {};
    _INFOMGR_SCSI_REQUEST request = {};
    request.command = block;
    request.commandLength = sizeof block;
    request.data = data;
    request.dataLength = size;
    request.flags = flagsOf(direction);
    request.error = error;
    request.errorLength = sizeof error;
    int const status = InfoMgrControlObject(controller, InfoMgr::SCSI_FUNCTION, kind, &request,
                                            _INFOMGR_SCSI_REQUEST::LENGTH, nullptr, nullptr);
    if (!isDone(request.status)) {
        cli.logVerbose("Scsi command Falied %d", request.status);
    }
    return status;
}

}  // namespace

HMGMTOBJECT getHandle(std::string const& serial) {
    HMGMTOBJECT root = nullptr;
    if (InfoMgrOpenObject(nullptr, InfoMgr::STORAGE_CLASS, &root, nullptr, nullptr) != InfoMgr::SUCCESS) {
        cli.logVerbose("InfoMgrOpenObject failed");
        return nullptr;
    }
    for (std::uint32_t index = 0;; ++index) {
        HMGMTOBJECT controller = nullptr;
        int const status =
            InfoMgrEnumObject(root, InfoMgr::ARRAY_CONTROLLER, index, &controller, nullptr, nullptr);
        if (status == InfoMgr::NO_MORE || status < 0) {
            return nullptr;
        }
        if (status != InfoMgr::SUCCESS) {
            continue;
        }
        cli.logVerbose("****** Controller Found!        Handle: %p ******\n", controller);
        // The device model tells the number trimmed in the same way.
        Common::string const told = Common::string(SenseSubsystemInformation(controller).c_str()).Trim();
        if (told == serial.c_str() && !serial.empty()) {
            return controller;
        }
        cli.logVerbose("\n****** Controller Discovery End Handle: %p ******\n", controller);
    }
}

std::string SenseSubsystemInformation(HMGMTOBJECT controller) {
    // The form carries bytes 1 to 6 of 26 00 00 00 00 00 66 02 00 00. Byte 7 isn't among them: it would ask
    // for 512 bytes, and what is sent for the buffer of 1,024 is 04 00.
    unsigned char data[SUBSYSTEM_SIZE];
    std::fill(std::begin(data), std::end(data), UNREAD);
    unsigned char error[ERROR_SIZE] = {};
    _INFOMGR_BMIC_REQUEST request = {};
    request.opcode = SENSE_SUBSYSTEM_INFORMATION;
    request.data = data;
    request.dataLength = sizeof data;
    request.error = error;
    request.errorLength = sizeof error;
    cli.logVerbose("\n\tSenseSubsysInfo...\n");
    cli.logVerbose("\tCalling InfoMgrControlObject... for Vaultline controller %p. Command type: %#x\n",
                   controller, InfoMgr::BMIC_FUNCTION);
    int const status = InfoMgrControlObject(controller, InfoMgr::BMIC_FUNCTION, InfoMgr::READ_KIND, &request,
                                            _INFOMGR_BMIC_REQUEST::LENGTH, nullptr, nullptr);
    cli.logVerbose("\tInfoMgrControlObject Return Status: %d\n", status);
    unsigned char const* const member = data + SERIAL_NUMBER;
    unsigned char const* const end = std::find(member, member + SERIAL_NUMBER_SIZE, 0);
    unsigned char const* const arrived = std::find(member, end, UNREAD);
    if (arrived != end) {
        // The beginning of a serial number may be another controller's whole one.
        cli.logVerbose("\tController Serial Number refused: %d of %d bytes arrived\n",
                       static_cast<int>(arrived - member), static_cast<int>(SERIAL_NUMBER_SIZE));
        return {};
    }
    std::string const serial(member, end);
    if (serial.empty()) {
        return {};
    }
    cli.logVerbose("\t Controller Serial Number = %s", serial.c_str());
    return serial;
}

int ReadNVRAMBootStrap(HMGMTOBJECT controller, unsigned char& value) {
    unsigned char block[NVRAM_BLOCK_SIZE] = {};
    fillNvramBlock(block, MANAGEMENT_READ);
    unsigned char data[NVRAM_SIZE];
    std::fill(std::begin(data), std::end(data), UNREAD);
    int const status =
        sendNvramCommand(controller, InfoMgr::READ_KIND, READ_DIRECTION, block, data, sizeof data);
    value = data[BOOT_STRAP];
    cli.logVerbose("\nThe ox7fd offset value is %d\n", value);
    return status;
}

int writeNVRAMBootStrap(HMGMTOBJECT controller, unsigned char value, unsigned short offset) {
    unsigned char block[NVRAM_BLOCK_SIZE] = {};
    fillNvramBlock(block, MANAGEMENT_WRITE);
    block[2] = static_cast<unsigned char>(offset);
    block[3] = static_cast<unsigned char>(offset >> 8);
    block[4] = 1;  // bytes
    return sendNvramCommand(controller, InfoMgr::WRITE_KIND, WRITE_DIRECTION, block, &value, 1);
}
