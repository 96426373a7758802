#include "TqHooks.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "Reports.h"

// The names as an application written in another language asks for them.
void callAssertByPlainName(const char* file, int line) __asm__("TqCallAssert");
int callSysExitByPlainName(int status) __asm__("TqCallSysExit");
TqAssertCb registerAssertByPlainName(TqAssertCb hook) __asm__("TqRegisterAssertCb");
TqAssertCb unRegisterAssertByPlainName() __asm__("TqUnRegisterAssertCb");
TqSysExitCb registerSysExitByPlainName(TqSysExitCb hook) __asm__("TqRegisterSysExitCb");
TqSysExitCb unRegisterSysExitByPlainName() __asm__("TqUnRegisterSysExitCb");
extern int switchByPlainName __asm__("tqDebugPrintOn");

namespace {

// Read before main, so before anything was installed.
const TqAssertCb assertHookAtLoad = TqUnRegisterAssertCb();
const TqSysExitCb exitHookAtLoad = TqUnRegisterSysExitCb();
const int switchAtLoad = tqDebugPrintOn;

const char* seenFile;
int seenLine;
int seenStatus;

void HookA(const char* file, int line) {
    seenFile = file;
    seenLine = line;
}

void HookB(const char*, int) {}

int ExitHookA(int status) {
    seenStatus = status;
    return 77;
}

int ExitHookB(int) {
    return 0;
}

// The collector of the test program is a hook as well: a test that needs none takes it out first.
class TqHooks : public testing::Test {
protected:
    TqHooks() {
        TqUnRegisterAssertCb();
        TqUnRegisterSysExitCb();
    }
    ~TqHooks() override { TqUnRegisterSysExitCb(); }
};

TEST_F(TqHooks, NothingIsInstalledAtLoad) {
    EXPECT_EQ(assertHookAtLoad, nullptr);
    EXPECT_EQ(exitHookAtLoad, nullptr);
    EXPECT_EQ(switchAtLoad, 0);
}

TEST_F(TqHooks, NamesAreNotDecorated) {
    EXPECT_EQ(registerAssertByPlainName(HookA), nullptr);
    callAssertByPlainName("plain", 7);
    EXPECT_STREQ(seenFile, "plain");
    EXPECT_EQ(seenLine, 7);
    EXPECT_EQ(unRegisterAssertByPlainName(), HookA);
    EXPECT_EQ(registerSysExitByPlainName(ExitHookA), nullptr);
    EXPECT_EQ(callSysExitByPlainName(8), 77);
    EXPECT_EQ(seenStatus, 8);
    EXPECT_EQ(unRegisterSysExitByPlainName(), ExitHookA);
    EXPECT_EQ(&switchByPlainName, &tqDebugPrintOn);
}

TEST_F(TqHooks, CallAssertWithoutAHookReturnsQuietly) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    TqCallAssert("x", 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(TqHooks, CallAssertHandsOnItsArgumentsExactlyAsReceived) {
    TqRegisterAssertCb(HookA);
    const char file[] = "TqString";
    TqCallAssert(file, -5);
    EXPECT_EQ(seenFile, file);
    EXPECT_EQ(seenLine, -5);
    TqCallAssert(nullptr, 0);
    EXPECT_EQ(seenFile, nullptr);
    EXPECT_EQ(seenLine, 0);
}

TEST_F(TqHooks, RegisterAssertReturnsThePreviousHook) {
    EXPECT_EQ(TqRegisterAssertCb(HookA), nullptr);
    EXPECT_EQ(TqRegisterAssertCb(HookB), HookA);
    EXPECT_EQ(TqUnRegisterAssertCb(), HookB);
    EXPECT_EQ(TqUnRegisterAssertCb(), nullptr);
}

TEST_F(TqHooks, RegisteringNullAsAssertHookUnregisters) {
    TqRegisterAssertCb(HookA);
    seenFile = nullptr;
    EXPECT_EQ(TqRegisterAssertCb(nullptr), HookA);
    TqCallAssert("x", 1);
    EXPECT_EQ(seenFile, nullptr);
}

TEST_F(TqHooks, RegisterSysExitReturnsThePreviousHook) {
    EXPECT_EQ(TqRegisterSysExitCb(ExitHookA), nullptr);
    EXPECT_EQ(TqRegisterSysExitCb(ExitHookB), ExitHookA);
    EXPECT_EQ(TqUnRegisterSysExitCb(), ExitHookB);
    EXPECT_EQ(TqUnRegisterSysExitCb(), nullptr);
}

TEST_F(TqHooks, CallSysExitHandsOnTheStatusAndReturnsTheHooksResult) {
    TqRegisterSysExitCb(ExitHookA);
    EXPECT_EQ(TqCallSysExit(5), 77);
    EXPECT_EQ(seenStatus, 5);
}

TEST_F(TqHooks, CallSysExitWithoutAHookExitsWith999) {
    EXPECT_EXIT(TqCallSysExit(0), testing::ExitedWithCode(999 % 256), "");
    EXPECT_EXIT(TqCallSysExit(5), testing::ExitedWithCode(231), "");
}

TEST_F(TqHooks, CallSysExitWithoutAHookRunsTheExitHandlers) {
    const auto exitWithAHandler = [] {
        std::atexit([] { std::fputs("cleaned up", stderr); });
        TqCallSysExit(0);
    };
    EXPECT_EXIT(exitWithAHandler(), testing::ExitedWithCode(231), "cleaned up");
}

TEST_F(TqHooks, TheTwoHooksAreIndependent) {
    TqRegisterAssertCb(HookA);
    TqRegisterSysExitCb(ExitHookA);
    EXPECT_EQ(TqUnRegisterSysExitCb(), ExitHookA);
    EXPECT_EQ(TqUnRegisterAssertCb(), HookA);
}

TEST_F(TqHooks, CallSysExitAfterUnregisteringExitsAgain) {
    TqRegisterSysExitCb(ExitHookA);
    TqRegisterSysExitCb(nullptr);
    EXPECT_EXIT(TqCallSysExit(0), testing::ExitedWithCode(231), "");
}

TEST_F(TqHooks, DebugSwitchIsZeroUntilTheApplicationSetsIt) {
    EXPECT_EQ(tqDebugPrintOn, 0);
    tqDebugPrintOn = 3;
    EXPECT_EQ(tqDebugPrintOn, 3);
    tqDebugPrintOn = 0;
}

}  // namespace
