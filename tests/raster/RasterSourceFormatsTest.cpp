#include "tests/datasource/PlainDataSource.h"
#include "tests/raster/ExposedRasterSource.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Text.h"

#include <gtest/gtest.h>

#include <cstring>

using zelto::test::ExposedRasterSource;
using zelto::test::SlotOf;
using zelto::test::TemporaryFolder;
using zelto::test::WriteFile;

namespace {

RasterDataFormat FormatOf(const std::wstring& path) {
    return CRasterSource::GetDataFormat(path.c_str());
}

} // namespace

TEST(RasterFormat, IsNamedByTheExtension) {
    const struct {
        const wchar_t* extension;
        int format;
    } rows[] = {
        {L"asc", 1},  {L"thf", 2},  {L"bmp", 4},  {L"bt", 5},   {L"ecw", 7},
        {L"gif", 13}, {L"img", 20}, {L"jpg", 22}, {L"jp2", 23}, {L"j2k", 23},
        {L"mff", 25}, {L"ntf", 26}, {L"aux", 28}, {L"pix", 29}, {L"png", 31},
        {L"ppm", 32}, {L"tif", 38}, {L"dem", 42}, {L"xpm", 44},
    };
    for (const auto& row : rows)
        EXPECT_EQ(FormatOf(L"/影像/a.b." + std::wstring(row.extension)), row.format)
            << zelto::test::Narrow(row.extension);
}

TEST(RasterFormat, OtherExtensionsAreUnknown) {
    for (const wchar_t* path :
         {L"a.TIF", L"a.tiff", L"a.ti", L"a.jpeg", L"a.vrt", L"a.xyz", L"a", L"", L"a.", L"tif"})
        EXPECT_EQ(FormatOf(path), RDF_Unknown) << zelto::test::Narrow(path);
    EXPECT_EQ(CRasterSource::GetDataFormat(nullptr), RDF_Unknown);
}

TEST(RasterFormat, AHeaderIsEnvisWhenItsDataFileExists) {
    const TemporaryFolder folder;
    WriteFile(folder.Path() / "a.hdr", "ENVI");
    EXPECT_EQ(FormatOf(folder.WideFile("a.hdr")), RDF_Unknown);
    WriteFile(folder.Path() / "a.b00", "band");
    EXPECT_EQ(FormatOf(folder.WideFile("a.hdr")), RDF_MFF);
    WriteFile(folder.Path() / "a", "data");
    EXPECT_EQ(FormatOf(folder.WideFile("a.hdr")), RDF_ENVI);
}

TEST(RasterFormat, HasTheExtensionHostsShow) {
    const struct {
        int format;
        const wchar_t* name;
    } rows[] = {
        {1, L"asc"},  {2, L"thf"},       {4, L"bmp"},  {5, L"bt"},   {7, L"ecw"},  {10, L"hdr"},
        {13, L"gif"}, {20, L"img"},      {22, L"jpg"}, {25, L"mff"}, {26, L"ntf"}, {28, L"aux"},
        {29, L"pix"}, {31, L"png"},      {32, L"ppm"}, {38, L"tif"}, {39, L"tif"}, {40, L"tif"},
        {42, L"dem"}, {23, L"Jpeg2000"}, {44, L"xpm"},
    };
    for (int format = -1; format <= 47; ++format) {
        std::wstring expected;
        for (const auto& row : rows)
            if (row.format == format)
                expected = row.name;
        EXPECT_EQ(CRasterSource::GetDataFormatName(static_cast<RasterDataFormat>(format)), expected)
            << "format " << format;
    }
}

TEST(RasterFormat, ResolvesToGdalsDriver) {
    CGISDataSource::RegisterGDAL();
    const char* const drivers[46] = {
        "",      "AAIGrid", "ADRG",    "BLX",   "BMP",  "BT",      "DTED",     "",
        "EHdr",  "ELAS",    "ENVI",    "ERS",   "FIT",  "GIF",     "GSAG",     "GSBG",
        "GSC",   "GTX",     "",        "ILWIS", "HFA",  "",        "JPEG",     "",
        "MEM",   "MFF",     "NITF",    "NTv2",  "PAux", "PCIDSK",  "PCRaster", "PNG",
        "PNM",   "RMF",     "RMF",     "SAGA",  "SGI",  "SRTMHGT", "GTiff",    "",
        "GTiff", "TSX",     "USGSDEM", "VRT",   "XPM",  "XYZ"};
    for (int format = 0; format < 46; ++format) {
        if (format == RDF_IDA || format == RDF_INGR)
            continue; // whether these two exist depends on how GDAL was built
        GDALDriver* driver =
            CRasterSource::GetDriverByRasterFormat(static_cast<RasterDataFormat>(format));
        if (std::strlen(drivers[format]) == 0)
            EXPECT_EQ(driver, nullptr) << "format " << format;
        else if (driver != nullptr || GetGDALDriverManager()->GetDriverByName(drivers[format]))
            EXPECT_STREQ(driver == nullptr ? "" : driver->GetDescription(), drivers[format]);
        else
            ADD_FAILURE() << "no driver " << drivers[format];
    }
    for (int format : {-1, 46, 1000})
        EXPECT_EQ(CRasterSource::GetDriverByRasterFormat(static_cast<RasterDataFormat>(format)),
                  nullptr);
    CGISDataSource::DestroyGDAL();
}

TEST(RasterSourceLayout, SlotWidthsOfPixelValues) {
    const int expected[] = {0, 1, 2, 2, 4, 4, 4, 8, 4, 4};
    for (int type = 0; type < 10; ++type)
        EXPECT_EQ(ExposedRasterSource::GetByteOffset(static_cast<PixelDataType>(type)),
                  expected[type])
            << "type " << type;
    EXPECT_EQ(ExposedRasterSource::GetByteOffset(static_cast<PixelDataType>(-1)), 4);
}

TEST(RasterSourceLayout, VirtualOperationsStandInTheirSlots) {
    using Planes =
        bool (CRasterSource::*)(CBoundingBox*, int, int, int, unsigned char**, CRasterAOI*, bool);
    using Image = bool (CRasterSource::*)(CBoundingBox*, int, int, unsigned char*, bool);
    using AdjustPlanes = void (CRasterSource::*)(double*, double*, double*, int, int);
    using AdjustImage = void (CRasterSource::*)(int, int, unsigned char*);
    EXPECT_EQ(SlotOf(&CRasterSource::IsOpened), 8);
    EXPECT_EQ(SlotOf(&CRasterSource::SetStretchType), 9);
    EXPECT_EQ(SlotOf(static_cast<Planes>(&CRasterSource::GetShowData)), 10);
    EXPECT_EQ(SlotOf(static_cast<Image>(&CRasterSource::GetShowData)), 11);
    EXPECT_EQ(SlotOf(static_cast<AdjustPlanes>(&CRasterSource::ApplyShowDataHISC)), 12);
    EXPECT_EQ(SlotOf(static_cast<AdjustImage>(&CRasterSource::ApplyShowDataHISC)), 13);
    EXPECT_EQ(SlotOf(&CRasterSource::GetShowDataGray), 14);
    EXPECT_EQ(SlotOf(&CRasterSource::GetPixel), 15);
    EXPECT_EQ(SlotOf(&CRasterSource::IsComposedRaster), 16);
}

TEST(RasterFormat, OfNoPathIsUnknown) {
    EXPECT_EQ(CRasterSource::GetDataFormat(nullptr), RDF_Unknown);
}
