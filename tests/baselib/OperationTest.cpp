#include "zelto/baselib/internal/Operation.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

namespace {

using zelto::ClearLastError;
using zelto::LastError;
using zelto::Operation;
using zelto::OperationScope;
using zelto::SetLastError;

TEST(Operation, TheOutermostOneForgetsTheReasonBefore) {
    SetLastError("old");
    {
        const OperationScope outer;
        EXPECT_EQ("", LastError());
        SetLastError("new");
        {
            const OperationScope inner;
            EXPECT_EQ("new", LastError());
        }
        EXPECT_EQ("new", LastError());
    }
    EXPECT_EQ("new", LastError()) << "kept for the host";
    const OperationScope next;
    EXPECT_EQ("", LastError());
}

TEST(Operation, AReasonIsOneLine) {
    SetLastError("first\r\nsecond");
    EXPECT_EQ("first  second", LastError());
}

TEST(Operation, AnswersWhatItsBodyAnswers) {
    EXPECT_EQ(7, Operation(0, [] { return 7; }));
    EXPECT_EQ("", LastError());
}

TEST(Operation, LetsNoExceptionOut) {
    EXPECT_EQ(4, Operation(4, []() -> int { throw std::bad_alloc(); }));
    EXPECT_EQ("not enough memory", LastError());
    EXPECT_FALSE(Operation(false, []() -> bool { throw std::runtime_error("odd"); }));
    EXPECT_EQ("odd", LastError());
    EXPECT_EQ(1, Operation(1, []() -> int { throw 2; })) << "a host may throw anything";
    EXPECT_NE("", LastError());
}

TEST(LastError, NamesTheFileOnce) {
    SetLastError(L"a.tif", "gone");
    EXPECT_EQ("a.tif: gone", LastError());
    zelto::NameFileOfLastError(L"a.tif");
    EXPECT_EQ("a.tif: gone", LastError());
    zelto::NameFileOfLastError(L"影像.vrt");
    EXPECT_EQ("影像.vrt: a.tif: gone", LastError());
    ClearLastError();
    zelto::NameFileOfLastError(L"a.tif");
    EXPECT_EQ("", LastError());
}

} // namespace
