#include "zelto/baselib/internal/Utf16.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

Bytes Encoded(const std::wstring& text, std::size_t size) {
    Bytes field(size, 0xEE);
    zelto::EncodeUtf16Field(text, field);
    return field;
}

} // namespace

TEST(Utf16Field, EncodesLittleEndianAndPadsWithZeros) {
    EXPECT_EQ(Encoded(L"aé中", 10), (Bytes{0x61, 0, 0xE9, 0, 0x2D, 0x4E, 0, 0, 0, 0}));
}

TEST(Utf16Field, EncodesCharactersBeyondTheFirstPlaneAsPairs) {
    const Bytes field = Encoded(L"\U0001F600", 6);
    EXPECT_EQ(field, (Bytes{0x3D, 0xD8, 0x00, 0xDE, 0, 0}));
    EXPECT_EQ(zelto::DecodeUtf16Field(field), L"\U0001F600");
}

TEST(Utf16Field, CutsSoThatTheZeroUnitFits) {
    EXPECT_EQ(Encoded(L"abc", 6), (Bytes{0x61, 0, 0x62, 0, 0, 0}));
    EXPECT_EQ(Encoded(L"ab", 6), (Bytes{0x61, 0, 0x62, 0, 0, 0}));
}

TEST(Utf16Field, CutsNoPairInHalf) {
    EXPECT_EQ(Encoded(L"a\U0001F600", 6), (Bytes{0x61, 0, 0, 0, 0, 0}));
    // What follows a character that does not fit is left out, too.
    EXPECT_EQ(Encoded(L"a\U0001F600z", 6), (Bytes{0x61, 0, 0, 0, 0, 0}));
}

TEST(Utf16Field, StopsAtAZeroInTheText) {
    EXPECT_EQ(Encoded(std::wstring(L"a\0b", 3), 8), (Bytes{0x61, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(Utf16Field, ReplacesWhatIsNoCharacter) {
    const std::wstring text = {static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0xDFFF),
                               static_cast<wchar_t>(0x110000), static_cast<wchar_t>(-1)};
    EXPECT_EQ(Encoded(text, 10), (Bytes{0xFD, 0xFF, 0xFD, 0xFF, 0xFD, 0xFF, 0xFD, 0xFF, 0, 0}));
}

TEST(Utf16Field, DecodesUpToTheFirstZeroOrTheEnd) {
    EXPECT_EQ(zelto::DecodeUtf16Field(Bytes{0x61, 0, 0, 0, 0x62, 0}), L"a");
    EXPECT_EQ(zelto::DecodeUtf16Field(Bytes{0x61, 0, 0x62, 0}), L"ab");
    EXPECT_EQ(zelto::DecodeUtf16Field(Bytes{}), L"");
}

TEST(Utf16Field, IgnoresAnOddLastByte) {
    EXPECT_EQ(zelto::DecodeUtf16Field(Bytes{0x61, 0, 0x62}), L"a");
    EXPECT_EQ(Encoded(L"ab", 5), (Bytes{0x61, 0, 0, 0, 0}));
}

TEST(Utf16Field, DecodesASurrogateWithoutItsPartnerAsReplacement) {
    const Bytes lowFirst = {0x00, 0xDC, 0x61, 0};
    EXPECT_EQ(zelto::DecodeUtf16Field(lowFirst), L"\uFFFDa");
    const Bytes highLast = {0x61, 0, 0x3D, 0xD8};
    EXPECT_EQ(zelto::DecodeUtf16Field(highLast), L"a\uFFFD");
    const Bytes twoHigh = {0x3D, 0xD8, 0x3D, 0xD8, 0x00, 0xDE};
    EXPECT_EQ(zelto::DecodeUtf16Field(twoHigh), L"\uFFFD\U0001F600");
}

TEST(Utf16Field, TooSmallFieldsHoldNothing) {
    EXPECT_EQ(Encoded(L"a", 2), (Bytes{0, 0}));
    EXPECT_EQ(Encoded(L"a", 1), (Bytes{0}));
    EXPECT_EQ(Encoded(L"a", 0), Bytes{});
}
