#include "zelto/display/internal/Compose.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

TEST(ComposeChannels, MakeWhatTheirChannelsMakeOneByOne) {
    const unsigned seed = std::random_device{}();
    std::mt19937 random(seed);
    for (int round = 0; round < 200; ++round) {
        const int count = static_cast<int>(random() % 70);
        std::vector<zelto::ShownByte> bytes[3];
        for (auto& ofBand : bytes)
            for (int i = 0; i < count; ++i)
                ofBand.push_back(random() % 4 == 0 ? 0 : zelto::isShown | (random() & 255));
        std::vector<unsigned char> oneByOne(static_cast<std::size_t>(count) * 4, 77);
        std::vector<unsigned char> together(oneByOne);
        for (const auto first : {zelto::FirstColor::Blue, zelto::FirstColor::Red}) {
            for (int k = 0; k < 3; ++k)
                zelto::ComposeChannel(bytes[k].data(), count,
                                      {zelto::ShownChannel(k, first), k == 0}, oneByOne.data(),
                                      nullptr);
            zelto::ComposeChannels(bytes[0].data(), bytes[1].data(), bytes[2].data(), count,
                                   together.data(), first);
            ASSERT_EQ(together, oneByOne) << "seed " << seed;
        }
    }
}

TEST(ComposeChannels, AMissingSampleLeavesWhatStoodThereTransparent) {
    const zelto::ShownByte ten = zelto::isShown | 10;
    const zelto::ShownByte red[] = {ten, 0, ten, ten};
    const zelto::ShownByte green[] = {ten, ten, 0, ten};
    const zelto::ShownByte blue[] = {ten, ten, ten, 0};
    std::vector<unsigned char> pixels(16);
    zelto::ComposeChannels(red, green, blue, 4, pixels.data());
    EXPECT_EQ(pixels, (std::vector<unsigned char>{10, 10, 10, 255, 255, 255, 255, 0, //
                                                  255, 255, 10, 0, 255, 10, 10, 0}));
}
