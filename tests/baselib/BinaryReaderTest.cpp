#include "zelto/baselib/internal/BinaryFile.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>

namespace {

std::istringstream StreamOf(const std::string& bytes) {
    return std::istringstream(bytes, std::ios::binary);
}

} // namespace

TEST(BinaryReader, ReadsFieldsLittleEndian) {
    std::istringstream stream = StreamOf(std::string("\x2A\x01\x02\xFF\xFF\xFF\xFF", 7) +
                                         std::string("\0\0\0\0\0\0\xF8\x3F", 8));
    zelto::BinaryReader reader(stream);
    EXPECT_EQ(reader.BytesRemaining(), 15U);
    std::uint8_t byte = 0;
    std::uint16_t word = 0;
    std::int32_t integer = 0;
    double number = 0.0;
    EXPECT_TRUE(reader.Read(byte) && reader.Read(word) && reader.Read(integer) &&
                reader.Read(number));
    EXPECT_EQ(byte, 42);
    EXPECT_EQ(word, 0x0201);
    EXPECT_EQ(integer, -1);
    EXPECT_EQ(number, 1.5);
    EXPECT_EQ(reader.BytesRemaining(), 0U);
    EXPECT_TRUE(reader.IsGood());
}

TEST(BinaryReader, CountsFromTheStreamsPosition) {
    std::istringstream stream = StreamOf("abcdef");
    stream.seekg(4);
    zelto::BinaryReader reader(stream);
    EXPECT_EQ(reader.BytesRemaining(), 2U);
    std::uint8_t byte = 0;
    EXPECT_TRUE(reader.Read(byte));
    EXPECT_EQ(byte, 'e');
}

TEST(BinaryReader, AFailedReadLeavesTheValueAndSticks) {
    std::istringstream stream = StreamOf("abc");
    zelto::BinaryReader reader(stream);
    std::int32_t integer = 7;
    EXPECT_FALSE(reader.Read(integer));
    EXPECT_EQ(integer, 7);
    EXPECT_FALSE(reader.IsGood());
    std::uint8_t byte = 9;
    EXPECT_FALSE(reader.Read(byte)) << "although a byte is there";
    EXPECT_EQ(byte, 9);
}

TEST(BinaryReader, ReadsSpansWholeOrNotAtAll) {
    std::istringstream stream = StreamOf("abcd");
    zelto::BinaryReader reader(stream);
    std::array<unsigned char, 3> three{};
    EXPECT_TRUE(reader.Read(three));
    EXPECT_EQ(three[2], 'c');
    EXPECT_FALSE(reader.Read(three));
    EXPECT_EQ(three[0], 'a');
}

TEST(BinaryReader, HoldsCountsThatFitTheRestOnly) {
    std::istringstream stream = StreamOf(std::string(100, 'x'));
    const zelto::BinaryReader reader(stream);
    EXPECT_TRUE(reader.Holds(0, 8));
    EXPECT_TRUE(reader.Holds(12, 8));
    EXPECT_FALSE(reader.Holds(13, 8));
    EXPECT_FALSE(reader.Holds(-1, 8));
    EXPECT_FALSE(reader.Holds(std::numeric_limits<std::int64_t>::max(), 16));
    EXPECT_FALSE(reader.Holds(1, 0));
}

TEST(BinaryReader, AStreamThatIsNotOpenHasNothing) {
    std::ifstream closed;
    zelto::BinaryReader reader(closed);
    EXPECT_EQ(reader.BytesRemaining(), 0U);
    std::uint8_t byte = 0;
    EXPECT_FALSE(reader.Read(byte));
}

TEST(BinaryReader, AStreamThatFailsBeforeItsEndSticks) {
    std::istringstream stream("abcdef");
    zelto::BinaryReader reader(stream);
    std::uint8_t byte = 0;
    EXPECT_TRUE(reader.Read(byte));
    stream.setstate(std::ios::badbit); // as a broken disk does
    EXPECT_FALSE(reader.Read(byte));
    EXPECT_EQ(byte, 'a');
    EXPECT_FALSE(reader.IsGood());
    EXPECT_EQ(reader.BytesRemaining(), 5U);
    stream.clear();
    EXPECT_FALSE(reader.Read(byte));
}

TEST(BinaryWriter, WritesWhatTheReaderReads) {
    std::stringstream stream(std::ios::in | std::ios::out | std::ios::binary);
    zelto::BinaryWriter writer(stream);
    writer.Write(std::uint8_t{200});
    writer.Write(std::int32_t{-123456});
    writer.Write(std::int64_t{1} << 60);
    writer.Write(-0.0);
    writer.Write(std::numeric_limits<float>::denorm_min());
    const std::array<unsigned char, 2> bytes = {1, 2};
    writer.Write(bytes);
    EXPECT_EQ(stream.str().size(), 1U + 4 + 8 + 8 + 4 + 2);
    EXPECT_EQ(stream.str().substr(1, 4), "\xC0\x1D\xFE\xFF"); // −123456 is 0xFFFE1DC0
    zelto::BinaryReader reader(stream);
    std::uint8_t byte = 0;
    std::int32_t integer = 0;
    std::int64_t large = 0;
    double zero = 1.0;
    float small = 0.0F;
    EXPECT_TRUE(reader.Read(byte) && reader.Read(integer) && reader.Read(large) &&
                reader.Read(zero) && reader.Read(small));
    EXPECT_EQ(byte, 200);
    EXPECT_EQ(integer, -123456);
    EXPECT_EQ(large, std::int64_t{1} << 60);
    EXPECT_TRUE(std::signbit(zero));
    EXPECT_EQ(small, std::numeric_limits<float>::denorm_min());
}
