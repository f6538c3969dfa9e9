#include "zelto/display/internal/RowsBehind.h"

#include <gtest/gtest.h>

#include <atomic>
#include <vector>

using zelto::RowsBehind;

TEST(RowsBehind, DrawEveryRowOnce) {
    for (const int rows : {0, 1, 31, 32, 33, 1000}) {
        std::vector<std::atomic<int>> drawn(static_cast<std::size_t>(rows));
        RowsBehind behind;
        behind.Start(rows, [&](int first, int end) {
            for (int row = first; row < end; ++row)
                ++drawn[static_cast<std::size_t>(row)];
        });
        behind.Finish();
        for (const std::atomic<int>& times : drawn)
            EXPECT_EQ(times, 1) << rows << " rows";
    }
}

TEST(RowsBehind, AreFinishedBeforeTheNextBeginAndAtTheEnd) {
    std::atomic<int> first = 0;
    std::atomic<int> second = 0;
    int seen = 0;
    {
        RowsBehind behind;
        behind.Start(500, [&](int from, int end) { first += end - from; });
        behind.Start(300, [&](int from, int end) { second += end - from; });
        seen = first;
    }
    EXPECT_EQ(seen, 500);
    EXPECT_EQ(second, 300);
}

TEST(RowsBehind, ThatNeverBeganAreFinished) {
    RowsBehind behind;
    behind.Finish();
}
