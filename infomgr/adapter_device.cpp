#include "infomgr/adapter_device.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "common/debug_logger.h"
#include "sysmod/command_handlers.h"
#include "sysmod/device_handle.h"
#include "sysmod/kernel_records.h"
#include "sysmod/send_command.h"

namespace {

using namespace Core::SysMod;
using namespace Interface::SysMod::Command;

/// The all-zero address: the controller itself.
constexpr char CONTROLLER_ROUTE[] = "QRTH:0000000000000000";

constexpr std::uint8_t SCSI_GOOD = 0;
/// The pass-through takes the least that it knows.
constexpr std::uint32_t SHORTEST_TIMEOUT = 0;

constexpr std::uint32_t LONGEST_BLOCK = 16;
constexpr std::uint32_t CSMI_REQUESTS = 0xCC77;
/// What the length of a management command and the pass-through record's buffer size can tell.
constexpr std::uint32_t LONGEST_DATA = 0xFFFF;
/// More than any device of this family moves in one request.
constexpr std::uint32_t LARGEST_RECORD = 16 * 1024 * 1024;

Common::string property(Common::string const& handle, Property place) {
    PropertyTable table;
    toPropertyTable(handle, table);
    return table[place];
}

Common::string withRoute(Common::string const& handle, char const* route) {
    PropertyTable table;
    toPropertyTable(handle, table);
    table[Route] = route;
    return toDeviceInfo(table);
}

bool isBuffer(unsigned char const* bytes, std::uint32_t length) {
    return bytes != nullptr || length == 0;
}

int refused(char const* what) {
    Common::DebugLogger::LogCommand("%s refused: nothing was sent", what);
    return InfoMgr::BAD_ARGUMENT;
}

/// Fewer bytes than asked for are a read all the same, but no write.
template <typename Request>
int outcome(char const* what, Request const& request, bool sent) {
    bool const reads = request.transferType == EnTransferType::In;
    bool const done =
        sent && request.scsiStatus == SCSI_GOOD &&
        (request.commandStatus == COMMAND_DONE || (reads && request.commandStatus == DATA_UNDERRUN));
    if (!done) {
        Common::DebugLogger::LogCommand(
            "%s failed: low level status %d, command status %u, SCSI status 0x%02X", what,
            static_cast<int>(request.lowLevelStatus), static_cast<unsigned>(request.commandStatus),
            static_cast<unsigned>(request.scsiStatus));
    }
    return done ? InfoMgr::SUCCESS : InfoMgr::REQUEST_FAILED;
}

/// What the pass-through forms have in common. False for a record that can't be.
template <typename Record>
bool toRequest(Record const& record, SCSIRequest& request) {
    if (record.command == nullptr || record.commandLength == 0 || record.commandLength > LONGEST_BLOCK ||
        !isBuffer(record.data, record.dataLength) || !isBuffer(record.error, record.errorLength)) {
        return false;
    }
    bool const writes = (record.flags & _INFOMGR_SCSI_REQUEST::WRITE_FLAG) != 0;
    if (!writes && record.dataLength > LONGEST_DATA) {
        return false;  // a part would pass for the whole; of a write, the pass-through sees to that
    }
    request.transferType = record.dataLength == 0 ? EnTransferType::None
                           : writes               ? EnTransferType::Out
                                                  : EnTransferType::In;
    request.cdb = record.command;
    request.cdbLength = record.commandLength;
    request.dataBuffer = record.data;
    request.dataLength = record.dataLength;
    request.senseBuffer = record.error;
    request.senseLength = record.errorLength;
    return true;
}

}  // namespace

AdapterDevice::AdapterDevice(Common::string const& handle)
    : m_handle(handle.c_str()),
      m_node(property(handle, NodePath).c_str()),
      m_identity(getDeviceUniqueKey(handle).c_str()),
      m_status(property(handle, AdapterStatus) == "OK" ? InfoMgr::SUCCESS : InfoMgr::DEVICE_FAILED) {}

/// One that failed its discovery has no route, and may answer later.
ArrayControllerDevice::ArrayControllerDevice(Common::string const& handle)
    : AdapterDevice(withRoute(handle, CONTROLLER_ROUTE)) {}

int ArrayControllerDevice::rescan() {
    constexpr unsigned char ALLOCATION = 0x5F;
    unsigned char block[6] = {0x12, 0, 0, 0, ALLOCATION, 0};
    unsigned char reply[ALLOCATION] = {};
    SCSIRequest request;
    request.timeout = SHORTEST_TIMEOUT;
    request.cdb = block;
    request.cdbLength = sizeof block;
    request.dataBuffer = reply;
    request.dataLength = sizeof reply;
    bool const sent = SendSCSICommand(deviceHandle(), request);
    return outcome("Rescan of a controller", request, sent) == InfoMgr::SUCCESS ? InfoMgr::SUCCESS
                                                                                : InfoMgr::DEVICE_FAILED;
}

int ArrayControllerDevice::ifuncControlObjInfo(std::uint32_t kind, _INFOMGR_BMIC_REQUEST& record) {
    if (!isBuffer(record.data, record.dataLength) || !isBuffer(record.error, record.errorLength)) {
        return refused("Management request without its buffer");
    }
    if (record.dataLength > LONGEST_DATA) {
        return refused("Management request of more than 65,535 bytes");
    }
    BMICRequest request;
    request.transferType = record.dataLength == 0        ? EnTransferType::None
                           : kind == InfoMgr::WRITE_KIND ? EnTransferType::Out
                                                         : EnTransferType::In;
    request.timeout = SHORTEST_TIMEOUT;
    request.commandByte = record.opcode;
    request.details = record.address;
    request.unit = record.unit;
    // A driver may clear the whole buffer of a read that brings a part. The caller's gets what came, and
    // keeps what it had behind that: zeros there would end a text where the reply was cut.
    std::vector<unsigned char> data(record.data, record.data + record.dataLength);
    request.dataBuffer = data.data();
    request.dataLength = record.dataLength;
    request.senseBuffer = record.error;
    request.senseLength = record.errorLength;
    bool const sent = SendBMICCommand(deviceHandle(), request);
    int const status = outcome("Management request", request, sent);
    if (status == InfoMgr::SUCCESS && request.transferType == EnTransferType::In) {
        std::copy_n(data.begin(), std::min(request.dataLength, record.dataLength), record.data);
    }
    return status;
}

int ArrayControllerDevice::ifuncControlObjInfo(std::uint32_t, _INFOMGR_SCSI_REQUEST& record) {
    SCSIRequest request;
    if (!toRequest(record, request)) {
        return refused(
            "Pass-through request with a bad command block, without its buffer or with too long a read");
    }
    request.timeout = SHORTEST_TIMEOUT;
    bool const sent = SendSCSICommand(deviceHandle(), request);
    record.status = request.commandStatus;
    return outcome("Pass-through request", request, sent);
}

int ArrayControllerDevice::ifuncControlObjInfo(std::uint32_t, _INFOMGR_PASSTHRU_REQUEST& record) {
    SCSIRequest request;
    if (!toRequest(record, request)) {
        return refused(
            "Addressed pass-through request with a bad command block, without its buffer or with too long a "
            "read");
    }
    request.timeout = record.timeout;
    unsigned char const* const a = record.address;
    char route[sizeof CONTROLLER_ROUTE];
    std::snprintf(route, sizeof route, "QRTH:%02X%02X%02X%02X%02X%02X%02X%02X", a[0], a[1], a[2], a[3], a[4],
                  a[5], a[6], a[7]);
    bool const sent = SendSCSICommand(withRoute(deviceHandle(), route), request);
    record.scsiStatus = request.scsiStatus;
    record.status = request.commandStatus;
    record.lowLevelStatus = request.lowLevelStatus;
    return outcome("Addressed pass-through request", request, sent);
}

int SasAdapterDevice::rescan() {
    OpenDeviceNode const opened(Common::string(node().c_str()), false);
    CSMICommandHandler handler(false);
    std::uint32_t returnCode = 0;
    return handler.SendHBAControllerConfigCommand(opened, returnCode) && returnCode == 0
               ? InfoMgr::SUCCESS
               : InfoMgr::DEVICE_FAILED;
}

int SasAdapterDevice::ifuncControlObjInfo(std::uint32_t, _INFOMGR_CSMI_REQUEST& record) {
    if (record.request >> 16 != CSMI_REQUESTS || record.record == nullptr ||
        record.recordLength < sizeof(CsmiHeader) || record.recordLength > LARGEST_RECORD) {
        return refused("CSMI request of an unknown number, or with a record that can't be");
    }
    OpenDeviceNode const opened(Common::string(node().c_str()), false);
    CSMICommandHandler handler(false);
    std::uint32_t returnCode = 0;
    bool const sent =
        handler.SendCSMICommand(opened, record.request, record.record, record.recordLength, returnCode);
    return sent && returnCode == 0 ? InfoMgr::SUCCESS : InfoMgr::REQUEST_FAILED;
}
