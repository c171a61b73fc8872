// The kernel: order, virtual time, withdrawing and stopping, in both drivers.

#include "host/Kernel.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using host::Driver;
using host::Kernel;

// Runs something when the last copy of the message that holds it goes.
std::shared_ptr<void> atRelease(std::function<void()> run) {
    return {nullptr, [run = std::move(run)](void*) { run(); }};
}

class Stepped : public testing::Test {
protected:
    Kernel kernel{Driver::stepped};
    std::string order; // of what ran

    void post(char name, std::string_view thread = Kernel::mainThread, host::Duration delay = 0ms,
              host::Target target = {}) {
        EXPECT_TRUE(kernel.post(kernel.findThread(thread), target, delay, std::string(1, name),
                                [this, name] { order += name; }));
    }
};

class Live : public testing::Test {
protected:
    Kernel kernel{Driver::live};
    host::MessageThread* search = kernel.findThread(Kernel::searchThread);

    void waitUntilNothingIsPending() const {
        while (kernel.pending() > 0) {
            std::this_thread::yield();
        }
    }
};

using SteppedKernel = Stepped;
using LiveKernel = Live;

TEST_F(SteppedKernel, MessagesRunByDueTimeThenInOrderOfPosting) {
    post('d', Kernel::mainThread, 20ms);
    post('a', Kernel::searchThread);
    post('c', Kernel::messageThread, 10ms);
    post('b', Kernel::mainThread);
    post('e', Kernel::searchThread, 20ms);
    kernel.advance(20ms);
    EXPECT_EQ(order, "abcde");
    EXPECT_EQ(kernel.now(), 20ms);
}

TEST_F(SteppedKernel, NothingRunsBeforeItsTime) {
    post('a', Kernel::mainThread, 100ms);
    post('n', Kernel::mainThread, -5ms);
    EXPECT_TRUE(kernel.step());
    kernel.advance(100ms - 1us);
    EXPECT_EQ(order, "n");
    EXPECT_FALSE(kernel.step());
    EXPECT_EQ(kernel.nextDue(), 100ms);
    kernel.moveTime(1us);
    EXPECT_EQ(order, "n") << "moving time runs nothing";
    EXPECT_TRUE(kernel.step());
    kernel.advance(1h);
    EXPECT_EQ(order, "na");
    EXPECT_EQ(kernel.nextDue(), host::Duration::max());
    EXPECT_EQ(kernel.now(), 1h + 100ms);
}

TEST_F(SteppedKernel, ATestChoosesAmongTheFirstMessagesOfTheThreads) {
    post('a', Kernel::searchThread);
    post('b', Kernel::searchThread);
    post('c', Kernel::mainThread);
    post('d', Kernel::messageThread, 1ms);
    const auto ready = kernel.ready();
    ASSERT_EQ(ready.size(), 2U) << "neither the second of a thread nor one that is not due";
    EXPECT_EQ(ready[0].label + ready[0].thread, "aThreadLocalContactSearch");
    EXPECT_EQ(ready[1].label + ready[1].thread, "cThreadMain");
    EXPECT_FALSE(kernel.step(ready[0].sequence + 1)) << "b is behind a";
    EXPECT_TRUE(kernel.step(ready[1].sequence));
    EXPECT_TRUE(kernel.step(ready[0].sequence));
    EXPECT_FALSE(kernel.step(ready[0].sequence));
    kernel.advance(1ms);
    EXPECT_EQ(order, "cabd");
}

TEST_F(SteppedKernel, WithdrawingRemovesExactlyWhatIsAddressed) {
    const int objects[2] = {};
    const int tokens[2] = {};
    post('a', Kernel::mainThread, 0ms, {&objects[0], &tokens[0]});
    post('b', Kernel::searchThread, 5ms, {&objects[0], &tokens[1]});
    post('c', Kernel::mainThread, 0ms, {&objects[1], &tokens[0]});
    post('d', Kernel::mainThread, 0ms, {&objects[1], &tokens[1]});
    post('e');
    kernel.withdrawObject(nullptr);
    EXPECT_EQ(kernel.withdrawToken(nullptr), 0U);
    kernel.withdrawObject(&objects[0]);
    EXPECT_EQ(kernel.pending(), 3U);
    EXPECT_EQ(kernel.withdrawToken(&tokens[1]), 1U);
    kernel.advance(1s);
    EXPECT_EQ(order, "ce");
}

TEST_F(SteppedKernel, WhatAMessageHoldsIsLetGoOfUnlockedAndBeforeTheMessageCountsAsDone) {
    const int object = 0;
    std::vector<std::size_t> pending;
    const auto post = [&](host::Target target) {
        kernel.post(nullptr, target, 0ms, "", [held = atRelease([&] { pending.push_back(kernel.pending()); })] {});
    };
    post({});
    kernel.step();
    post({&object, nullptr});
    kernel.withdrawObject(&object);
    post({});
    kernel.stop();
    post({});
    EXPECT_EQ(pending, (std::vector<std::size_t>{1, 0, 0, 0}));
    EXPECT_EQ(kernel.pending(), 0U);
}

TEST_F(SteppedKernel, AMessageMayPostAndWithdrawWithoutWaitingForItself) {
    const int object = 0;
    kernel.post(nullptr, {&object, &object}, 0ms, "", [&] {
        post('x', Kernel::mainThread, 0ms, {&object, nullptr});
        post('y', Kernel::mainThread, 0ms, {nullptr, &object});
        kernel.withdrawObject(&object);
        kernel.withdrawTokenAndWait(&object);
        EXPECT_EQ(kernel.currentThread(), kernel.findThread(Kernel::mainThread));
        post('z');
    });
    kernel.advance(0ms);
    EXPECT_EQ(order, "z");
    EXPECT_EQ(kernel.currentThread(), nullptr);
}

TEST_F(SteppedKernel, ServingEndsAsSoonAsItIsFinishedOrWhenTimeIsUp) {
    post('a', Kernel::searchThread, 10ms);
    post('b', Kernel::mainThread, 20ms);
    post('c', Kernel::mainThread, 30ms);
    EXPECT_TRUE(kernel.serveMain([&] { return order == "ab"; }, 1h));
    EXPECT_EQ(kernel.now(), 20ms);
    EXPECT_FALSE(kernel.serveMain([] { return false; }, 9ms));
    EXPECT_EQ(kernel.now(), 29ms);
    EXPECT_EQ(order, "ab");
    EXPECT_FALSE(kernel.serveMain([] { return false; }, host::Duration::max())) << "no overflow of the time";
    EXPECT_EQ(order, "abc");
}

TEST_F(SteppedKernel, AThreadOfAnotherKernelAndAStoppedKernelTakeNothing) {
    Kernel other(Driver::stepped);
    EXPECT_EQ(kernel.findThread("ThreadOther"), nullptr);
    EXPECT_FALSE(kernel.post(other.findThread(Kernel::mainThread), {}, 0ms, "", [] {}));
    kernel.stop();
    kernel.stop();
    EXPECT_FALSE(kernel.post(nullptr, {}, 0ms, "", [] {}));
}

TEST(SteppedKernelDeathTest, AHandlerMustNotWorkOtherMessages) {
    Kernel kernel(Driver::stepped);
    kernel.post(nullptr, {}, 0ms, "", [&] { kernel.step(); });
    kernel.post(nullptr, {}, 0ms, "", [] {});
    EXPECT_DEATH(kernel.step(), "must not work other messages");
}

TEST_F(LiveKernel, EachThreadWorksItsOwnMessagesAndMainThoseThatAreServed) {
    const auto caller = std::this_thread::get_id();
    std::atomic<bool> elsewhere = false;
    kernel.post(search, {}, 1ms, "", [&] {
        elsewhere = std::this_thread::get_id() != caller && kernel.currentThread() == search;
        kernel.post(nullptr, {}, 1ms, "", [&] { EXPECT_EQ(std::this_thread::get_id(), caller); });
    });
    EXPECT_TRUE(kernel.serveMain([&] { return elsewhere && kernel.pending() == 0; }, 10s));
    EXPECT_FALSE(kernel.serveMain([] { return false; }, 1ms));
    EXPECT_TRUE(kernel.serveMain([polls = 0]() mutable { return ++polls > 2; }, 10s)) << "asked while nothing happens";
}

TEST_F(LiveKernel, WithdrawingWaitsForWhatRunsOnAnotherThread) {
    for (const bool byObject : {true, false}) {
        const int object = 0;
        std::promise<void> begun;
        std::atomic<int> ended = 0;
        const host::Target target{byObject ? &object : nullptr, byObject ? nullptr : &object};
        kernel.post(search, target, 0ms, "", [&] {
            begun.set_value();
            std::this_thread::sleep_for(20ms);
            ++ended;
        });
        begun.get_future().wait();
        kernel.post(search, target, 0ms, "", [&] { ended += 100; });
        byObject ? kernel.withdrawObject(&object) : kernel.withdrawTokenAndWait(&object);
        EXPECT_EQ(ended, 1);
        waitUntilNothingIsPending();
        EXPECT_EQ(ended, 1);
    }
}

TEST_F(LiveKernel, StopEndsAfterTheRunningMessageAndGivesBackTheRest) {
    std::promise<void> begun;
    std::atomic<int> ran = 0;
    std::atomic<int> released = 0;
    kernel.post(search, {}, 0ms, "", [&] {
        begun.set_value();
        std::this_thread::sleep_for(20ms);
        ++ran;
    });
    const int object = 0;
    for (const auto* thread : {Kernel::searchThread.data(), Kernel::mainThread.data()}) {
        auto held = atRelease([&] { // what a last reference does: it calls back into the phone
            kernel.withdrawObject(&object);
            EXPECT_FALSE(kernel.post(nullptr, {}, 0ms, "", [] {}));
            ++released;
        });
        kernel.post(kernel.findThread(thread), {&object, nullptr}, 0ms, "", [&ran, held = std::move(held)] { ++ran; });
    }
    begun.get_future().wait();
    kernel.stop();
    EXPECT_EQ(ran, 1);
    EXPECT_EQ(released, 2);
    EXPECT_EQ(kernel.pending(), 0U);
}

TEST_F(LiveKernel, ManyPostersKeepTheirOrderAndNothingArrivesAfterAWithdrawal) {
    constexpr int posters = 3;
    constexpr int messages = 300;
    std::vector<std::vector<int>> seen(posters);
    std::vector<std::thread> threads;
    std::atomic<int> late = 0;
    for (int poster = 0; poster < posters; ++poster) {
        threads.emplace_back([&, poster] {
            auto& mine = seen[static_cast<std::size_t>(poster)];
            for (int i = 0; i < messages; ++i) {
                kernel.post(search, {}, 0ms, "", [&mine, i] { mine.push_back(i); });
                auto gone = std::make_unique<std::atomic<bool>>(false);
                kernel.post(search, {gone.get(), nullptr}, 0ms, "", [&late, flag = gone.get()] { late += *flag; });
                kernel.withdrawObject(gone.get());
                *gone = true; // touched again by a late message, this is also a use after free
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    waitUntilNothingIsPending();
    EXPECT_EQ(late, 0);
    for (const auto& mine : seen) {
        EXPECT_EQ(mine.size(), static_cast<std::size_t>(messages));
        EXPECT_TRUE(std::is_sorted(mine.begin(), mine.end()));
    }
}

} // namespace
