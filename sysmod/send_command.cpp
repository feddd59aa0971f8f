#include "sysmod/send_command.h"

#include <cstring>

#include "common/debug_logger.h"
#include "sysmod/command_handlers.h"
#include "sysmod/command_log.h"
#include "sysmod/send_command_ex.h"

namespace Core::SysMod {

using Interface::SysMod::Command::ATARequest;
using Interface::SysMod::Command::BMICRequest;
using Interface::SysMod::Command::CSMIRequest;
using Interface::SysMod::Command::EnTransferType;
using Interface::SysMod::Command::SCSIRequest;

namespace {

constexpr unsigned ROUTE_KIND_LENGTH = 4;

Common::string routeKind(Common::string const& route) {
    return route.size() < ROUTE_KIND_LENGTH ? route : route.substr(0, ROUTE_KIND_LENGTH);
}

bool isMessage(EnTransferType transferType) {
    return transferType == EnTransferType::MessageIn || transferType == EnTransferType::MessageOut;
}

bool sendByNode(OpenDeviceNode const& node, SCSIRequest& request) {
    SCSICommandHandler handler;
    bool const sent = handler.SendSCSICommand(node, request.transferType, {request.cdb, request.cdbLength},
                                              request.timeout, {request.dataBuffer, request.dataLength},
                                              {request.senseBuffer, request.senseLength});
    request.commandStatus = 0;
    request.lowLevelStatus = handler.lowLevelError();
    return sent;
}

bool sendByController(OpenDeviceNode const& node, Common::string const& route, SCSIRequest& request) {
    std::uint8_t address[8];
    if (!parseLogicalUnitAddress(route, address)) {
        Common::DebugLogger::LogCommand("Route \"%s\" refused: 16 hexadecimal digits expected",
                                        route.c_str());
        return false;
    }
    CSMICommandHandler handler(true);
    bool sent = false;
    if (isMessage(request.transferType)) {
        sent = handler.SendQRTHPassthruMessage(node, address, request.transferType,
                                               {request.cdb, request.cdbLength}, request.timeout,
                                               request.commandStatus);
        request.scsiStatus = 0;
    } else {
        PassthruStatus status;
        sent = handler.SendQRTHPassthruCommand(
            node, address, request.transferType, {request.cdb, request.cdbLength}, request.timeout,
            {request.dataBuffer, request.dataLength}, {request.senseBuffer, request.senseLength}, status);
        if (sent) {
            request.scsiStatus = status.scsiStatus;
            request.commandStatus = status.commandStatus;
            if (request.transferType == EnTransferType::In) {
                request.dataLength -= std::min(status.residual, request.dataLength);
            }
        }
    }
    request.lowLevelStatus = handler.lowLevelError();
    return sent;
}

bool sendByCSMI(OpenDeviceNode const& node, Common::string const& route, SCSIRequest& request) {
    CSMIAddress address;
    if (!parseCSMIAddress(route, address)) {
        Common::DebugLogger::LogCommand("Route \"%s\" refused: phy, \":\" and 16 hexadecimal digits expected",
                                        route.c_str());
        return false;
    }
    CSMICommandHandler handler(false);
    std::uint32_t returned = request.dataLength;
    bool const sent = handler.SendCSMISSPPassthruCommand(
        node, address, request.transferType, {request.cdb, request.cdbLength},
        {request.dataBuffer, request.dataLength}, returned, {request.senseBuffer, request.senseLength},
        request.scsiStatus);
    if (sent) {
        request.dataLength = returned < request.dataLength ? returned : request.dataLength;
    }
    request.commandStatus = 0;
    request.lowLevelStatus = handler.lowLevelError();
    return sent;
}

}  // namespace

bool SendSCSICommandEx(OpenDeviceNode const& node, Common::string const (&table)[PROPERTY_COUNT],
                       SCSIRequest& request) {
    CommandLog::SCSILines const lines(request);
    Common::string const& route = table[Route];
    Common::string const kind = routeKind(route);
    bool sent = false;
    if (route.empty()) {
        sent = sendByNode(node, request);
    } else if (kind == "QRTH" || kind == "BMIC") {
        sent = sendByController(node, route, request);
    } else if (kind == "CSMI") {
        sent = sendByCSMI(node, route, request);
    }
    lines.end(sent, request);
    return sent;
}

bool SendBMICCommandEx(OpenDeviceNode const& node, Common::string const (&table)[PROPERTY_COUNT],
                       BMICRequest& request) {
    std::uint8_t address[8];
    if (routeKind(table[Route]) != "QRTH" || !parseLogicalUnitAddress(table[Route], address)) {
        return false;
    }
    CommandLog::BMICLines const lines(request);
    BMICCommandHandler handler;
    bool const sent = handler.SendBMICCommand(node, address, request);
    request.lowLevelStatus = handler.lowLevelError();
    lines.end(sent);
    return sent;
}

bool SendATACommandEx(OpenDeviceNode const& node, Common::string const (&table)[PROPERTY_COUNT],
                      ATARequest& request) {
    Common::string const kind = routeKind(table[Route]);
    bool const byNode =
        table[Route].empty() && (table[TransportKind] == "SCSI" || table[TransportKind] == "SCSIPT");
    if (!byNode && kind != "QRTH" && kind != "CSMI") {
        if (!table[Route].empty()) {
            return false;
        }
        ATACommandHandler handler;
        bool const sent = handler.SendATACommand(node, request);
        request.lowLevelStatus = handler.lowLevelError();
        return sent;
    }
    unsigned char block[ATACommandHandler::BLOCK_SIZE];
    if (!ATACommandHandler::ConvertToSCSIRequest(request, {block, sizeof block})) {
        return false;
    }
    SCSIRequest carrier;
    carrier.transferType = request.transferType;
    carrier.timeout = request.timeout;
    carrier.cdb = block;
    carrier.cdbLength = sizeof block;
    carrier.dataBuffer = request.dataBuffer;
    carrier.dataLength = request.dataLength;
    // The registers come back in sense data, also for a caller who has no use for it.
    unsigned char ownSense[Interface::SysMod::Command::SENSE_BUFFER_SIZE] = {};
    bool const hasSense = request.senseBuffer != nullptr;
    carrier.senseBuffer = hasSense ? request.senseBuffer : ownSense;
    carrier.senseLength = hasSense ? request.senseLength : sizeof ownSense;
    bool const sent = SendSCSICommandEx(node, table, carrier);
    if (sent) {
        ATACommandHandler::TakeResultRegisters({carrier.senseBuffer, carrier.senseLength}, request);
        if (request.transferType == EnTransferType::In) request.dataLength = carrier.dataLength;
    }
    request.scsiStatus = carrier.scsiStatus;
    request.lowLevelStatus = carrier.lowLevelStatus;
    return sent;
}

bool SendCSMICommandEx(OpenDeviceNode const& node, Common::string const (&table)[PROPERTY_COUNT],
                       CSMIRequest& request) {
    CSMIAddress address;
    if (!parseCSMIAddress(table[Route], address)) {
        return false;
    }
    CSMICommandHandler handler(false);
    bool const sent = handler.SendPauseBackgroundActivityCommand(node, address, request.pauseActivity != 0);
    request.lowLevelStatus = handler.lowLevelError();
    return sent;
}

}  // namespace Core::SysMod

namespace Interface::SysMod::Command {
namespace {

/// Nothing tells what became of the request.
template <typename Request>
bool hasNoOutcome(Request const& request) {
    bool told = request.lowLevelStatus != 0;
    if constexpr (requires { request.scsiStatus; }) told = told || request.scsiStatus != 0;
    if constexpr (requires { request.commandStatus; }) told = told || request.commandStatus != 0;
    return !told;
}

/// A failure always leaves a status: without one, five zeros would be filed as a success.
template <typename Request, typename Send>
bool sendThroughNode(Common::string const& handle, Request& request, Send send) {
    Core::SysMod::PropertyTable table;
    Core::SysMod::toPropertyTable(handle, table);
    Core::SysMod::OpenDeviceNode const node(table, false);
    bool const sent = send(node, table, request);
    if (!sent && hasNoOutcome(request)) {
        request.lowLevelStatus = NOT_DELIVERED;
    }
    return sent;
}

}  // namespace

bool SendBMICCommand(Common::string const& handle, BMICRequest& request) {
    return sendThroughNode(handle, request, Core::SysMod::SendBMICCommandEx);
}

bool SendSCSICommand(Common::string const& handle, SCSIRequest& request) {
    return sendThroughNode(handle, request, Core::SysMod::SendSCSICommandEx);
}

bool SendATACommand(Common::string const& handle, ATARequest& request) {
    return sendThroughNode(handle, request, Core::SysMod::SendATACommandEx);
}

bool SendCSMICommand(Common::string const& handle, CSMIRequest& request) {
    return sendThroughNode(handle, request, Core::SysMod::SendCSMICommandEx);
}

bool SendRegNewDiskMessage(Common::string const& handle) {
    Core::SysMod::PropertyTable table;
    Core::SysMod::toPropertyTable(handle, table);
    Core::SysMod::OpenDeviceNode const node(table, false);
    int lowLevelError = 0;
    return node.isOpen() && Core::SysMod::SCSICommandHandler::SendIOCTL(
                                node.descriptor(), Core::SysMod::XQRTH_REGNEWD, nullptr, lowLevelError);
}

}  // namespace Interface::SysMod::Command
