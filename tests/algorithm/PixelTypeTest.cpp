#include "zelto/algorithm/RasterAlgorithm.h"

#include <gtest/gtest.h>

namespace {

void ExpectRange(PixelDataType type, double max, double min) {
    double actualMax = -1.0;
    double actualMin = -1.0;
    CRasterAlgorithm::GetMaxMinVal(type, actualMax, actualMin);
    EXPECT_EQ(actualMax, max) << "type " << type;
    EXPECT_EQ(actualMin, min) << "type " << type;
}

} // namespace

TEST(PixelType, RangesAreThoseHostsStretchBy) {
    ExpectRange(PDT_Byte, 255.0, 0.0);
    ExpectRange(PDT_UInt16, 65535.0, 0.0);
    ExpectRange(PDT_Int16, 32768.0, -32768.0);
    ExpectRange(PDT_UInt32, 4294967295.0, 0.0);
    ExpectRange(PDT_Int32, 2147483648.0, -2147483648.0);
    ExpectRange(PDT_Float32, 2147483648.0, -2147483648.0);
    ExpectRange(PDT_Float64, 9223372036854775808.0, -9223372036854775808.0);
}

TEST(PixelType, UnknownTypesHaveTheRangeOfAByte) {
    ExpectRange(PDT_Unknown, 255.0, 0.0);
    ExpectRange(static_cast<PixelDataType>(8), 255.0, 0.0);
    ExpectRange(static_cast<PixelDataType>(-1), 255.0, 0.0);
}

TEST(PixelType, TheMinimumIsWrittenLast) {
    double value = 7.0;
    CRasterAlgorithm::GetMaxMinVal(PDT_Int16, value, value);
    EXPECT_EQ(value, -32768.0);
}

TEST(PixelType, ByteCountsAreThoseHostsSizeBuffersBy) {
    const int expected[] = {0, 1, 2, 4, 4, 8, 4, 8, 0};
    for (int type = 0; type <= 8; ++type)
        EXPECT_EQ(CRasterAlgorithm::ComputeDataTypeByteNum(static_cast<PixelDataType>(type)),
                  expected[type])
            << "type " << type;
    EXPECT_EQ(CRasterAlgorithm::ComputeDataTypeByteNum(static_cast<PixelDataType>(-1)), 0);
}

TEST(PixelType, NamesAreGdals) {
    const wchar_t* const expected[] = {L"Unknown", L"Byte",    L"UInt16",  L"Int16",  L"UInt32",
                                       L"Int32",   L"Float32", L"Float64", L"Unknown"};
    for (int type = 0; type <= 8; ++type)
        EXPECT_EQ(CRasterAlgorithm::DataTypeToWstring(static_cast<PixelDataType>(type)),
                  expected[type])
            << "type " << type;
    EXPECT_EQ(CRasterAlgorithm::DataTypeToWstring(static_cast<PixelDataType>(-1)), L"Unknown");
}
