#include "src/operationResult.h"

#include <gtest/gtest.h>

#include "tests/src/FakeDevices.h"
#include "tests/src/RunFixture.h"

namespace {

using OperationResultTest = RunTest;

/// A result within the list: its attributes, without a status unless one is given.
Core::OperationReturn element(std::vector<std::pair<char const*, char const*>> const& attributes) {
    Core::OperationReturn one;
    one.Clear("ATTR_NAME_STATUS");
    for (auto const& [name, value] : attributes) {
        one.Receive(Core::Attribute(name, value));
    }
    return one;
}

Core::OperationReturn failureWith(std::vector<Core::OperationReturn> const& elements) {
    Common::list<Core::OperationReturn> list;
    for (auto const& one : elements) {
        list.push_back(one);
    }
    Core::OperationReturn result("ATTR_VALUE_STATUS_OPERATION_RETURN_LIST");
    result.Receive(Core::Attribute("ATTR_NAME_OPERATION_RETURN_LIST", list));
    return result;
}

constexpr char CRITICAL[] =
    "   critical error: SEP component failed to flash - replace\n"
    "   possible data loss - power off, unplug all cables, and contact support\n";

TEST_F(OperationResultTest, IsToldInWordsAndACode) {
    EXPECT_EQ(LogOperationReturn(Core::OperationReturn(), "array flash"), 0);
    EXPECT_EQ(takeVerboseLog(), "The array flash operation succeeded.\n");
    Core::OperationReturn const critical = element({{"ATTR_NAME_ADDITIONAL_STATUS", "2147483648"}});
    Core::OperationReturn const other = element({{"ATTR_NAME_ADDITIONAL_STATUS", "0"}});
    std::string const criticalText =
        "   ATTR_NAME_ADDITIONAL_STATUS = 2147483648\n   Internal Failure code 0x80000000\n" +
        std::string(CRITICAL);
    std::string const otherText = "   ATTR_NAME_ADDITIONAL_STATUS = 0\n   Internal Failure code 0x0\n";
    auto const asc = [](char const* value) {
        return failureWith({element({{"ATTR_NAME_SCSI_ASC", value}})});
    };
    struct {
        Core::OperationReturn result;
        int code;
        std::string log;
    } const cases[] = {
        {Core::OperationReturn("ATTR_VALUE_X"), 9, "   No status information is available.\n"},
        {failureWith({}), 9, "   No additional status information is available.\n"},
        {failureWith({element({}), element({})}), 9, "   No additional status information is available.\n"},
        {asc("36"), 9, "   ATTR_NAME_SCSI_ASC = 36\n      Invalid Field in CDB.\n"},
        {asc("37"), 9, "   ATTR_NAME_SCSI_ASC = 37\n"},
        {asc("38"), 9, "   ATTR_NAME_SCSI_ASC = 38\n      Invalid ROM image.\n"},
        {asc("44"), 9, "   ATTR_NAME_SCSI_ASC = 44\n      Internal enclosure error.\n"},
        {asc("68"), 9, "   ATTR_NAME_SCSI_ASC = 68\n      Hardware component not found.\n"},
        // Only the code itself has a text, not its qualifier.
        {failureWith({element({{"ATTR_NAME_STATUS", "S"}, {"ATTR_NAME_SCSI_ASCQ", "38"}})}), 9,
         "   ATTR_NAME_SCSI_ASCQ = 38\n   ATTR_NAME_STATUS = S\n"},
        // A critical word stands, before another and behind it.
        {failureWith({critical, other}), 8, criticalText + otherText},
        {failureWith({other, critical}), 8, otherText + criticalText},
    };
    for (auto const& one : cases) {
        EXPECT_EQ(LogOperationReturn(one.result, "array flash"), one.code);
        EXPECT_EQ(takeVerboseLog(), "The array flash operation failed:\n" + one.log);
    }
}

TEST_F(OperationResultTest, EveryBitOfTheFailureWordHasItsLine) {
    struct {
        unsigned int word;
        int code;
        std::string lines;
    } const cases[] = {
        {0x0, 9, ""},
        {0x1, 9, "     Backplane component 1 failed to flash - replace\n"},
        {0x2, 9, "    Backplane component 2 failed to flash - replace\n"},
        {0x4, 9, "    Backplane component 3 failed to flash - replace\n"},
        {0x8, 9, "    Backplane component 4 failed to flash - replace\n"},
        {0x10, 9, "    Fan Control Module 1 failed to flash - replace\n"},
        {0x20, 9, "    Fan Control Module 2 failed to flash - replace\n"},
        {0x40, 9, "    Fan Control Module failed to flash - replace\n"},
        {0x80, 9, "    Fan Control Module failed to flash - replace\n"},
        {0x100, 9, "    HMM component 1 failed to flash - replace\n"},
        {0x200, 9, "    HMM component 2 failed to flash - replace\n"},
        {0x400, 9, "    HMM component  failed to flash - replace\n"},
        {0x800, 9, "    HMM component failed to flash - replace\n"},
        {0x1000, 9, "    7 Segment display component failed to flash - replace\n"},
        {0x7fffe000, 9, ""},
        {0x80000000, 8, CRITICAL},
        {0x80001002, 8,
         "    Backplane component 2 failed to flash - replace\n"
         "    7 Segment display component failed to flash - replace\n" +
             std::string(CRITICAL)},
    };
    for (auto const& one : cases) {
        EXPECT_EQ(CheckFlashFailure(one.word), one.code) << one.word;
        char first[64];
        std::snprintf(first, sizeof first, "   Internal Failure code 0x%x\n", one.word);
        EXPECT_EQ(takeVerboseLog(), first + one.lines);
    }
}

TEST_F(OperationResultTest, ProbeTellsARefusalAndNothingElse) {
    Fake const controller = fakeController();
    EXPECT_EQ(CheckSupportedOperation(controller, "OPERATION_X"), 9);
    EXPECT_EQ(takeVerboseLog(), "Device refused OPERATION_X...\n");
    FakeOperation& operation = controller->offer("OPERATION_X");
    operation.results = {Core::OperationReturn(), failureWord(0x80000000)};
    EXPECT_EQ(CheckSupportedOperation(controller, "OPERATION_X"), 0);
    EXPECT_EQ(takeVerboseLog(), "Requesting controller information...\nOPERATION_X successful\n");
    EXPECT_EQ(CheckSupportedOperation(controller, "OPERATION_X"), 0);
    EXPECT_EQ(takeVerboseLog(), "Requesting controller information...\nOPERATION_X failed\n");
}

}  // namespace
