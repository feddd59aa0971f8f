#include "command/scsi_status.h"

#include "common/list.h"

namespace {

struct StatusDescription {
    std::uint16_t commandStatus = 0;
    std::uint8_t scsiStatus = 0;
    std::uint8_t senseKey = 0;
    std::uint8_t asc = 0;
    std::uint8_t ascq = 0;
    Common::string text;

    bool hasKeyOf(StatusDescription const& other) const {
        return commandStatus == other.commandStatus && scsiStatus == other.scsiStatus &&
               senseKey == other.senseKey && asc == other.asc && ascq == other.ascq;
    }
};

struct LowLevelDescription {
    std::int32_t lowLevelStatus = 0;
    Common::string text;

    bool hasKeyOf(LowLevelDescription const& other) const { return lowLevelStatus == other.lowLevelStatus; }
};

template <class Description>
void add(Common::list<Description>& descriptions, Description const& description) {
    for (auto i = descriptions.begin(); i != descriptions.end(); ++i) {
        if (i->hasKeyOf(description)) {
            descriptions.erase(i);
            break;
        }
    }
    descriptions.push_back(description);
}

struct Descriptions {
    Common::list<StatusDescription> command;
    Common::list<LowLevelDescription> lowLevel;

    Descriptions() {
        constexpr std::uint8_t any = SCSIStatus::ANY_BYTE;
        add(command, {0, 0, 0, 0, 0, SCSIStatus::DEFAULT_SUCCESS});
        add(command, {2, any, any, any, any, SCSIStatus::DEFAULT_SUCCESS});  // data underrun
        add(command, {3, any, any, any, any, SCSIStatus::DEFAULT_SUCCESS});  // data overrun
        add(command, {4, any, any, any, any, SCSIStatus::DEFAULT_FAILURE});  // invalid command
        add(lowLevel, {0, SCSIStatus::DEFAULT_SUCCESS});
    }
};

Descriptions& descriptions() {
    static Descriptions s_descriptions;
    return s_descriptions;
}

bool byteMatches(std::uint8_t wanted, std::uint8_t actual) {
    return wanted == SCSIStatus::ANY_BYTE || wanted == actual;
}

bool matches(StatusDescription const& wanted, SCSIStatus const& actual) {
    return (wanted.commandStatus == SCSIStatus::ANY_COMMAND_STATUS ||
            wanted.commandStatus == actual.wCommandStatus()) &&
           byteMatches(wanted.scsiStatus, actual.bScsiStatus()) &&
           byteMatches(wanted.senseKey, actual.bSenseKey()) && byteMatches(wanted.asc, actual.bASC()) &&
           byteMatches(wanted.ascq, actual.bASCQ());
}

Common::string const* findText(SCSIStatus const& status) {
    if (status.isDelivered()) {
        for (StatusDescription const& description : descriptions().command) {
            if (matches(description, status)) return &description.text;
        }
    } else {
        for (LowLevelDescription const& description : descriptions().lowLevel) {
            if (description.lowLevelStatus == status.i32LowLevelStatus()) return &description.text;
        }
    }
    return nullptr;
}

}  // namespace

bool SCSIStatus::hasStatusDescription() const {
    return !m_delivered || findText(*this) != nullptr;
}

Common::string SCSIStatus::statusDescription() const {
    Common::string const* const text = findText(*this);
    if (text != nullptr) return *text;
    return m_delivered ? DEFAULT_FAILURE : DEFAULT_COMMUNICATION_ERROR;
}

void SCSIStatus::AddStatusDescription(std::uint16_t commandStatus, std::uint8_t scsiStatus,
                                      std::uint8_t senseKey, std::uint8_t asc, std::uint8_t ascq,
                                      Common::string const& text) {
    add(descriptions().command, {commandStatus, scsiStatus, senseKey, asc, ascq, text});
}

void SCSIStatus::AddLowLevelStatusDescription(std::int32_t lowLevelStatus, Common::string const& text) {
    add(descriptions().lowLevel, {lowLevelStatus, text});
}

void SCSIStatus::ForgetStatusDescriptions() {
    descriptions() = Descriptions();
}

void SCSIStatus::TakeSense(unsigned char const* sense) {
    if (sense == nullptr) return;
    m_bSenseKey = sense[2] & 0x0F;
    m_bASC = sense[12];
    m_bASCQ = sense[13];
}
