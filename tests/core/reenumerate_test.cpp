#include "core/device.h"

#include <stdexcept>

#include "core/operation_context.h"
#include "tests/core/test_tree.h"

using namespace TestTree;
using Core::Device;
using Core::DeviceOperation;
using Core::OperationReturn;

namespace {

struct ReenumerateTest : Fixture {
    // A discovery on roots that offers a new device for each of `found`.
    ScriptedOperation& discover(Texts const& found) {
        reported = found;
        ScriptedOperation& operation = activate<Root>("OPERATION_DISCOVER", DeviceOperation::eDiscovery);
        operation.m_body = [this](Device& device) {
            for (std::string const& id : reported)
                device.receive(DevicePtr(new Node(id.c_str())));
            return OperationReturn();
        };
        return operation;
    }

    static Texts statuses(Device::ResultList const& results) {
        Texts texts;
        for (OperationReturn const& result : results) {
            texts.push_back(str(result.getValueFor("ATTR_NAME_OPERATION_NAME")) + " on " +
                            str(result.getValueFor("ATTR_NAME_UNIQUE_ID")) + ": " +
                            str(result.getValueFor("ATTR_NAME_STATUS")).substr(18));
        }
        return texts;
    }

    static Texts operationsOf(DevicePtr const& device) {
        Texts names;
        for (auto operation = device->beginOperation(); operation != device->endOperation(); ++operation) {
            names.push_back(str((*operation)->name()));
        }
        return names;
    }

    Texts reported;
};

TEST_F(ReenumerateTest, WalksInAFixedOrder) {
    Texts order;
    auto const note = [&order](char const* name) {
        return [&order, name](Device& device) {
            order.push_back(std::string(name) + " " + str(device.toString()));
            return OperationReturn();
        };
    };
    discover({"1", "2"});
    activate<Root>("R", DeviceOperation::eRead, 15).m_body = note("R");
    activate<Node>("N", DeviceOperation::eRead, 15).m_body = note("N");
    activate<Node>("L", DeviceOperation::eAssociation).m_body = note("L");
    activate<Node>("W", DeviceOperation::eWrite).m_body = note("W");
    LogCapture trace(4);
    Device::ResultList const results = reenumerate();

    EXPECT_EQ(order, (Texts{"R MR:0", "N 1", "N 2", "L 1", "L 2", "N 1", "N 2", "R MR:0"}));
    EXPECT_EQ(
        statuses(results),
        (Texts{"OPERATION_DISCOVER on MR:0: SUCCESS", "R on MR:0: SUCCESS", "N on 1: SUCCESS",
               "N on 2: SUCCESS", "L on 1: SUCCESS", "L on 2: SUCCESS", "N on 1: SUCCESS", "N on 2: SUCCESS",
               "R on MR:0: SUCCESS", "OPERATION_DEVICE_INTERFACE on MR:0: SUCCESS"}));
    EXPECT_EQ(trace.lines(),
              (Texts{"Reenumerate Start", "Top-Down Reenumerate", "Processing device: MR:0",
                     "Processing device: 1", "Processing device: 2", "CreateAssociations",
                     "Bottom-Up Reenumerate", "RegisterWriteOperations", "Apply filter for operation: W",
                     "Apply filter for operation: W", "Reenumerate Complete"}));
}

TEST_F(ReenumerateTest, LastEntryIsASuccessWhateverFailed) {
    activate<Root>("R", DeviceOperation::eRead).m_body = [](Device&) {
        return OperationReturn("ATTR_VALUE_STATUS_FAILURE");
    };
    activate<Root>("S", DeviceOperation::eRead);
    EXPECT_EQ(statuses(reenumerate()), (Texts{"R on MR:0: FAILURE", "S on MR:0: SUCCESS",
                                              "OPERATION_DEVICE_INTERFACE on MR:0: SUCCESS"}));
}

TEST_F(ReenumerateTest, UnconfirmedChildrenAreRemoved) {
    discover({"1", "2", "3"});
    reenumerate();
    DevicePtr const gone = *root->beginChild();
    DevicePtr const below(new Node("1.1"));
    gone->receive(below);
    DevicePtr const kept = *++root->beginChild();
    kept->Receive(Core::Attribute("KEPT", "yes"));

    reported = {"2", "4"};
    reenumerate();
    EXPECT_EQ(childrenOf(root), (Texts{"2", "4"}));
    EXPECT_EQ(root->beginChild()->get(), kept.get()) << "a confirmed child stays the same object";
    EXPECT_TRUE(kept->hasAttribute("KEPT"));
    EXPECT_TRUE(kept->isValid());
    EXPECT_FALSE(gone->isValid());
    EXPECT_FALSE(below->isValid());
    OperationPtr const operation(new ScriptedOperation("X", DeviceOperation::eRead));
    EXPECT_TRUE(
        gone->perform(operation).hasAttributeAndIs("ATTR_NAME_STATUS", "ATTR_VALUE_STATUS_DEVICE_DELETED"));
}

TEST_F(ReenumerateTest, UndeletableChildrenStay) {
    dynamic_cast<Node&>(*add(root, "1")).m_deletable = false;
    add(root, "2");
    reenumerate();
    EXPECT_EQ(childrenOf(root), Texts{"1"});
    root->Reset();
    EXPECT_EQ(childrenOf(root), Texts{"1"});
}

// The first one, which clear() refuses, once ended the removal.
TEST_F(ReenumerateTest, ChildrenThatEnteredAnotherTreeDoNotStopARemoval) {
    DevicePtr const elsewhere(new Node("e"));
    elsewhere->receive(add(root, "1"));
    DevicePtr const gone = add(root, "2");
    elsewhere->receive(add(gone, "2.1"));
    DevicePtr const below = add(gone, "2.2");
    reenumerate();
    EXPECT_EQ(childrenOf(root), Texts{"1"});
    EXPECT_EQ(childrenOf(gone), Texts{"2.1"});
    EXPECT_FALSE(below->isValid());
}

TEST_F(ReenumerateTest, ModifierBitsSayInWhichPassAReadRuns) {
    struct {
        unsigned modifier;
        Texts ranOn;
    } const cases[] = {
        {0, {}}, {1, {"MR:0"}}, {2, {"MR:0"}}, {3, {"MR:0"}}, {4, {}}, {8, {"MR:0^"}}, {9, {"MR:0", "MR:0^"}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.modifier);
        Root::sm_operations.clear();
        ScriptedOperation& read = activate<Root>("R", DeviceOperation::eRead, c.modifier);
        reenumerate();
        EXPECT_EQ(read.m_ranOn, c.ranOn);
        EXPECT_TRUE(root->hasOperation("R")) << "listed whether it ran or not";
        EXPECT_FALSE(read.getOperationContext()->isReenumerateContext());
    }
}

TEST_F(ReenumerateTest, AssociationsRunOnBitFourAndAreNotListed) {
    ScriptedOperation& runs = activate<Root>("A4", DeviceOperation::eAssociation, 4);
    ScriptedOperation& rests = activate<Root>("A3", DeviceOperation::eAssociation, 3);
    reenumerate();
    EXPECT_EQ(runs.m_ranOn, Texts{"MR:0"});
    EXPECT_EQ(rests.m_ranOn, Texts{});
    EXPECT_EQ(operationsOf(root), Texts{});
}

TEST_F(ReenumerateTest, ContextNamesTheSourceDeviceForTheTimeOfARun) {
    root->Receive(Core::Attribute("ATTR_NAME_UNIQUE_ID", "not MR:0"));
    ScriptedOperation& read = activate<Node>("N", DeviceOperation::eRead, 15);
    Texts seen;
    read.m_body = [&](Device&) {
        Core::OperationContext const& context = *read.getOperationContext();
        seen.push_back((context.isBottomUpReenumerateContext() ? "up:" : "down:") +
                       str(context.getContextItemValue("ATTR_NAME_REENUMERATE_SOURCE_DEVICE_ID")));
        EXPECT_TRUE(context.isReenumerateContext());
        return OperationReturn();
    };
    discover({"1"});
    reenumerate();
    root->Clear("ATTR_NAME_UNIQUE_ID");
    reenumerate();
    EXPECT_EQ(seen, (Texts{"down:not MR:0", "up:not MR:0", "down:", "up:"}));
    EXPECT_EQ(read.getOperationContext().get(), Device::DefaultOperationContext().get());
}

TEST_F(ReenumerateTest, RefusedOperationsLeaveTheirReasonsInstead) {
    struct {
        char const* name;
        DeviceOperation::EnType type;
        bool recorded;
    } const cases[] = {
        {"R", DeviceOperation::eRead, true},
        {"D", DeviceOperation::eDiscovery, true},
        {"A", DeviceOperation::eAssociation, true},
        {"W", DeviceOperation::eWrite, true},
    };
    for (auto const& c : cases) {
        activate<Root>(c.name, c.type, 15).m_refusal = [](DevicePtr) { return "ATTR_VALUE_REASON"; };
    }
    EXPECT_EQ(statuses(reenumerate()), Texts{"OPERATION_DEVICE_INTERFACE on MR:0: SUCCESS"});
    unsigned reasons = 0;
    for (auto r = root->beginUnavailableOperationReason(); r != root->endUnavailableOperationReason(); ++r)
        ++reasons;
    EXPECT_EQ(reasons, 4u) << "one each: the bottom-up pass records no second one";
    for (auto const& c : cases) {
        EXPECT_FALSE(root->hasOperation(c.name));
        ASSERT_TRUE(root->hasUnavailableOperationReason(c.name)) << c.name;
        auto const reason = root->getUnavailableOperationReason(c.name);
        EXPECT_TRUE(reason->hasAttributeAndIs("ATTR_NAME_OPERATION_NAME", c.name));
        EXPECT_TRUE(reason->hasAttributeAndIs("ATTR_NAME_UNAVAILABLE_REASON", "ATTR_VALUE_REASON"));
    }
    EXPECT_FALSE(root->getUnavailableOperationReason("ABSENT"));
    EXPECT_FALSE(root->getOperation("ABSENT"));
}

TEST_F(ReenumerateTest, OperationsAndReasonsAreRebuiltEachTime) {
    activate<Root>("R", DeviceOperation::eRead);
    bool refuse = true;
    activate<Root>("W", DeviceOperation::eWrite).m_refusal = [&](DevicePtr) {
        return refuse ? "REASON" : nullptr;
    };
    reenumerate();
    reenumerate();
    EXPECT_EQ(operationsOf(root), Texts{"R"});
    refuse = false;
    reenumerate();
    EXPECT_EQ(operationsOf(root), (Texts{"R", "W"})) << "writes come last";
    EXPECT_FALSE(root->hasUnavailableOperationReason("W"));
}

// The pool that filters come from is small and fixed.
TEST_F(ReenumerateTest, ExhaustedFilterPoolRefusesTheOperation) {
    ScriptedOperation& read = activate<Root>("R", DeviceOperation::eRead);
    LogCapture log(1);
    std::vector<void*> blocks;
    for (std::size_t size : {65533, 8192, 512, 64, 2}) {
        while (void* const block = Common::GlobalStaticAllocator::allocate(size))
            blocks.push_back(block);
    }
    reenumerate();
    for (void* block : blocks)
        Common::GlobalStaticAllocator::deallocate(block);

    EXPECT_EQ(read.m_ranOn, Texts{});
    EXPECT_FALSE(root->hasOperation("R"));
    EXPECT_TRUE(root->getUnavailableOperationReason("R")->hasAttributeAndIs(
        "ATTR_NAME_UNAVAILABLE_REASON", "ATTR_VALUE_UNAVAILABLE_REASON_UNKNOWN"));
    EXPECT_EQ(log.lines()[0], "Refused R: expected a filter and a device, actual no filter (pool exhausted)");
    reenumerate();
    EXPECT_TRUE(root->hasOperation("R"));
}

TEST_F(ReenumerateTest, RefreshStaysOnTheDevice) {
    ScriptedOperation& discovery = discover({"1"});
    ScriptedOperation& read = activate<Root>("R", DeviceOperation::eRead);
    ScriptedOperation& link = activate<Root>("A", DeviceOperation::eAssociation);
    ScriptedOperation& below = activate<Node>("N", DeviceOperation::eRead);
    reenumerate();
    DevicePtr const child = *root->beginChild();
    reported = {"2"};
    root->Refresh();
    EXPECT_EQ(childrenOf(root), Texts{"1"});
    EXPECT_EQ(discovery.m_ranOn.size(), 1u);
    EXPECT_EQ(read.m_ranOn.size(), 2u);
    EXPECT_EQ(link.m_ranOn.size(), 2u);
    EXPECT_EQ(below.m_ranOn.size(), 1u);
    EXPECT_EQ(operationsOf(child), Texts{"N"});
}

TEST_F(ReenumerateTest, ResetEmptiesTheTreeAndRunsNothing) {
    ScriptedOperation& discovery = discover({"1", "2"});
    activate<Root>("R", DeviceOperation::eRead, 15);
    activate<Root>("A", DeviceOperation::eAssociation);
    activate<Root>("W", DeviceOperation::eWrite);
    reenumerate();
    EXPECT_EQ(statuses(root->Reset()), Texts{"OPERATION_DEVICE_INTERFACE on MR:0: SUCCESS"});
    EXPECT_EQ(childrenOf(root), Texts{});
    EXPECT_EQ(discovery.m_ranOn.size(), 1u);
    EXPECT_EQ(operationsOf(root), (Texts{"OPERATION_DISCOVER", "R"}));
}

TEST_F(ReenumerateTest, DeferredWriteOperationsAreFilteredOnceOnDemand) {
    typedef std::function<void(Device&)> Request;
    Request const requests[] = {
        [](Device& d) { d.getOperation("ABSENT"); },
        [](Device& d) { d.hasOperation("W"); },
        [](Device& d) { d.beginOperation(); },
        [](Device& d) { d.hasUnavailableOperationReason("W"); },
        [](Device& d) { d.beginUnavailableOperationReason(); },
        [](Device& d) { d.RefreshWriteOperations(); },
        [](Device& d) { d.RefreshOperations(); },
    };
    int filtered = 0;
    discover({"1"});
    for (ScriptedOperation* write :
         {&activate<Root>("W", DeviceOperation::eWrite), &activate<Node>("W", DeviceOperation::eWrite)}) {
        write->m_refusal = [&](DevicePtr) {
            ++filtered;
            return nullptr;
        };
    }
    for (Request const& request : requests) {
        filtered = 0;
        root->Reenumerate(DeferPredicate());
        EXPECT_EQ(filtered, 0);
        request(*root);
        EXPECT_EQ(filtered, 1) << "request " << &request - requests;
        EXPECT_TRUE(root->getOperation("W"));
        EXPECT_EQ(filtered, 1);
        EXPECT_EQ(operationsOf(*root->beginChild()), Texts{"W"});
        EXPECT_EQ(filtered, 2) << "the child's, no sooner";
    }
}

// Asking the judged device for an operation used to register write operations within their registration,
// without end.
TEST_F(ReenumerateTest, WriteFilterMayAskForOperations) {
    activate<Root>("R", DeviceOperation::eRead);
    bool sawRead = false, sawItself = true;
    activate<Root>("W", DeviceOperation::eWrite).m_refusal = [&](DevicePtr device) {
        sawRead = device->hasOperation("R");
        sawItself = device->hasOperation("W");
        return nullptr;
    };
    reenumerate();
    EXPECT_TRUE(sawRead);
    EXPECT_FALSE(sawItself);
    EXPECT_EQ(operationsOf(root), (Texts{"R", "W"}));
}

TEST_F(ReenumerateTest, OfferedWriteOperationsStartClean) {
    ScriptedOperation& write = activate<Root>("W", DeviceOperation::eWrite);
    write.SetArgument(DeviceOperation::eSET, "LEFT", "over");
    write.SetOperationContext(Common::shared_ptr<Core::OperationContext>(
        new Core::OperationContext(Core::OperationContext::eTopDownReenumerate)));
    reenumerate();
    EXPECT_FALSE(write.hasArgument("LEFT"));
    EXPECT_FALSE(write.getOperationContext()->isReenumerateContext());
    EXPECT_EQ(write.m_ranOn, Texts{}) << "offered, never run";
}

TEST_F(ReenumerateTest, RefreshOperationsJudgesOnlyWritesAgain) {
    int readFilters = 0;
    bool refuseWrite = false;
    activate<Root>("R", DeviceOperation::eRead).m_refusal = [&](DevicePtr) {
        ++readFilters;
        return nullptr;
    };
    activate<Root>("NO", DeviceOperation::eRead).m_refusal = [](DevicePtr) { return "REASON"; };
    activate<Root>("A", DeviceOperation::eAssociation).m_refusal = [](DevicePtr) { return "REASON"; };
    activate<Root>("W", DeviceOperation::eWrite).m_refusal = [&](DevicePtr) {
        return refuseWrite ? "REASON" : nullptr;
    };
    reenumerate();
    EXPECT_EQ(operationsOf(root), (Texts{"R", "W"}));
    EXPECT_TRUE(root->hasUnavailableOperationReason("A"));
    readFilters = 0;
    refuseWrite = true;
    root->RefreshOperations();
    EXPECT_EQ(readFilters, 0);
    EXPECT_EQ(operationsOf(root), Texts{"R"});
    EXPECT_TRUE(root->hasUnavailableOperationReason("NO"));
    EXPECT_TRUE(root->hasUnavailableOperationReason("W"));
    EXPECT_FALSE(root->hasUnavailableOperationReason("A")) << "reasons of associations go with the writes'";
}

TEST_F(ReenumerateTest, PredicateSteersEachStep) {
    struct Choosy : Device::ReenumeratePredicate {
        bool canPerformAssociateFor(DevicePtr, Common::string const& name) const override {
            return name != "A2";
        }
        bool canPerformDiscoverFor(DevicePtr, Common::string const& name) const override {
            return name != "D2";
        }
        bool canPerformReadFor(DevicePtr, Common::string const& name) const override { return name != "R2"; }
        bool canRegisterWriteOperationsFor(DevicePtr, Common::string const& name) const override {
            return name != "W2";
        }
        bool canRemoveStaleChildrenFor(DevicePtr) const override { return false; }
        bool canReenumerateChildrenFor(DevicePtr, bool flag) const override {
            flags.push_back(flag);
            return true;
        }
        mutable std::vector<bool> flags;
    } const predicate;
    std::vector<ScriptedOperation*> allowed, barred;
    for (auto const& [one, two, type] : {std::tuple{"A1", "A2", DeviceOperation::eAssociation},
                                         std::tuple{"D1", "D2", DeviceOperation::eDiscovery},
                                         std::tuple{"R1", "R2", DeviceOperation::eRead}}) {
        allowed.push_back(&activate<Root>(one, type));
        barred.push_back(&activate<Root>(two, type, 15));
    }
    activate<Root>("W1", DeviceOperation::eWrite);
    activate<Root>("W2", DeviceOperation::eWrite);
    add(root, "1");
    root->Reenumerate(predicate);
    // Of the root and its child: dropping associations, then the four other steps.
    EXPECT_EQ(predicate.flags,
              (std::vector<bool>{false, false, true, true, true, true, true, true, true, true}));
    for (ScriptedOperation* operation : allowed)
        EXPECT_EQ(operation->m_ranOn, Texts{"MR:0"});
    for (ScriptedOperation* operation : barred)
        EXPECT_EQ(operation->m_ranOn, Texts{});
    EXPECT_EQ(operationsOf(root), (Texts{"D1", "D2", "R1", "R2", "W1"}));
    EXPECT_EQ(childrenOf(root), Texts{"1"});
}

TEST_F(ReenumerateTest, AssociationsOfTheWalkedPartAreDropped) {
    discover({"1"});
    reenumerate();
    DevicePtr const child = *root->beginChild();
    for (DevicePtr const& device : {root, child}) {
        Common::shared_ptr<Core::DeviceAssociation> const link(new Core::DeviceAssociation("LINK"));
        link->receive(child);
        device->receive(link);
    }
    root->Refresh();
    EXPECT_FALSE(root->hasAssociation("LINK"));
    EXPECT_TRUE(child->hasAssociation("LINK")) << "a refresh doesn't reach the children";
    root->Reenumerate(DeferPredicate());
    EXPECT_FALSE(child->hasAssociation("LINK")) << "dropped though no association operation may run";
}

TEST_F(ReenumerateTest, DevicesWithoutOperationsAreWalkedThrough) {
    ScriptedOperation& below = activate<Node>("N", DeviceOperation::eRead);
    struct Plain : Common::CloneableInherit<Core::DeviceComposite, DevicePtr, Plain> {
        Common::string toStringImpl() const override { return "plain"; }
        OperationReturn performImpl(Core::VisitorDevice&) override { return OperationReturn(); }
        bool isDeletable() const override { return false; }
    };
    DevicePtr const plain(new Plain);
    root->receive(plain);
    dynamic_cast<Node&>(*add(plain, "n")).m_deletable = false;
    reenumerate();
    EXPECT_EQ(below.m_ranOn, Texts{"n"});
}

TEST_F(ReenumerateTest, ExceptionFromBelowLeavesTheTreeUsable) {
    ScriptedOperation& read = activate<Root>("R", DeviceOperation::eRead);
    read.m_body = [](Device&) -> OperationReturn { throw std::runtime_error("from below"); };
    add(root, "1");
    EXPECT_THROW(reenumerate(), std::runtime_error);
    EXPECT_FALSE(read.getOperationContext()->isReenumerateContext());
    read.m_body = nullptr;
    EXPECT_EQ(childrenOf(root), Texts{"1"});
    root->Refresh();
    EXPECT_EQ(childrenOf(root), Texts{}) << "left stale: gone with the next walk, whether it marks or not";
    EXPECT_EQ(statuses(reenumerate()),
              (Texts{"R on MR:0: SUCCESS", "OPERATION_DEVICE_INTERFACE on MR:0: SUCCESS"}));
}

// What was judged before the exception was once listed a second time.
TEST_F(ReenumerateTest, WriteOperationsAreRegisteredAllOrNone) {
    bool fails = true;
    activate<Root>("R", DeviceOperation::eRead);
    activate<Root>("NO_R", DeviceOperation::eRead).m_refusal = [](DevicePtr) { return "REASON"; };
    activate<Root>("W1", DeviceOperation::eWrite);
    activate<Root>("NO_W", DeviceOperation::eWrite).m_refusal = [](DevicePtr) { return "REASON"; };
    activate<Root>("W2", DeviceOperation::eWrite).m_refusal = [&](DevicePtr) -> char const* {
        if (fails) throw std::runtime_error("from below");
        return nullptr;
    };
    EXPECT_THROW(reenumerate(), std::runtime_error);
    EXPECT_THROW(root->hasOperation("W1"), std::runtime_error);
    fails = false;
    EXPECT_EQ(operationsOf(root), (Texts{"R", "W1", "W2"}));
    auto reason = root->beginUnavailableOperationReason();
    EXPECT_TRUE((*reason)->hasAttributeAndIs("ATTR_NAME_OPERATION_NAME", "NO_R"));
    ++ ++reason;
    EXPECT_TRUE(reason == root->endUnavailableOperationReason());
}

// The lock on reenumerations isn't recursive: this once blocked for ever.
TEST_F(ReenumerateTest, ReenumeratingWithinAReenumerationIsRefused) {
    Texts inner;
    activate<Root>("R", DeviceOperation::eRead).m_body = [&](Device& device) {
        inner = statuses(device.Refresh());
        return OperationReturn();
    };
    LogCapture log(1);
    reenumerate();
    EXPECT_EQ(inner, (Texts{"OPERATION_DEVICE_INTERFACE on MR:0: FAILURE",
                            "OPERATION_DEVICE_INTERFACE on MR:0: SUCCESS"}));
    EXPECT_TRUE(log.contains("Reenumeration of MR:0 refused: one is under way in this thread"));
}

TEST_F(ReenumerateTest, OperationMayReenumerateWhenPerformedByHand) {
    discover({"1"});
    ScriptedOperation& write = activate<Root>("W", DeviceOperation::eWrite);
    write.m_body = [](Device& device) {
        device.Reenumerate(Device::ReenumeratePredicate());
        return OperationReturn();
    };
    root->RefreshOperations();
    EXPECT_TRUE(root->perform(root->getOperation("W")));
    EXPECT_EQ(childrenOf(root), Texts{"1"});
}

TEST_F(ReenumerateTest, UnownedDeviceIsNotWalked) {
    ScriptedOperation& read = activate<Node>("N", DeviceOperation::eRead);
    activate<Node>("W", DeviceOperation::eWrite);
    DevicePtr const loose(new Node("loose"));
    EXPECT_EQ(statuses(loose->Refresh()), (Texts{"OPERATION_DEVICE_INTERFACE on loose: FAILURE",
                                                 "OPERATION_DEVICE_INTERFACE on loose: SUCCESS"}));
    EXPECT_EQ(read.m_ranOn, Texts{});
    loose->RefreshOperations();
    EXPECT_TRUE(loose->hasUnavailableOperationReason("W")) << "no filter is asked about no device";
}

}  // namespace
