#include "storage/capability_mask.h"

#include <gtest/gtest.h>

#include "core/device_factory.h"
#include "storage/operations/write_set_capability_mask.h"
#include "storage/schema/mod_root.h"

namespace {

using Mask = Interface::StorageMod::GlobalCapabilityMaskClass;
using Core::DeviceOperation;

class CapabilityMask : public ::testing::Test {
  protected:
    ~CapabilityMask() override {
        mask = Mask();
        Core::DeviceFactory::ReleaseRoot(root);
    }

    bool perform(std::initializer_list<std::pair<std::string, std::string>> arguments,
                 DeviceOperation::EnAction action = DeviceOperation::eSET) {
        Common::shared_ptr<DeviceOperation> const operation(new Operations::WriteSetCapabilityMask);
        for (auto const& [name, value] : arguments) {
            operation->SetArgument(action, name.c_str(), value.c_str());
        }
        return static_cast<bool>(root->perform(operation));
    }

    Mask& mask = Interface::StorageMod::globalCapabilityMask();
    Common::shared_ptr<Core::Device> root = (new Schema::ModRoot)->getDevicePtr();
};

TEST_F(CapabilityMask, EachArgumentSetsItsFlag) {
    struct Row {
        char const* word;
        bool Mask::*flag;
    };
    static Row const rows[] = {
        {"EXPERIMENTAL", &Mask::m_EnableExperimental},
        {"RDX", &Mask::m_EnableRDXMasking},
        {"GENERIC_CONTROLLER", &Mask::m_EnableGenericControllerSupport},
        {"OFFLINE", &Mask::m_EnableOfflineSupport},
        {"ACOUSTIC_DEBUG", &Mask::m_EnableAcousticDebug},
        {"TARN_DEBUG", &Mask::m_EnableTarnDebug},
        {"MLT_SCRIPTING", &Mask::m_EnableMLTScripting},
        {"MLT_SCRIPTING_SPLITJOIN", &Mask::m_EnableMLTScriptingSplitJoin},
        {"ANY_SEP_FLASH", &Mask::m_EnableAnySEPFlash},
    };
    for (Row const& row : rows) {
        std::string const name = std::string("ATTR_NAME_CAPABILITY_MASK_") + row.word;
        std::string const value = std::string("ATTR_VALUE_CAPABILITY_MASK_") + row.word;
        mask = Mask();
        EXPECT_TRUE(perform({{name, value + "_ENABLE"}})) << row.word;
        for (Row const& other : rows) {
            EXPECT_EQ(mask.*other.flag, &row == &other) << row.word << " and " << other.word;
        }
        EXPECT_TRUE(perform({{name, value + "_DISABLE"}}));
        EXPECT_FALSE(mask.*row.flag);
    }
}

TEST_F(CapabilityMask, ABadValueFailsAndEndsTheScan) {
    EXPECT_FALSE(
        perform({{"ATTR_NAME_CAPABILITY_MASK_RDX", "ATTR_VALUE_CAPABILITY_MASK_RDX_ENABLE"},
                 {"ATTR_NAME_CAPABILITY_MASK_OFFLINE", "yes"},
                 {"ATTR_NAME_CAPABILITY_MASK_TARN_DEBUG", "ATTR_VALUE_CAPABILITY_MASK_TARN_DEBUG_ENABLE"}}));
    EXPECT_TRUE(mask.m_EnableRDXMasking);
    EXPECT_FALSE(mask.m_EnableTarnDebug);
}

TEST_F(CapabilityMask, UnknownNamesAndOtherActionsAreNotConsidered) {
    EXPECT_TRUE(perform({{"ATTR_NAME_SOMETHING", "yes"}}));
    EXPECT_TRUE(perform({{"ATTR_NAME_CAPABILITY_MASK_RDX", "yes"}}, DeviceOperation::eRelative));
}

}  // namespace
