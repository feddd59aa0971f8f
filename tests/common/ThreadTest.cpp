#include "common/thread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "common/os_mutex.h"
#include "common/process_mutex.h"
#include "common/recursive_process_mutex.h"
#include "common/scoped_mutex_lock.h"
#include "common/sleep.h"
#include "common/timer.h"

namespace {

using namespace Common::Synchronization;

class Task : public Threadable {
  public:
    explicit Task(std::function<void()> body) : m_body(std::move(body)) {}
    void operator()() override {
        m_body();
        m_trace += "run ";
    }
    void OnThreadExit() override { m_trace += "exit "; }
    std::string const& trace() const { return m_trace; }

  private:
    std::function<void()> m_body;
    std::string m_trace;
};

// Gives every other thread ample opportunity to run.
void letOthersRun() {
    for (int i = 0; i < 2000; ++i)
        sched_yield();
}

TEST(ThreadTest, RunsItsBodyAndThenTheExit) {
    Task task([] {});
    Thread thread(task);
    EXPECT_TRUE(thread.IsStarted());
    thread.Join();
    EXPECT_EQ(task.trace(), "run exit ");
    EXPECT_FALSE(thread.IsStarted());
    thread.Join();
}

TEST(ThreadTest, TwoThreadsDiffer) {
    Task task([] {});
    Task other([] {});
    Thread a(task), b(other);
    EXPECT_TRUE(a == a);
    EXPECT_FALSE(a == b);
    a.Join();
    EXPECT_TRUE(a == a);
    EXPECT_FALSE(a == b);
    b.Join();
    EXPECT_FALSE(a == b);
}

TEST(ThreadTest, AGroupJoinsAndDeletesWhatItOwns) {
    std::atomic<int> ran = 0;
    Task first([&] { ++ran; }), second([&] { ++ran; }), third([&] { ++ran; });
    Thread* const removed = new Thread(third);
    {
        ThreadGroup group;
        Thread* const thread = new Thread(first);
        group.Add(thread);
        group.Add(thread);  // once is enough
        group.Add(nullptr);
        group.Add(removed);
        EXPECT_EQ(group.size(), 2u);
        group.Remove(removed);
        group.JoinAll();
        EXPECT_EQ(first.trace(), "run exit ");
        EXPECT_EQ(group.size(), 1u);
        group.Clear();
        EXPECT_EQ(group.size(), 0u);
        group.Add(new Thread(second));
    }
    EXPECT_EQ(second.trace(), "run exit ");
    delete removed;
    EXPECT_EQ(ran, 3);
}

TEST(MutexTest, ALockedMutexKeepsOthersOut) {
    ProcessMutex mutex;
    int counter = 0;  // seen by the thread sanitizer when the mutex does nothing
    auto const body = [&] {
        for (int i = 0; i < 2000; ++i) {
            ScopedMutexLock<ProcessMutex> const lock(mutex);
            ++counter;
        }
    };
    Task a(body), b(body);
    {
        ThreadGroup group;
        group.Add(new Thread(a));
        group.Add(new Thread(b));
    }
    EXPECT_EQ(counter, 4000);
}

TEST(MutexTest, ARecursiveMutexIsFreeAfterAsManyUnlocks) {
    RecursiveProcessMutex mutex;
    std::atomic<bool> waiting = false, entered = false;
    Task contender([&] {
        waiting = true;
        ScopedMutexLock<RecursiveProcessMutex> const lock(mutex);
        entered = true;
    });
    for (int i = 0; i < 3; ++i)
        mutex.Lock();
    Thread thread(contender);
    while (!waiting)
        sched_yield();
    for (int i = 0; i < 2; ++i) {
        mutex.Unlock();
        letOthersRun();
        EXPECT_FALSE(entered) << "after unlock " << i + 1;
    }
    mutex.Unlock();
    thread.Join();
    EXPECT_TRUE(entered);
}

TEST(MutexTest, AForeignUnlockChangesNothing) {
    RecursiveProcessMutex mutex;
    mutex.Unlock();  // nobody's: no effect either
    mutex.Lock();
    Task stranger([&] {
        mutex.Unlock();
        mutex.Unlock();
    });
    Thread(stranger).Join();

    std::atomic<bool> waiting = false, entered = false;
    Task contender([&] {
        waiting = true;
        ScopedMutexLock<RecursiveProcessMutex> const lock(mutex);
        entered = true;
    });
    Thread thread(contender);
    while (!waiting)
        sched_yield();
    letOthersRun();
    EXPECT_FALSE(entered);
    mutex.Unlock();
    thread.Join();
    EXPECT_TRUE(entered);
}

class NamedMutexTest : public testing::Test {
  protected:
    // A run that was killed under the same process number may have left its semaphore.
    void SetUp() override { sem_unlink(OSMutexName(name).c_str()); }

    std::string const text = "common-tests-" + std::to_string(getpid());
    Common::string const name = text.c_str();
};

TEST_F(NamedMutexTest, TheCreatorHoldsItUntilItReleases) {
    Mutex first(name);
    Mutex second("/" + name);  // the same name
    EXPECT_EQ(first.eMutexState(), 2);
    EXPECT_TRUE(first.capture());
    EXPECT_EQ(first.eMutexState(), 0);
    EXPECT_TRUE(first.capture());  // still
    EXPECT_TRUE(ExistsSem(name));
    EXPECT_FALSE(second.capture());
    EXPECT_EQ(second.eMutexState(), 2);
    second.release();  // not its own: no effect
    EXPECT_FALSE(second.capture());
    first.release();
    EXPECT_EQ(first.eMutexState(), 2);
    EXPECT_FALSE(ExistsSem(name));
    EXPECT_TRUE(second.capture());
}

TEST_F(NamedMutexTest, ItsEndReleasesIt) {
    {
        Mutex mutex(name);
        EXPECT_TRUE(mutex.capture());
    }
    EXPECT_FALSE(ExistsSem(name));
}

TEST_F(NamedMutexTest, WaitersGoOnWhenTheHolderReleases) {
    Mutex holder(name);
    ASSERT_TRUE(holder.capture());
    std::atomic<int> waiting = 0, through = 0;
    auto const body = [&] {
        Mutex mine(name);
        ++waiting;
        mine.Wait();
        ++through;
    };
    Task a(body), b(body);
    Thread first(a), second(b);
    while (waiting < 2)
        sched_yield();
    letOthersRun();
    EXPECT_EQ(through, 0);
    holder.release();
    first.Join();
    second.Join();
    EXPECT_EQ(through, 2);
}

TEST_F(NamedMutexTest, WaitWithoutAHolderReturnsAtOnceAndReleasesOnesOwn) {
    Mutex mutex(name);
    mutex.Wait();
    ASSERT_TRUE(mutex.capture());
    mutex.Wait();
    EXPECT_EQ(mutex.eMutexState(), 2);
    EXPECT_FALSE(ExistsSem(name));
}

TEST_F(NamedMutexTest, AnImpossibleNameIsRefused) {
    Mutex mutex("no/such/semaphore");
    EXPECT_FALSE(mutex.capture());
    EXPECT_EQ(mutex.eMutexState(), 2);
    mutex.Wait();
}

TEST_F(NamedMutexTest, TheKeyComesFromALockFileInTheGivenDirectory) {
    std::string const directory = testing::TempDir() + "/locks-" + text;
    std::string const path = directory + "/" + text;
    ASSERT_EQ(mkdir(directory.c_str(), 0700), 0);
    setenv("TOLKXE_LOCK_FILES_DIR", directory.c_str(), 1);
    EXPECT_EQ(OSMutexKey(name), -1);
    std::fclose(std::fopen(path.c_str(), "w"));
    struct stat file = {};
    ASSERT_EQ(stat(path.c_str(), &file), 0);
    key_t const key = OSMutexKey(name);
    EXPECT_EQ(key & 0xFFFF, static_cast<int>(file.st_ino & 0xFFFF));
    EXPECT_EQ(OSMutexKey("/" + name), key);
    unsetenv("TOLKXE_LOCK_FILES_DIR");
    std::remove(path.c_str());
    rmdir(directory.c_str());
}

std::vector<unsigned int> slept;
void recordSleep(unsigned int microseconds) {
    slept.push_back(microseconds);
}

TEST(SleepTest, EverySleepGoesThroughTheReplaceableFunction) {
    slept.clear();
    SleepFunction const system = SetSleepFunction(recordSleep);
    ASSERT_NE(system, nullptr);
    Sleep(30);
    Sleep(0);
    SleepMicroseconds(7);
    EXPECT_THAT(slept, testing::ElementsAre(30000, 0, 7));
    slept.clear();
    Sleep(7200001);  // its microseconds exceed 32 bits
    EXPECT_THAT(slept, testing::ElementsAre(3600000000u, 3600000000u, 1000));
    EXPECT_EQ(SetSleepFunction(nullptr), &recordSleep);
    EXPECT_EQ(SetSleepFunction(system), system);
}

TEST(TimerTest, MeasuresTheTimeOfTheProcessor) {
    auto const spin = [](clock_t ticks) {
        clock_t const end = clock() + ticks;
        while (clock() < end) {
        }
    };
    clock_t const before = clock();
    Timer timer;
    clock_t const started = clock();
    spin(20000);
    clock_t const stopped = clock();
    double const elapsed = timer.elapsedSeconds();
    clock_t const after = clock();
    EXPECT_GE(elapsed, static_cast<double>(stopped - started) / 1e6);
    EXPECT_LE(elapsed, static_cast<double>(after - before) / 1e6);
    clock_t const beforeReset = clock();
    timer.Reset();
    double const rest = timer.elapsedSeconds();
    EXPECT_LE(rest, static_cast<double>(clock() - beforeReset) / 1e6);
}

}  // namespace
