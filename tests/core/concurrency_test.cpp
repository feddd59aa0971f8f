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

// A refresh used to lock the device before the lock on reenumerations, and blocked against a thread that
// went the documented way round.
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
