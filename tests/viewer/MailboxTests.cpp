#include "viewer/worker/Mailbox.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using zelto::view::Mailbox;

namespace {

/// Does what waits and notes the order.
std::vector<int> Drain(Mailbox& mailbox, std::vector<int>& done, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        (*mailbox.Take())();
    return done;
}

} // namespace

TEST(Mailbox, DoesJobsInOrderAndWhatGoesOutOfDateAfterThem) {
    Mailbox mailbox;
    std::vector<int> done;
    mailbox.PostLatest(Mailbox::Latest::Overview, [&] { done.push_back(4); });
    mailbox.PostLatest(Mailbox::Latest::Picture, [&] { done.push_back(3); });
    mailbox.Post([&] { done.push_back(1); });
    mailbox.Post([&] { done.push_back(2); });
    EXPECT_EQ(Drain(mailbox, done, 4), (std::vector<int>{1, 2, 3, 4}));
}

TEST(Mailbox, KeepsOnlyTheLatestOfAKind) {
    Mailbox mailbox;
    std::vector<int> done;
    for (int i = 0; i < 100; ++i)
        mailbox.PostLatest(Mailbox::Latest::Picture, [&, i] { done.push_back(i); });
    EXPECT_TRUE(mailbox.IsWaiting(Mailbox::Latest::Picture));
    EXPECT_EQ(Drain(mailbox, done, 1), std::vector<int>{99});
    EXPECT_FALSE(mailbox.IsWaiting(Mailbox::Latest::Picture));
}

TEST(Mailbox, WakesWhoWaitsWhenItIsStopped) {
    Mailbox mailbox;
    std::thread waiting([&] { EXPECT_FALSE(mailbox.Take().has_value()); });
    mailbox.Stop();
    waiting.join();
}
