#include "sysmod/transfer_type.h"

namespace Interface::SysMod::Command {

char const* toText(EnTransferType transferType) {
    switch (transferType) {
        case EnTransferType::In:
        case EnTransferType::MessageIn:
            return "In";
        case EnTransferType::Out:
        case EnTransferType::MessageOut:
            return "Out";
        case EnTransferType::InOut:
            return "InOut";
        case EnTransferType::None:
            break;
    }
    return "None";
}

}  // namespace Interface::SysMod::Command
