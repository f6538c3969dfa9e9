#include "zelto/baselib/internal/GdalWatch.h"

#include "zelto/baselib/internal/LastError.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace {

std::string* s_heard = nullptr;

void CPL_STDCALL Hear(CPLErr, CPLErrorNum, const char* message) {
    *s_heard += message;
    *s_heard += ';';
}

/// A handler that was there before the watch.
class GdalWatch : public testing::Test {
  protected:
    GdalWatch() {
        s_heard = &m_heard;
        CPLPushErrorHandler(Hear);
        zelto::ClearLastError();
    }
    ~GdalWatch() override { CPLPopErrorHandler(); }

    std::string m_heard;
};

TEST_F(GdalWatch, ASuccessWithoutMessagesIsDone) {
    zelto::GdalWatch watch;
    EXPECT_TRUE(watch.Succeeded(CE_None, "a.tif"));
    EXPECT_FALSE(watch.HasError());
    EXPECT_EQ("", zelto::LastError());
}

TEST_F(GdalWatch, ASuccessAfterAnErrorIsNone) {
    zelto::GdalWatch watch;
    CPLError(CE_Failure, CPLE_FileIO, "No space left on device");
    EXPECT_FALSE(watch.Succeeded(CE_None, "a.tif"));
    EXPECT_EQ("a.tif: No space left on device", zelto::LastError());
}

TEST_F(GdalWatch, WarningsAreNoErrors) {
    zelto::GdalWatch watch;
    CPLError(CE_Warning, CPLE_AppDefined, "odd");
    EXPECT_TRUE(watch.Succeeded(CE_None, "a.tif"));
    EXPECT_TRUE(watch.Succeeded(CE_Warning, "a.tif"));
}

TEST_F(GdalWatch, AFailureWithoutMessageSaysSo) {
    zelto::GdalWatch watch;
    EXPECT_FALSE(watch.Succeeded(false, "a.tif"));
    EXPECT_EQ("a.tif: GDAL gives no reason", zelto::LastError());
    EXPECT_FALSE(watch.Succeeded(CE_Failure, ""));
    EXPECT_EQ("GDAL gives no reason", zelto::LastError());
}

TEST_F(GdalWatch, TheFirstErrorIsTheReasonInOneLine) {
    zelto::GdalWatch watch;
    CPLError(CE_Failure, CPLE_FileIO, "first\nline");
    CPLError(CE_Failure, CPLE_FileIO, "second");
    EXPECT_FALSE(watch.Succeeded(CE_None, "a.tif"));
    EXPECT_EQ("first\nline", watch.Error());
    EXPECT_EQ("a.tif: first line", zelto::LastError());
}

TEST_F(GdalWatch, TheHandlerBeforeStillHearsAll) {
    {
        const zelto::GdalWatch watch;
        CPLError(CE_Warning, CPLE_AppDefined, "one");
        CPLError(CE_Failure, CPLE_AppDefined, "two");
    }
    CPLError(CE_Warning, CPLE_AppDefined, "three");
    EXPECT_EQ("one;two;three;", m_heard);
}

TEST_F(GdalWatch, AnAnswerThatIsAWarningIsASuccess) {
    zelto::GdalWatch watch;
    EXPECT_TRUE(watch.Succeeded(CE_None, "a.tif"));
    EXPECT_TRUE(watch.Succeeded(CE_Warning, "a.tif"));
    EXPECT_FALSE(watch.Succeeded(CE_Failure, "a.tif"));
}

TEST_F(GdalWatch, NestedWatchesSeeTheirOwnTime) {
    zelto::GdalWatch outer;
    {
        zelto::GdalWatch inner;
        CPLError(CE_Failure, CPLE_AppDefined, "within");
        EXPECT_TRUE(inner.HasError());
    }
    zelto::GdalWatch later;
    EXPECT_FALSE(later.HasError());
    EXPECT_EQ("within", outer.Error());
    EXPECT_EQ("within;", m_heard);
}

TEST_F(GdalWatch, ReasonsBelongToTheirThread) {
    zelto::SetLastError("here");
    std::string elsewhere = "not read";
    std::thread([&] { elsewhere = zelto::LastError(); }).join();
    EXPECT_EQ("", elsewhere);
    EXPECT_EQ("here", zelto::LastError());
}

} // namespace
