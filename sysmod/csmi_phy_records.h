#pragma once

/// CSMI records about phys and the Serial Management Protocol, as the CSMI standard lays them out. None holds
/// a pointer, so that all builds share one form.

#include "sysmod/kernel_records.h"

namespace Core::SysMod {

inline constexpr unsigned long CSMI_GET_PHY_INFO = 0xCC770014;
inline constexpr unsigned long CSMI_SMP_PASSTHRU = 0xCC770017;

/// What one end of a link said of itself (the IDENTIFY address frame of SAS).
struct CsmiIdentify {
    std::uint8_t deviceType;  ///< bits 4 to 6: 0 none, 1 end device, 2 edge and 3 fanout expander
    std::uint8_t restricted;
    std::uint8_t initiatorProtocols;
    std::uint8_t targetProtocols;  ///< 1 SATA, 2 SMP, 4 STP, 8 SSP
    std::uint8_t restricted4[8];
    std::uint8_t sasAddress[8];
    std::uint8_t phyIdentifier;
    std::uint8_t signalClass;
    std::uint8_t reserved[6];
};

struct CsmiPhyEntity {
    CsmiIdentify identify;
    std::uint8_t portIdentifier;
    std::uint8_t negotiatedLinkRate;
    std::uint8_t minimumLinkRate;
    std::uint8_t maximumLinkRate;
    std::uint8_t changeCount;
    std::uint8_t autoDiscover;
    std::uint8_t reserved[2];
    CsmiIdentify attached;
};

struct CsmiPhyInfo {
    static constexpr unsigned PHYS = 32;

    CsmiHeader header;
    std::uint8_t phyCount;  ///< may claim more than PHYS
    std::uint8_t reserved[3];
    CsmiPhyEntity phys[PHYS];
};

struct CsmiSmpPassthru {
    static constexpr std::size_t FRAME = 1020;

    CsmiHeader header;
    std::uint8_t phyIdentifier;
    std::uint8_t portIdentifier;
    std::uint8_t connectionRate;
    std::uint8_t reserved23;
    std::uint8_t destination[8];
    std::uint32_t requestLength;  ///< without the frame's CRC
    std::uint8_t request[FRAME];
    std::uint8_t connectionStatus;
    std::uint8_t reserved1057[3];
    std::uint32_t responseBytes;
    std::uint8_t response[FRAME];
};

static_assert(sizeof(CsmiIdentify) == 28);
static_assert(offsetof(CsmiIdentify, sasAddress) == 12);
static_assert(offsetof(CsmiIdentify, phyIdentifier) == 20);
static_assert(sizeof(CsmiPhyEntity) == 64);
static_assert(offsetof(CsmiPhyEntity, portIdentifier) == 28);
static_assert(offsetof(CsmiPhyEntity, attached) == 36);
static_assert(sizeof(CsmiPhyInfo) == 2072);
static_assert(offsetof(CsmiPhyInfo, phyCount) == 20);
static_assert(offsetof(CsmiPhyInfo, phys) == 24);
static_assert(sizeof(CsmiSmpPassthru) == 2084);
static_assert(offsetof(CsmiSmpPassthru, phyIdentifier) == 20);
static_assert(offsetof(CsmiSmpPassthru, destination) == 24);
static_assert(offsetof(CsmiSmpPassthru, requestLength) == 32);
static_assert(offsetof(CsmiSmpPassthru, request) == 36);
static_assert(offsetof(CsmiSmpPassthru, connectionStatus) == 1056);
static_assert(offsetof(CsmiSmpPassthru, responseBytes) == 1060);
static_assert(offsetof(CsmiSmpPassthru, response) == 1064);

}  // namespace Core::SysMod
