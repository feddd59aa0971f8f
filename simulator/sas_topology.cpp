#include "simulator/sas_topology.h"

#include <algorithm>
#include <cstdio>

#include "simulator/drive.h"

namespace simulator {

namespace {

constexpr std::uint8_t RESPONSE = 0x41;
constexpr std::uint8_t REPORT_GENERAL = 0x00;
constexpr std::uint8_t DISCOVER = 0x10;
constexpr std::uint8_t UNKNOWN_FUNCTION = 0x01;
constexpr std::uint8_t NO_SUCH_PHY = 0x10;
constexpr std::uint8_t LINK_RATE_6_GBPS = 0x0A;

std::uint64_t numberOf(SasAddress const& address) {
    return getBig(address.data(), address.size());
}

SasPhys readPhys(Value const& value, SasPhys& known, TargetPlace const& place);

std::shared_ptr<SasDevice> readSasDevice(Value const& value, SasPhys& known, TargetPlace const& place) {
    Object const object(value);
    if (auto const same = object.find("same_as")) {
        SasAddress const address = readAddressText(*same);
        object.refuseOthers();
        for (auto const& device : known)
            if (device->address == address) return device;
        same->refuse("the address of a device on an earlier phy");
    }
    auto device = std::make_shared<SasDevice>();
    device->address = readAddressText(object.at("sas_address"));
    std::string const kind = object.at("kind").text();
    if (kind == "expander" || kind == "fanout_expander") {
        device->type = kind == "expander" ? 2 : 3;
        device->targetProtocols = 2;
        if (auto const phys = object.find("phys")) device->phys = readPhys(*phys, known, place);
        device->phyCount = static_cast<std::uint8_t>(object.numberOr("phy_count", device->phys.size(), 255));
    } else if (kind == "host") {
        device->targetProtocols = 0;
    } else {
        TargetPlace own = place;
        own.worldWideName = numberOf(device->address);
        device->target = makeScsiTarget(object, own);
        auto const* const drive = dynamic_cast<Drive const*>(device->target.get());
        if (drive != nullptr && drive->isSata()) device->targetProtocols = 1;
    }
    device->targetProtocols =
        static_cast<std::uint8_t>(object.numberOr("target_protocols", device->targetProtocols, 0x0F));
    object.refuseOthers();
    known.push_back(device);  // behind its own phys: a ring of devices would own itself
    return device;
}

SasPhys readPhys(Value const& value, SasPhys& known, TargetPlace const& place) {
    SasPhys phys;
    for (Value const& each : value.list())
        phys.push_back(each.json().is_null() ? nullptr : readSasDevice(each, known, place));
    return phys;
}

}  // namespace

SasPhys readPhys(Value const& value, TargetPlace const& place) {
    SasPhys known;
    return readPhys(value, known, place);
}

std::vector<ScsiTarget*> sasTargets(SasPhys const& phys) {
    std::vector<ScsiTarget*> found;
    auto const add = [&](ScsiTarget* target) {
        if (std::find(found.begin(), found.end(), target) == found.end()) found.push_back(target);
    };
    for (auto const& device : phys) {
        if (!device) continue;
        if (device->target && !device->target->name().empty()) add(device->target.get());
        for (ScsiTarget* const target : sasTargets(device->phys))
            add(target);
    }
    return found;
}

SasDevice* findSasDevice(SasPhys const& phys, SasAddress const& address) {
    for (auto const& device : phys) {
        if (!device) continue;
        if (device->address == address) return device.get();
        if (SasDevice* const behind = findSasDevice(device->phys, address)) return behind;
    }
    return nullptr;
}

Bytes answerSmp(SasDevice const& expander, Bytes const& request, std::uint64_t now) {
    std::uint8_t const function = request.size() > 1 ? request[1] : 0xFF;
    Bytes response = {RESPONSE, function, 0, 0};
    if (function == REPORT_GENERAL) {
        response.resize(28);
        response[3] = 6;
        response[9] = expander.phyCount;
    } else if (function == DISCOVER && request.size() > 9) {
        response.resize(52);
        response[3] = 12;
        response[9] = request[9];
        if (request[9] >= expander.phyCount) {
            response[2] = NO_SUCH_PHY;
            return response;
        }
        std::copy(expander.address.begin(), expander.address.end(), response.begin() + 16);
        if (request[9] < expander.phys.size() && expander.phys[request[9]] &&
            expander.phys[request[9]]->present(now)) {
            SasDevice const& attached = *expander.phys[request[9]];
            response[12] = static_cast<std::uint8_t>(attached.type << 4);
            response[13] = LINK_RATE_6_GBPS;
            response[15] = attached.targetProtocols;
            std::copy(attached.address.begin(), attached.address.end(), response.begin() + 24);
        }
    } else {
        response[2] = UNKNOWN_FUNCTION;
    }
    return response;
}

std::string smpName(Bytes const& request) {
    std::uint8_t const function = request.size() > 1 ? request[1] : 0xFF;
    if (function == REPORT_GENERAL) return "SMP REPORT GENERAL";
    if (function == DISCOVER) return "SMP DISCOVER";
    char text[16];
    std::snprintf(text, sizeof text, "SMP 0x%02X", function);
    return text;
}

}  // namespace simulator
