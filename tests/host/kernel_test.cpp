// The kernel: order, virtual time, withdrawing and stopping, in both drivers.

#include "host/kernel/Kernel.h"

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
using Names = std::vector<std::string>;

// Runs something when the last copy of the message that holds it goes.
std::shared_ptr<void> atRelease(std::function<void()> run) {
    return {nullptr, [run = std::move(run)](void*) { run(); }};
}

class SteppedKernel : public testing::Test {
protected:
    Kernel kernel{Driver::stepped};
    Names ran; // in this order

    void post(const std::string& name, std::string_view thread = Kernel::mainThread, host::Duration delay = 0ms,
              host::Target target = {}) {
        EXPECT_TRUE(kernel.post(kernel.findThread(thread), target, delay, name, [this, name] { ran.push_back(name); }));
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
    post("after 20 ms", Kernel::mainThread, 20ms);
    post("at once", Kernel::searchThread);
    post("after 10 ms", Kernel::messageThread, 10ms);
    post("chosen first", Kernel::mainThread);
    post("after 20 ms, posted later", Kernel::searchThread, 20ms);
    post("at once, second of its thread", Kernel::mainThread, -5ms);
    const auto ready = kernel.ready();
    ASSERT_EQ(ready.size(), 2U) << "neither the second of a thread nor one that is not due";
    EXPECT_EQ(ready[0].label, "at once");
    EXPECT_EQ(ready[0].thread, Kernel::searchThread);
    EXPECT_EQ(ready[1].label, "chosen first");
    EXPECT_FALSE(kernel.step(ready[1].sequence + 2)) << "the second of its thread";
    EXPECT_TRUE(kernel.step(ready[1].sequence));
    kernel.advance(20ms - 1us);
    const Names early = {"chosen first", "at once", "at once, second of its thread", "after 10 ms"};
    EXPECT_EQ(ran, early);
    kernel.moveTime(1us);
    EXPECT_EQ(ran, early) << "moving time runs nothing";
    EXPECT_TRUE(kernel.step());
    EXPECT_EQ(kernel.nextDue(), 20ms);
    kernel.advance(1h);
    ASSERT_EQ(ran.size(), 6U);
    EXPECT_EQ(ran[4] + ", " + ran[5], "after 20 ms, after 20 ms, posted later");
    EXPECT_FALSE(kernel.step());
    EXPECT_EQ(kernel.now(), 1h + 20ms);
}

TEST_F(SteppedKernel, WithdrawingRemovesExactlyWhatIsAddressedAndDoesNotWaitForItself) {
    const int kept[2] = {};
    const int object = 0;
    const int token = 0;
    post("of the object", Kernel::mainThread, 0ms, {&object, &kept[1]});
    post("of the object, with the token, later", Kernel::searchThread, 5ms, {&object, &token});
    post("of others", Kernel::mainThread, 0ms, {&kept[0], &kept[1]});
    post("with the token", Kernel::mainThread, 0ms, {&kept[0], &token});
    post("of nobody");
    kernel.withdrawObject(nullptr);
    EXPECT_EQ(kernel.withdrawToken(nullptr), 0U);
    kernel.withdrawObject(&object);
    EXPECT_EQ(kernel.pending(), 3U);
    EXPECT_EQ(kernel.withdrawToken(&token), 1U);
    kernel.post(nullptr, {&object, &token}, 0ms, "", [&] {
        post("of the object, posted in its message", Kernel::mainThread, 0ms, {&object, nullptr});
        post("with the token, posted in its message", Kernel::mainThread, 0ms, {nullptr, &token});
        kernel.withdrawObject(&object);
        kernel.withdrawTokenAndWait(&token);
        post("posted after withdrawing");
    });
    kernel.advance(1s);
    EXPECT_EQ(ran, (Names{"of others", "of nobody", "posted after withdrawing"}));
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
