#include "Reports.h"

#include <gtest/gtest.h>

#include <mutex>

#include "TqHooks.h"

namespace {

std::mutex collectedMutex;
Reports collected;

void Collect(const char* file, int line) {
    std::lock_guard<std::mutex> guard(collectedMutex);
    EXPECT_GT(line, 0) << "report without a line by " << file;
    collected.push_back(file);
}

class ReportCollector : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override {
        TakeReports();
        TqRegisterAssertCb(Collect);
    }

    void OnTestEnd(const testing::TestInfo&) override {
        TqUnRegisterAssertCb();
        for (const std::string& file : TakeReports())
            ADD_FAILURE() << "unexpected report: " << file;
    }
};

}  // namespace

Reports TakeReports() {
    std::lock_guard<std::mutex> guard(collectedMutex);
    Reports taken;
    taken.swap(collected);
    return taken;
}

void CollectReports() {
    testing::UnitTest::GetInstance()->listeners().Append(new ReportCollector);
}
