// The kernel: order, virtual time, withdrawing and stopping, in both drivers.

#include "host/Kernel.h"

#include <atomic>
#include <functional>
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

class SteppedKernel : public testing::Test {
protected:
    Kernel kernel{Driver::stepped};
    std::string order; // of what ran

    void post(char name, std::string_view thread = Kernel::mainThread, host::Duration delay = 0ms,
              host::Target target = {}) {
        EXPECT_TRUE(kernel.post(kernel.findThread(thread), target, delay, std::string(1, name),
                                [this, name] { order += name; }));
    }
};

class LiveKernel : public testing::Test {
protected:
    const int object = 0;
    std::atomic<bool> begun = false;
    std::atomic<int> ran = 0;
    Kernel kernel{Driver::live};
    host::MessageThread* search = kernel.findThread(Kernel::searchThread);

    // Returns while a message runs on the search thread.
    void begin(host::Target target) {
        begun = false;
        kernel.post(search, target, 0ms, "", [this] {
            begun = true;
            std::this_thread::sleep_for(20ms);
            ++ran;
        });
        while (!begun) {
            std::this_thread::yield();
        }
    }
};

TEST_F(SteppedKernel, MessagesRunByDueTimeThenInOrderOfPostingAndNeverBeforeTheirTime) {
    post('e', Kernel::mainThread, 20ms);
    post('b', Kernel::searchThread);
    post('d', Kernel::messageThread, 10ms);
    post('a', Kernel::mainThread);
    post('f', Kernel::searchThread, 20ms);
    post('c', Kernel::mainThread, -5ms);
    const auto ready = kernel.ready();
    ASSERT_EQ(ready.size(), 2U) << "neither the second of a thread nor one that is not due";
    EXPECT_EQ(ready[0].label + ready[0].thread + ready[1].label, "bThreadLocalContactSearcha");
    EXPECT_FALSE(kernel.step(ready[1].sequence + 2)) << "c is behind a";
    EXPECT_TRUE(kernel.step(ready[1].sequence)) << "which is chosen before b";
    kernel.advance(20ms - 1us);
    EXPECT_EQ(order, "abcd");
    kernel.moveTime(1us);
    EXPECT_EQ(order, "abcd") << "moving time runs nothing";
    EXPECT_TRUE(kernel.step());
    EXPECT_EQ(kernel.nextDue(), 20ms);
    kernel.advance(1h);
    EXPECT_EQ(order, "abcdef");
    EXPECT_FALSE(kernel.step());
    EXPECT_EQ(kernel.now(), 1h + 20ms);
}

TEST_F(SteppedKernel, WithdrawingRemovesExactlyWhatIsAddressedAndDoesNotWaitForItself) {
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
    kernel.post(nullptr, {&objects[0], &tokens[1]}, 0ms, "", [&] {
        post('x', Kernel::mainThread, 0ms, {&objects[0], nullptr});
        post('y', Kernel::mainThread, 0ms, {nullptr, &tokens[1]});
        kernel.withdrawObject(&objects[0]);
        kernel.withdrawTokenAndWait(&tokens[1]);
        post('z');
    });
    kernel.advance(1s);
    EXPECT_EQ(order, "cez");
}

TEST_F(SteppedKernel, WhatAMessageHoldsIsLetGoOfUnlockedAndBeforeTheMessageCountsAsDone) {
    const int object = 0;
    std::vector<std::size_t> pending;
    const auto holding = [&] { return [held = atRelease([&] { pending.push_back(kernel.pending()); })] {}; };
    kernel.post(nullptr, {}, 0ms, "", holding());
    kernel.step();
    kernel.post(nullptr, {&object, nullptr}, 0ms, "", holding());
    kernel.withdrawObject(&object);
    kernel.post(nullptr, {}, 0ms, "", holding());
    kernel.stop();
    EXPECT_FALSE(kernel.post(nullptr, {}, 0ms, "", holding()));
    EXPECT_EQ(pending, (std::vector<std::size_t>{1, 0, 0, 0}));
}

TEST_F(LiveKernel, WithdrawingWaitsForWhatRunsOnAnotherThread) {
    for (const bool byObject : {true, false}) {
        const host::Target target{byObject ? &object : nullptr, byObject ? nullptr : &object};
        ran = 0;
        begin(target);
        kernel.post(search, target, 0ms, "", [&] { ran += 100; });
        byObject ? kernel.withdrawObject(&object) : kernel.withdrawTokenAndWait(&object);
        EXPECT_EQ(ran, 1);
        EXPECT_TRUE(kernel.serveMain([&] { return kernel.pending() == 0; }, 10s));
        EXPECT_EQ(ran, 1);
    }
}

TEST_F(LiveKernel, StopEndsAfterTheRunningMessageAndGivesBackTheRest) {
    std::atomic<int> released = 0;
    begin({});
    for (host::MessageThread* thread : {search, kernel.findThread(Kernel::mainThread)}) {
        auto held = atRelease([&] { // what a last reference does: it calls back into the phone
            kernel.withdrawObject(&object);
            EXPECT_FALSE(kernel.post(nullptr, {}, 0ms, "", [] {}));
            ++released;
        });
        kernel.post(thread, {&object, nullptr}, 0ms, "", [this, held = std::move(held)] { ++ran; });
    }
    kernel.stop();
    EXPECT_EQ(ran, 1);
    EXPECT_EQ(released, 2);
}

} // namespace
