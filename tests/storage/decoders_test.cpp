// Codes of records and the attribute values that they stand for. The ends of each table and its gaps are
// here; what lies between follows the names of the values.

#include "storage/schema/array_controller.h"
#include "storage/schema/drives.h"
#include "tests/storage/storage_fixture.h"

namespace storage_test {
namespace {

using Schema::ArrayController;
using Schema::PhysicalDrive;

TEST(Decoders, TurnCodesIntoValues) {
    using Byte = unsigned char;
    using Word = unsigned short;
    std::pair<Common::string, char const*> const rows[] = {
        {ArrayController::cacheDisableCode(Word{0}), "ATTR_VALUE_CACHE_DISABLE_CODE_NONE"},
        {ArrayController::cacheDisableCode(Word{11}), "ATTR_VALUE_CACHE_DISABLE_CODE_DISABLED_BY_USER"},
        {ArrayController::cacheDisableCode(Word{0x0101}), "ATTR_VALUE_CACHE_DISABLE_CODE_UNKNOWN"},
        {ArrayController::devicePathSelectionMethod(Byte{2}),
         "ATTR_VALUE_DEVICE_PATH_SELECTION_METHOD_PREFERRED_PATH"},
        {ArrayController::devicePathSelectionMethod(Byte{3}),
         "ATTR_VALUE_DEVICE_PATH_SELECTION_METHOD_UNKNOWN"},
        {ArrayController::expandPriority(Word{0}, Byte{3}), "ATTR_VALUE_EXPAND_PRIORITY_LOW"},
        {ArrayController::expandPriority(Word{2}, Byte{9}), "ATTR_VALUE_EXPAND_PRIORITY_HIGH"},
        {ArrayController::expandPriority(Word{1}, Byte{9}), ""},
        {ArrayController::expandPriority(Word{0}, Byte{0}), "ATTR_VALUE_EXPAND_PRIORITY_UNKNOWN"},
        {ArrayController::rebuildPriority(false, Word{0}, Byte{6}), "ATTR_VALUE_REBUILD_PRIORITY_MEDIUM"},
        {ArrayController::rebuildPriority(false, Word{0}, Byte{12}), "ATTR_VALUE_REBUILD_PRIORITY_UNKNOWN"},
        {ArrayController::rebuildPriority(true, Word{1}, Byte{12}), "ATTR_VALUE_REBUILD_PRIORITY_RAPID"},
        {ArrayController::rebuildPriority(true, Word{0}, Byte{8}), "ATTR_VALUE_REBUILD_PRIORITY_MEDIUM_HIGH"},
        {ArrayController::rebuildPriority(true, Word{2}, Byte{8}), ""},
        {ArrayController::surfaceAnalysisPriority(Byte{0}), "ATTR_VALUE_SURFACE_ANALYSIS_PRIORITY_DISABLED"},
        {ArrayController::surfaceAnalysisPriority(Byte{4}), "ATTR_VALUE_SURFACE_ANALYSIS_PRIORITY_UNKNOWN"},
        {ArrayController::forcedTransferMode(Byte{6}), "ATTR_VALUE_FORCED_TRANSFER_MODE_ULTRA320"},
        {ArrayController::forcedTransferMode(Byte{7}), "ATTR_VALUE_FORCED_TRANSFER_MODE_UNKNOWN"},
        {ArrayController::forcedTransferWidth(Byte{2}), "ATTR_VALUE_FORCED_TRANSFER_WIDTH_WIDE"},
        {ArrayController::forcedTransferWidth(Byte{3}), "ATTR_VALUE_FORCED_TRANSFER_WIDTH_UNKNOWN"},
        {ArrayController::redundancyFailReason(Byte{8}),
         "ATTR_VALUE_REDUNDANCY_STATE_UNSUPPORTED_CONFIGURATION"},
        {ArrayController::redundancyFailReason(Byte{9}), "ATTR_VALUE_REDUNDANCY_STATE_UNKNOWN"},
        {PhysicalDrive::interfaceType(Byte{0}), "ATTR_VALUE_INTERFACE_PARALLEL_SCSI"},
        {PhysicalDrive::interfaceType(Byte{4}), "ATTR_VALUE_INTERFACE_SAS_SSD"},
        {PhysicalDrive::interfaceType(Byte{5}), "ATTR_VALUE_INTERFACE_UNKNOWN"},
        {PhysicalDrive::lastFailureReason(Byte{0}), "ATTR_VALUE_LAST_FAILURE_REASON_NONE"},
        {PhysicalDrive::lastFailureReason(Byte{16}), "ATTR_VALUE_LAST_FAILURE_REASON_FORCED_BY_USER"},
        {PhysicalDrive::lastFailureReason(Byte{17}), "ATTR_VALUE_LAST_FAILURE_REASON_UNKNOWN"},
        // SPL, negotiated logical link rate: 7h isn't assigned, 8h is G1.
        {PhysicalDrive::negotiatedLinkRate(Byte{0}), "ATTR_VALUE_NEGOTIATED_LINK_RATE_UNKNOWN"},
        {PhysicalDrive::negotiatedLinkRate(Byte{1}), "ATTR_VALUE_NEGOTIATED_LINK_RATE_DISABLED"},
        {PhysicalDrive::negotiatedLinkRate(Byte{7}), "ATTR_VALUE_NEGOTIATED_LINK_RATE_UNKNOWN"},
        {PhysicalDrive::negotiatedLinkRate(Byte{8}), "ATTR_VALUE_NEGOTIATED_LINK_RATE_1_5_GBPS"},
        {PhysicalDrive::negotiatedLinkRate(Byte{11}), "ATTR_VALUE_NEGOTIATED_LINK_RATE_12_0_GBPS"},
    };
    for (auto const& [value, expected] : rows)
        EXPECT_EQ(expected, str(value));
}

TEST(Decoders, TakeADriveWithoutRotationForSolidState) {
    struct Row {
        unsigned char deviceType;
        unsigned rate;
        char const* expected;
    };
    static Row const rows[] = {
        {1, 7200, "ATTR_VALUE_INTERFACE_SATA"}, {1, 1, "ATTR_VALUE_INTERFACE_SATA_SSD"},
        {2, 0, "ATTR_VALUE_INTERFACE_SAS"},     {2, 1, "ATTR_VALUE_INTERFACE_SAS_SSD"},
        {4, 0, "ATTR_VALUE_INTERFACE_SAS_SSD"}, {9, 1, "ATTR_VALUE_INTERFACE_UNKNOWN"},
    };
    for (Row const& row : rows) {
        Common::copy_ptr<Records::PHYSICAL_DRIVE_STATUS> status(new Records::PHYSICAL_DRIVE_STATUS());
        status->bDeviceType = row.deviceType;
        status->dwRPM = row.rate;
        EXPECT_EQ(row.expected, str(PhysicalDrive::interfaceTypeEx(status)));
    }
    EXPECT_EQ("ATTR_VALUE_INTERFACE_UNKNOWN", str(PhysicalDrive::interfaceTypeEx({})));
}

/// What the identify reply says of a controller's abilities is kept, and renewed by a rediscovery.
TEST(ControllerSupport, ComesFromTheIdentifyReply) {
    struct Row {
        unsigned char features;
        unsigned yetMore;
        unsigned evenMore;
        unsigned fixedLength;
        bool sas, split, nWay;
    };
    static Row const rows[] = {
        {0, 0, 0, 512, false, false, false},      {1, 0, 0, 512, true, false, false},
        {0xFE, 0x40, 0, 512, false, true, false}, {0, 0xFFFFFFBF, 1, 272, false, false, true},
        {0, 0, 1, 271, false, false, false},
    };
    ArrayController known("", false, 128, 32, "K");
    for (Row const& row : rows) {
        auto* const fresh = new ArrayController("", false, 128, 32, "K");
        DevicePointer const twin(fresh);
        Common::copy_ptr<Records::IDENTIFY_CONTROLLER> identify(new Records::IDENTIFY_CONTROLLER());
        identify->pbFeaturesSupported[0] = row.features;
        identify->dwYetMoreControllerFlags = row.yetMore;
        identify->dwEvenMoreControllerFlags = row.evenMore;
        identify->dwFixedStructureLength = row.fixedLength;
        fresh->InitializeSupport(identify);
        known.UpdateWith(twin);
        EXPECT_EQ(row.sas, known.sasFeatureSupport());
        EXPECT_EQ(row.split, known.splitMirrorSupport());
        EXPECT_EQ(row.nWay, known.allowNWayMirror());
    }
}

}  // namespace
}  // namespace storage_test
