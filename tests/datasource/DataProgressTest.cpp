#include "zelto/datasource/DataProgress.h"

#include "tests/datasource/PlainDataSource.h"
#include "tests/support/RecordingProgress.h"

#include <gtest/gtest.h>

#include <limits>

using zelto::test::RecordingProgress;
using zelto::test::SlotOf;

namespace {

class OpenProgress : public RecordingProgress {
  public:
    bool AutoClose() const { return m_autoClose; }
    bool ReadOnly() const { return m_readOnly; }
    bool AutoCloseStandsFirst() const { return &m_autoClose < &m_readOnly; }
};

} // namespace

TEST(DataProgress, StartsWithoutAutomaticCloseAndTakesTheHostsFlags) {
    OpenProgress progress;
    EXPECT_FALSE(progress.AutoClose());
    progress.SetAutoClose(true);
    EXPECT_TRUE(progress.AutoClose());
    progress.SetReadOnly(true);
    EXPECT_TRUE(progress.ReadOnly());
    EXPECT_TRUE(progress.AutoCloseStandsFirst());
}

TEST(DataProgress, VirtualOperationsStandInTheirSlots) {
    EXPECT_EQ(SlotOf(&CDataProgress::BeginProgress), 3);
    EXPECT_EQ(SlotOf(&CDataProgress::StepProgress), 4);
    EXPECT_EQ(SlotOf(&CDataProgress::SetReadOnly), 8);
}

TEST(ProgressBridge, GoesOnWithoutAProgressObject) {
    EXPECT_EQ(GDALProgressFuncEx(0.5, "message", nullptr), 1);
}

TEST(ProgressBridge, ShowsItsOwnTextUnlessGdalPassesOne) {
    RecordingProgress progress;
    EXPECT_EQ(GDALProgressFuncEx(0.25, nullptr, &progress), 1);
    EXPECT_EQ(GDALProgressFuncEx(0.5, "统计 é", &progress), 1);
    EXPECT_EQ(GDALProgressFuncEx(0.75, "", &progress), 1);
    ASSERT_EQ(progress.m_steps.size(), 3U);
    EXPECT_EQ(progress.m_steps[0], std::make_pair(25, std::wstring(L"处理中：")));
    EXPECT_EQ(progress.m_steps[1], std::make_pair(50, std::wstring(L"统计 é")));
    EXPECT_EQ(progress.m_steps[2], std::make_pair(75, std::wstring()));
}

TEST(ProgressBridge, TruncatesThePercentage) {
    RecordingProgress progress;
    GDALProgressFuncEx(0.019, nullptr, &progress);
    GDALProgressFuncEx(0.999, nullptr, &progress);
    GDALProgressFuncEx(1.0, nullptr, &progress);
    GDALProgressFuncEx(-0.019, nullptr, &progress);
    GDALProgressFuncEx(std::numeric_limits<double>::quiet_NaN(), nullptr, &progress);
    ASSERT_EQ(progress.m_steps.size(), 5U);
    EXPECT_EQ(progress.m_steps[0].first, 1);
    EXPECT_EQ(progress.m_steps[1].first, 99);
    EXPECT_EQ(progress.m_steps[2].first, 100);
    EXPECT_EQ(progress.m_steps[3].first, -1);
    EXPECT_EQ(progress.m_steps[4].first, std::numeric_limits<int>::min());
}

TEST(ProgressBridge, AnswersZeroWhenTheHostCancels) {
    RecordingProgress progress(1);
    EXPECT_EQ(GDALProgressFuncEx(0.1, nullptr, &progress), 1);
    EXPECT_EQ(GDALProgressFuncEx(0.2, nullptr, &progress), 0);
}

TEST(ProgressBridge, TheSilentOneReportsNothing) {
    RecordingProgress progress(0);
    EXPECT_EQ(GDALProgressFuncNone(0.5, "message", &progress), 1);
    EXPECT_EQ(GDALProgressFuncNone(0.5, nullptr, nullptr), 1);
    EXPECT_TRUE(progress.m_steps.empty());
}
