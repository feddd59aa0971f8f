#pragma once

/// Enclosure processors that take what they are sent and answer by a rule, behind a controller that knows
/// their identify pages. What is behind the controller's node is the machine's list of physical devices.

#include <functional>
#include <map>
#include <mutex>

#include "common/debug_logger.h"
#include "common/sleep.h"
#include "flash/write_flash_sep_firmware.h"
#include "storage/operations/physical_device_iterator.h"
#include "storage/schema/adapters.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/identity.h"
#include "storage/schema/sas_devices.h"
#include "sysmod/device_handle.h"
#include "tests/flash/flash_fixture.h"

namespace flash_test {

using Interface::SysMod::Command::BMICRequest;
using Interface::SysMod::Command::CSMIRequest;
using Interface::SysMod::Command::SCSIRequest;

/// What happened, in order: "<device> <what>", waits of a second and more as "wait <milliseconds>".
class Events {
  public:
    static void add(std::string const& text) {
        std::lock_guard<std::mutex> const lock(mutex());
        all().push_back(text);
    }
    static Strings& all() {
        static Strings s_events;
        return s_events;
    }
    static void sleep(unsigned microseconds) {
        if (microseconds >= 1000000) {
            add("wait " + std::to_string(microseconds / 1000));
        } else if (onPause()) {
            onPause()();
        }
    }
    /// Called in the pauses between chunks, outside of all locks; not to be changed during a run.
    static std::function<void()>& onPause() {
        static std::function<void()> s_onPause;
        return s_onPause;
    }

  private:
    static std::mutex& mutex() {
        static std::mutex s_mutex;
        return s_mutex;
    }
};

/// One WRITE BUFFER: mode, offset, length and where in the image its data began.
struct Written {
    unsigned mode;
    unsigned offset;
    unsigned length;
    unsigned char const* data;
};

struct Outcome {
    unsigned scsiStatus = 0;
    unsigned commandStatus = 0;
    unsigned char key = 0;
    unsigned char asc = 0;
    unsigned word = 0;  ///< the four bytes at offset 3 of the sense data
};

constexpr Outcome FLASH_ERROR = {2, 0xFF, 5, 0x2C, 0x12345678};
constexpr Outcome OTHER_ERROR = {2, 1, 4, 0x44, 0x01020304};

class FakeSep : public Schema::SEP {
  public:
    FakeSep(Common::string const& handle, unsigned index) : SEP(handle), name("sep" + std::to_string(index)) {
        Schema::publish(*this, "ATTR_NAME_DEVICE_NUMBER", std::to_string(index).c_str());
    }

    bool sendSCSICommand(SCSIRequest& request) const override {
        unsigned char const* const block = request.cdb;
        auto const number = [block](unsigned at) {
            return static_cast<unsigned>(block[at] << 16 | block[at + 1] << 8 | block[at + 2]);
        };
        EXPECT_EQ(0x3B, block[0]);
        EXPECT_EQ(10U, request.cdbLength);
        EXPECT_EQ(request.dataLength, number(6));
        written.push_back({block[1], number(3), number(6), request.dataBuffer});
        Outcome const outcome = answer ? answer(written.size(), written.back()) : Outcome();
        if (block[1] == 15) Events::add(name + " reset");
        request.scsiStatus = static_cast<std::uint8_t>(outcome.scsiStatus);
        request.commandStatus = static_cast<std::uint16_t>(outcome.commandStatus);
        request.senseBuffer[2] = outcome.key;
        request.senseBuffer[12] = outcome.asc;
        for (unsigned i = 0; i < 4; ++i)
            request.senseBuffer[3 + i] = static_cast<unsigned char>(outcome.word >> (24 - 8 * i));
        return outcome.scsiStatus == 0;
    }
    bool sendCSMICommand(CSMIRequest& request) const override {
        Events::add(name + (request.pauseActivity != 0 ? " pause" : " resume"));
        return true;
    }

    std::string name;
    std::function<Outcome(std::size_t number, Written const&)> answer;
    mutable std::vector<Written> written;
};

class FakeController : public Schema::ArrayController {
  public:
    FakeController(Common::string const& handle) : ArrayController(handle, false, 128, 32, "fake") {}

    bool sendBMICCommand(BMICRequest& request) const override {
        char text[32];
        if (request.commandByte != 0x15) {
            std::snprintf(text, sizeof text, "bmic %02x %u", request.commandByte, request.details);
            Events::add(text);
            return true;
        }
        // Drive numbers are counted from 128 there.
        auto const page = pages.find((request.details >> 24) - 128);
        if (page == pages.end()) {
            request.scsiStatus = 2;
            request.commandStatus = 1;
            return false;
        }
        std::copy(page->second.begin(), page->second.end(), request.dataBuffer);
        return true;
    }
    bool sendSCSICommand(SCSIRequest& request) const override {
        EXPECT_EQ(2, request.cdb[0]);
        Events::add("scan");
        if (afterScan) afterScan();
        return true;
    }

    std::map<unsigned, Bytes> pages;  ///< by index
    std::function<void()> afterScan;
};

/// The members of an identify page that a processor is known by, at their offsets.
struct Page {
    unsigned char wwidEnd = 0;  ///< last of eight bytes, the others are 0x50; 0: no WWID at all
    char const* port = "1E";
    unsigned char box = 1;
    char const* model = "";
    char const* revision = "";
    unsigned char paths = 0;
    char const* secondPort = "";
    unsigned char secondBox = 0;

    Bytes bytes() const {
        Bytes page(2048);
        std::copy_n(model, std::strlen(model), page.begin() + 12);
        std::copy_n(revision, std::strlen(revision), page.begin() + 92);
        std::copy_n(port, std::strlen(port), page.begin() + 112);
        page[114] = box;
        if (wwidEnd != 0) std::fill_n(page.begin() + 142, 7, std::uint8_t{0x50});
        page[149] = wwidEnd;
        page[1736] = paths;
        std::copy_n(secondPort, std::strlen(secondPort), page.begin() + 1741);
        page[1756] = secondBox;
        return page;
    }
};

class SepTest : public FlashTest {
  protected:
    static constexpr unsigned SEPS = 20;

    SepTest() {
        json devices = json::array();
        for (unsigned i = 1; i <= SEPS; ++i) {
            char address[17];
            std::snprintf(address, sizeof address, "00000040000001%02x", i);
            devices.push_back({{"address", address}, {"kind", "enclosure_processor"}, {"index", i}});
        }
        discover(oneController({{"physical_devices", devices}}));
        auto const handle = dynamic_cast<ConcreteSCSIDevice&>(only()).handle();
        controller = new FakeController(handle);
        controllerPointer = DevicePointer(controller);
        Schema::publish(*controller, "ATTR_NAME_LOCATION", "ATTR_VALUE_LOCATION_LOCAL");
        adapter = new Schema::HostBusAdapter("hba");
        adapterPointer = DevicePointer(adapter);
        EXPECT_TRUE(root->receive(controllerPointer));
        EXPECT_TRUE(root->receive(adapterPointer));
        Events::all().clear();
        before = Common::Synchronization::SetSleepFunction(Events::sleep);
        // S-records of 80 bytes each.
        for (unsigned line = 0; line < 200; ++line) {
            std::string const record = "S325" + std::string(74, 'A') + "\r\n";
            image.insert(image.end(), record.begin(), record.end());
        }
    }
    ~SepTest() override {
        Common::Synchronization::SetSleepFunction(before);
        seps.clear();
        controllerPointer = adapterPointer = DevicePointer();
    }

    /// Makes processors with indexes 1, 2, ... below the controller or the adapter.
    void addSeps(unsigned count, char const* product, bool onAdapter = false, char const* revision = "9.99") {
        Operations::PhysicalDeviceIterator const devices(*controller);
        Core::Device& parent = onAdapter ? static_cast<Core::Device&>(*adapter) : *controller;
        for (unsigned i = 1; i <= count; ++i) {
            auto* const sep = new FakeSep(*devices.find(static_cast<unsigned short>(i)), i);
            Schema::publish(*sep, "ATTR_NAME_PRODUCT_ID", product);
            Schema::publish(*sep, "ATTR_NAME_FIRMWARE_REVISION", revision);
            seps.push_back(sep);
            EXPECT_TRUE(parent.receive(DevicePointer(sep)));
            Page page;
            page.wwidEnd = static_cast<unsigned char>(i);
            page.box = static_cast<unsigned char>(i);
            controller->pages[i] = page.bytes();
        }
    }

    Core::OperationReturn run(Core::Device& device, Arguments arguments, bool withImage = true) {
        OperationPointer const operation(new Operations::WriteFlashSEPFirmware);
        if (withImage) {
            arguments.emplace_back("ATTR_NAME_BUFFER_ADDRESS",
                                   std::to_string(reinterpret_cast<std::uintptr_t>(image.data())));
            arguments.emplace_back("ATTR_NAME_BUFFER_SIZE", std::to_string(image.size()));
        }
        for (auto const& [name, value] : arguments)
            operation->SetArgument(Core::DeviceOperation::eSET, name, value.c_str());
        return device.perform(operation);
    }
    static Common::list<Core::OperationReturn> returns(Core::OperationReturn const& result) {
        return result.getPublicValueFor("ATTR_NAME_OPERATION_RETURN_LIST");
    }

    FakeController* controller = nullptr;
    Schema::HostBusAdapter* adapter = nullptr;
    std::vector<FakeSep*> seps;
    Bytes image;

  private:
    DevicePointer controllerPointer;
    DevicePointer adapterPointer;
    Common::Synchronization::SleepFunction before = nullptr;
};

}  // namespace flash_test
