#include <atomic>
#include <memory>

#include "common/sleep.h"
#include "common/thread.h"
#include "tests/core/test_tree.h"

using namespace TestTree;
using Core::Device;

namespace {

struct Job : Common::Synchronization::Threadable {
    explicit Job(std::function<void()> work) : m_work(work) {}
    void operator()() override { m_work(); }
    std::function<void()> m_work;
};

void runTogether(std::vector<std::function<void()>> const& works) {
    std::vector<std::unique_ptr<Job>> jobs;
    Common::Synchronization::ThreadGroup threads;
    for (auto const& work : works)
        jobs.push_back(std::make_unique<Job>(work));
    for (auto const& job : jobs)
        threads.Add(new Common::Synchronization::Thread(*job));
    threads.JoinAll();
}

struct ConcurrencyTest : Fixture {};

// Pointers are counted without atomic operations: each thread makes its calls through references, and holds
// the tree's lock where it copies pointers.
TEST_F(ConcurrencyTest, TreeIsUsedByOneThreadAtATime) {
    int inside = 0, most = 0;
    activate<Root>("R", Core::DeviceOperation::eRead).m_body = [&](Device&) {
        most = std::max(most, ++inside);
        Common::Synchronization::Sleep(1);
        --inside;
        return Core::OperationReturn();
    };
    root->Refresh();
    Device& tree = *root;
    DevicePtr const child = add(root, "c");
    Device& below = *child;
    auto const reenumerateOften = [&tree] {
        for (int i = 0; i < 20; ++i)
            tree.Refresh();
    };
    runTogether({reenumerateOften, reenumerateOften, [&] {
                     for (int i = 0; i < 20; ++i) {
                         Device::Lock lock(below.mutex());
                         ++inside;
                         most = std::max(most, inside);
                         below.Receive(Core::Attribute("A", i));
                         EXPECT_TRUE(tree.getOperation("R")) << "never seen half rebuilt";
                         --inside;
                     }
                 }});
    EXPECT_EQ(most, 1);
}

// They once let go of what they had found after the lock, and the plain counts went astray.
TEST_F(ConcurrencyTest, QuestionsByNameHoldTheLockThroughout) {
    activate<Root>("R", Core::DeviceOperation::eRead);
    activate<Root>("NO", Core::DeviceOperation::eRead).m_refusal = [](DevicePtr) { return "REASON"; };
    root->Refresh();
    Common::shared_ptr<Core::DeviceAssociation> const link(new Core::DeviceAssociation("LINK"));
    link->receive(add(root, "c"));
    root->receive(link);
    auto const counts = [this] {
        return std::vector<long>{root->getOperation("R").useCount(),
                                 root->getUnavailableOperationReason("NO").useCount(),
                                 root->getAssociation("LINK").useCount()};
    };
    std::vector<long> const before = counts();
    Device const& tree = *root;
    auto const ask = [&tree] {
        for (int i = 0; i < 2000; ++i) {
            EXPECT_TRUE(tree.hasOperation("R") && tree.hasUnavailableOperationReason("NO") &&
                        tree.hasAssociation("LINK"));
        }
    };
    runTogether({ask, ask, ask, ask});
    EXPECT_EQ(counts(), before);
}

// A refresh used to lock the device before the lock on reenumerations, and blocked against a thread that
// took that one first.
TEST_F(ConcurrencyTest, RefreshAndReenumerateDoNotBlockEachOther) {
    Device& tree = *root;
    std::atomic<int> done{0};
    runTogether({[&] {
                     for (int i = 0; i < 200; ++i)
                         tree.Refresh();
                     ++done;
                 },
                 [&] {
                     for (int i = 0; i < 200; ++i)
                         tree.Reenumerate(Device::ReenumeratePredicate());
                     ++done;
                 },
                 [&] {
                     for (int i = 0; i < 200; ++i)
                         tree.Reset();
                     ++done;
                 }});
    EXPECT_EQ(done, 3);
}

}  // namespace
