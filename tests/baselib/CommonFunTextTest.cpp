#include "zelto/baselib/CommonFun.h"

#include "tests/support/Text.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

TEST(TextConversion, AgreesWithGdalsOnCharactersOfEveryLength) {
    const std::string text = "a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80z";
    EXPECT_EQ(CommonFun::M2U(text), zelto::test::Wide(text));
    EXPECT_EQ(CommonFun::M2U(text), L"aé中\U0001F600z");
    EXPECT_EQ(CommonFun::U2M(L"aé中\U0001F600z"), text);
    EXPECT_EQ(CommonFun::U2M(L""), "");
    EXPECT_EQ(CommonFun::M2U(""), L"");
}

TEST(TextConversion, KeepsTheEdgesOfEachLength) {
    for (const std::uint32_t c :
         {0x7FU, 0x80U, 0x7FFU, 0x800U, 0xD7FFU, 0xE000U, 0xFFFFU, 0x10000U, 0x10FFFFU}) {
        const std::wstring text(1, static_cast<wchar_t>(c));
        EXPECT_EQ(CommonFun::M2U(CommonFun::U2M(text)), text) << std::hex << c;
        EXPECT_EQ(CommonFun::U2M(text), zelto::test::Narrow(text)) << std::hex << c;
    }
}

TEST(TextConversion, BytesThatAreNotUtf8SurviveBothWays) {
    // A GBK name, a lone continuation, an overlong form, a surrogate, a cut character, a byte
    // beyond all characters.
    for (const std::string text : {"\xD3\xB0\xCF\xF1.tif", "\x80", "\xC0\xAF", "\xED\xA0\x80",
                                   "a\xE4\xB8", "\xF5\x80\x80\x80", "\xF4\x90\x80\x80"})
        EXPECT_EQ(CommonFun::U2M(CommonFun::M2U(text)), text);
    EXPECT_EQ(CommonFun::M2U("\xD3"), std::wstring(1, static_cast<wchar_t>(0xDCD3)));
}

TEST(TextConversion, AnyBytesSurviveBothWays) {
    constexpr unsigned seed = 7;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 2000; ++round) {
        std::string text(random() % 12, '\0');
        for (char& c : text)
            c = static_cast<char>(random());
        ASSERT_EQ(CommonFun::U2M(CommonFun::M2U(text)), text);
    }
}

TEST(TextConversion, WideValuesThatAreNoCharactersAreReplaced) {
    for (const std::uint32_t c : {0xD800U, 0xDC00U, 0xDC7FU, 0xDFFFU, 0x110000U, 0xFFFFFFFFU})
        EXPECT_EQ(CommonFun::U2M(std::wstring(1, static_cast<wchar_t>(c))), "\xEF\xBF\xBD");
}

TEST(AfterEqual, GivesWhatFollowsTheFirstSign) {
    EXPECT_EQ(CommonFun::GetAfterEqualString(L"name=WGS 84"), L"WGS 84");
    EXPECT_EQ(CommonFun::GetAfterEqualString(L"a=b=c"), L"b=c");
    EXPECT_EQ(CommonFun::GetAfterEqualString(L"WGS 84"), L"WGS 84");
    EXPECT_EQ(CommonFun::GetAfterEqualString(L"="), L"");
}

TEST(SameText, ComparesLetterByLetter) {
    EXPECT_TRUE(CommonFun::StrIsSame("", ""));
    EXPECT_TRUE(CommonFun::StrIsSame("GEOGCS[\"x\"]", "GEOGCS[\"x\"]"));
    EXPECT_FALSE(CommonFun::StrIsSame("a", "A"));
    EXPECT_FALSE(CommonFun::StrIsSame("a", "a "));
}

TEST(Round, GoesToTheNearestAndUpFromTheMiddle) {
    EXPECT_EQ(CommonFun::Round(2.4), 2);
    EXPECT_EQ(CommonFun::Round(2.5), 3);
    EXPECT_EQ(CommonFun::Round(-2.5), -2);
    EXPECT_EQ(CommonFun::Round(-2.6), -3);
    // The sum x + 0.5 rounds up to 1 here, and is taken as it is.
    EXPECT_EQ(CommonFun::Round(std::nextafter(0.5, 0.0)), 1);
    EXPECT_EQ(CommonFun::Round(std::numeric_limits<double>::quiet_NaN()),
              std::numeric_limits<int>::min());
    EXPECT_EQ(CommonFun::Round(1e10), std::numeric_limits<int>::min());
}

TEST(NumberText, IsTheShortestThatReadsBack) {
    EXPECT_EQ(CommonFun::double2string(0.1), "0.1");
    EXPECT_EQ(CommonFun::double2string(6378137.0), "6378137");
    EXPECT_EQ(CommonFun::double2string(298.257223563), "298.257223563");
    EXPECT_EQ(CommonFun::double2string(0.0174532925199433), "0.0174532925199433");
    EXPECT_EQ(CommonFun::double2string(-0.5), "-0.5");
    EXPECT_EQ(CommonFun::double2string(1e300), "1e+300");
}

TEST(NumberText, ReadsBackToTheSameDouble) {
    constexpr unsigned seed = 11;
    SCOPED_TRACE(seed);
    std::mt19937_64 random(seed);
    for (int round = 0; round < 2000; ++round) {
        const double value = std::bit_cast<double>(random());
        if (!std::isfinite(value))
            continue;
        const std::string text = CommonFun::double2string(value);
        double back = 0.0;
        std::from_chars(text.data(), text.data() + text.size(), back);
        ASSERT_EQ(back, value) << text;
    }
}

TEST(NumberText, IntegersAreDecimal) {
    EXPECT_EQ(CommonFun::int2wstring(0), L"0");
    EXPECT_EQ(CommonFun::int2wstring(-2147483647 - 1), L"-2147483648");
}
