#include "zelto/baselib/internal/NoThrow.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

TEST(NoThrow, AnswersWhatTheBodyAnswers) {
    zelto::ClearLastError();
    EXPECT_EQ(zelto::NoThrow(-1, [] { return 7; }), 7);
    EXPECT_EQ(zelto::LastError(), "");
}

TEST(NoThrow, TellsThatMemoryRanOut) {
    EXPECT_EQ(zelto::NoThrow(-1, []() -> int { throw std::bad_alloc(); }), -1);
    EXPECT_EQ(zelto::LastError(), "not enough memory");
}

TEST(NoThrow, TellsWhatAnyOtherExceptionSays) {
    EXPECT_FALSE(zelto::NoThrow(false, []() -> bool { throw std::out_of_range("no such band"); }));
    EXPECT_EQ(zelto::LastError(), "no such band");
    EXPECT_FALSE(zelto::NoThrow(false, []() -> bool { throw 3; }));
    EXPECT_EQ(zelto::LastError(), "unexpected failure");
}

} // namespace
