#include "flash/sep_flash_run.h"

#include "command/controller_command.h"
#include "command/qrth_scan.h"
#include "common/debug_logger.h"
#include "common/sleep.h"
#include "core/tolkmod.h"
#include "flash/mode_ef_sep_flash_threadable.h"

namespace Operations {
namespace {

namespace Results = Interface::TOLKMod::OperationReturn;
using Common::DebugLogger;
using Common::Synchronization::Sleep;
using Common::Synchronization::Thread;
using Core::OperationReturn;

/// Models that have a limit of devices at a time need it between flash and reset.
constexpr unsigned SETTLE_MILLISECONDS = 2000;

template <typename Trait>
void sendHotplugFlag(BMICDevice& controller, bool disablesHotplug) {
    NoTransferControllerCommand<Trait> command;
    command.SetDetails(disablesHotplug ? 1 : 0);
    command(controller);
}

}  // namespace

void pauseController(BMICDevice& controller, bool disablesHotplug) {
    DebugLogger::LogCommand("Issuing pause background activity");
    sendHotplugFlag<PauseBackgroundActivityTrait>(controller, disablesHotplug);
    DebugLogger::LogCommand("Pause background activity completed");
}

void resumeController(BMICDevice& controller, bool disablesHotplug) {
    DebugLogger::LogCommand("Issuing resume background activity");
    sendHotplugFlag<ResumeBackgroundActivityTrait>(controller, disablesHotplug);
    DebugLogger::LogCommand("Resume background activity completed");
}

SepFlashRun::SepFlashRun(SepFlashRequest const& request, bool behindController, SCSIDevice& adapter)
    : m_request(request), m_behindController(behindController), m_adapter(adapter) {
    // The first device's row holds for all.
    lookupFlashInfo(request.targets.front(), m_info);
    makeObjects();
}

void SepFlashRun::makeObjects() {
    for (Common::shared_ptr<Core::Device> const& target : m_request.targets) {
        if (!checkIsSEPModelRegisteredForFlashing(target) || !checkSEPFWVersion(target)) {
            DebugLogger::LogCommand("SEP %s passed over: its model or its firmware can't be flashed",
                                    target->toString().c_str());
            continue;
        }
        Common::string const product = getFlashProductID(target);
        ImageSpan const image = m_request.image;
        switch (m_info.flashMode) {
            case MODE_7:
                m_objects.push_back(
                    std::make_unique<Mode7SEPFlashThreadable>(target, product, image, m_behindController));
                break;
            case MODE_E:
                m_objects.push_back(std::make_unique<ModeESEPFlashThreadable>(
                    target, product, image, m_behindController, m_info.chunkSize));
                break;
            default:
                m_objects.push_back(
                    std::make_unique<ModeEFSEPFlashThreadable>(target, product, image, m_behindController));
        }
        if (m_info.onePerBox == 1) break;
    }
}

void SepFlashRun::flashSerially() {
    DebugLogger::LogCommand("Serial flash started");
    for (auto object = m_objects.begin(); object != m_objects.end(); ++object) {
        (*object)->PauseDeviceActivity();
        // Models of the other modes write in a thread's body only. That they come out of this as a success,
        // unwritten, is what callers know.
        if (m_info.flashMode != MODE_EF) {
            DebugLogger::LogCommand("A SEP is not written: its model is flashed in parallel only");
        }
        (*object)->Flash();
        if (m_request.resets && canPerformReset(m_info, (*object)->result())) reset({object, object + 1});
        (*object)->ResumeDeviceActivity();
    }
}

void SepFlashRun::flashInParallel() {
    DebugLogger::LogCommand("Parallel flash started");
    std::size_t const most = m_request.limit != 0 ? m_request.limit : m_objects.size();
    for (std::size_t started = 0; started < m_objects.size(); started += most) {
        auto const first = m_objects.begin() + static_cast<std::ptrdiff_t>(started);
        std::size_t const count = std::min(most, m_objects.size() - started);
        startThreads({first, first + static_cast<std::ptrdiff_t>(count)});
    }
    if (m_objects.empty()) return;
    if (m_request.resets && canPerformReset(m_info, sumUp(m_objects.begin(), m_objects.end()))) {
        reset({m_objects.begin(), m_objects.end()});
        return;
    }
    // Nothing else would let the devices go on with their work.
    for (auto const& object : m_objects)
        object->ResumeDeviceActivity();
}

void SepFlashRun::startThreads(Range batch) {
    Common::Synchronization::ThreadGroup threads;
    for (auto object = batch.first; object != batch.last; ++object) {
        auto* const thread = new Thread(**object);
        bool const isStarted = thread->IsStarted();
        threads.Add(thread);
        // The system has no thread left: this one flashes it.
        if (!isStarted) (**object)();
    }
    threads.JoinAll();
}

void SepFlashRun::reset(Range objects) {
    SepProduct const* const row = findSepProduct(m_request.product);
    if (row != nullptr && row->parallelLimit != 0) Sleep(SETTLE_MILLISECONDS);
    for (auto object = objects.first; object != objects.last; ++object) {
        (*object)->Reset();
        (*object)->ResumeDeviceActivity();
    }
    DebugLogger::LogCommand("Waiting for the SEP to come back online after reset");
    Sleep(m_info.resetWait);
    if (!m_behindController) return;
    DebugLogger::LogCommand("Scanning for the devices");
    QRTHScan scan;
    scan(m_adapter);
    DebugLogger::LogCommand("Scan completed");
    for (auto object = objects.first; object != objects.last; ++object)
        (*object)->Ping();
}

OperationReturn SepFlashRun::result() const {
    OperationReturn result = sumUp(m_objects.begin(), m_objects.end());
    if (m_objects.size() == 1 && !result) {
        // Its own status, and what the device said in a list, where callers look for it.
        Common::list<OperationReturn> returns;
        returns.push_back(m_objects.front()->result());
        result.Receive(Core::Attribute(Results::ATTR_NAME_OPERATION_RETURN_LIST, returns));
    }
    return result;
}

OperationReturn SepFlashRun::sumUp(FlashObjects::const_iterator first,
                                   FlashObjects::const_iterator last) const {
    if (first == last) return OperationReturn();
    if (last - first == 1) return (*first)->result();
    Common::list<OperationReturn> returns;
    bool allGood = true;
    for (; first != last; ++first) {
        returns.push_back((*first)->result());
        allGood = allGood && (*first)->result();
    }
    // A list's status is no success, and callers that ask for nothing else must not take it for a failure.
    OperationReturn result(allGood ? Results::ATTR_VALUE_STATUS_SUCCESS
                                   : Results::ATTR_VALUE_STATUS_OPERATION_RETURN_LIST);
    result.Receive(Core::Attribute(Results::ATTR_NAME_OPERATION_RETURN_LIST, returns));
    return result;
}

}  // namespace Operations
