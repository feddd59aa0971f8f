#include "storage/operations/write_set_capability_mask.h"

#include "core/tolkmod.h"
#include "storage/capability_mask.h"

namespace Operations {
namespace {

using Mask = Interface::StorageMod::GlobalCapabilityMaskClass;

/// One flag: the argument that sets it, and its two values.
struct FlagRow {
    char const* argument;
    char const* enable;
    char const* disable;
    bool Mask::*flag;
};

// The words of a row differ in one place; the macro keeps them from drifting apart.
#define KSL_FLAG_ROW(word, flag)                                                           \
    {                                                                                      \
        "ATTR_NAME_CAPABILITY_MASK_" #word, "ATTR_VALUE_CAPABILITY_MASK_" #word "_ENABLE", \
            "ATTR_VALUE_CAPABILITY_MASK_" #word "_DISABLE", &Mask::flag                    \
    }
constexpr FlagRow FLAGS[] = {
    KSL_FLAG_ROW(EXPERIMENTAL, m_EnableExperimental),
    KSL_FLAG_ROW(RDX, m_EnableRDXMasking),
    KSL_FLAG_ROW(GENERIC_CONTROLLER, m_EnableGenericControllerSupport),
    KSL_FLAG_ROW(OFFLINE, m_EnableOfflineSupport),
    KSL_FLAG_ROW(ACOUSTIC_DEBUG, m_EnableAcousticDebug),
    KSL_FLAG_ROW(TARN_DEBUG, m_EnableTarnDebug),
    KSL_FLAG_ROW(MLT_SCRIPTING, m_EnableMLTScripting),
    KSL_FLAG_ROW(MLT_SCRIPTING_SPLITJOIN, m_EnableMLTScriptingSplitJoin),
    KSL_FLAG_ROW(ANY_SEP_FLASH, m_EnableAnySEPFlash),
};
#undef KSL_FLAG_ROW

FlagRow const* findFlag(Common::string const& argument) {
    for (FlagRow const& row : FLAGS) {
        if (argument == row.argument) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace

Core::OperationReturn WriteSetCapabilityMask::visit(Schema::ModRoot&) {
    Mask& mask = Interface::StorageMod::globalCapabilityMask();
    for (auto argument = beginArgument(); argument != endArgument(); ++argument) {
        FlagRow const* const row = (*argument).first == eSET ? findFlag((*argument).second.first) : nullptr;
        if (row == nullptr) {
            continue;
        }
        Common::string const value = (*argument).second.second;
        if (value != row->enable && value != row->disable) {
            return Core::OperationReturn(Interface::TOLKMod::OperationReturn::ATTR_VALUE_STATUS_FAILURE);
        }
        mask.*row->flag = value == row->enable;
    }
    return Core::OperationReturn();
}

}  // namespace Operations
