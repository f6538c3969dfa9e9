#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "tests/support/RasterFile.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include <ostream>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

using zelto::test::MakePixels;
using zelto::test::NorthUp;
using zelto::test::Pixels;
using zelto::test::ReadBand;
using zelto::test::RecordingLog;
using zelto::test::TemporaryFolder;

namespace {

// One format stores whole tiles of 128 × 128 pixels.
constexpr int WIDTH = 128;
constexpr int HEIGHT = 128;

/// A format that can be created, with a layout it takes and what it keeps.
struct CreatableFormat {
    RasterDataFormat format;
    const char* name;   ///< file name asked for
    const char* opened; ///< file that opens it
    int bands;
    PixelDataType type;
    bool keepsGeoTransform;
    bool keepsReference;
};

void PrintTo(const CreatableFormat& format, std::ostream* stream) {
    *stream << format.name;
}

class CreatableFormats : public testing::TestWithParam<CreatableFormat> {};

/// While it lives, memory that GDAL's ILWIS driver loses does not count as a leak of ours: it
/// forgets a buffer for every row that cannot be read yet because the file is new.
class WithoutLeaksOfIlwis {
  public:
    explicit WithoutLeaksOfIlwis(RasterDataFormat format) : m_active(format == RDF_ILWIS) {
        Switch(true);
    }
    ~WithoutLeaksOfIlwis() { Switch(false); }
    WithoutLeaksOfIlwis(const WithoutLeaksOfIlwis&) = delete;
    WithoutLeaksOfIlwis& operator=(const WithoutLeaksOfIlwis&) = delete;

  private:
    void Switch([[maybe_unused]] bool off) const {
#if defined(__SANITIZE_ADDRESS__)
        if (m_active)
            off ? __lsan_disable() : __lsan_enable();
#endif
    }
    [[maybe_unused]] bool m_active;
};

Pixels BandPixels(int band) {
    return MakePixels(WIDTH, HEIGHT,
                      [=](int column, int row) { return 10.0 * band + (column + row * 2) % 200; });
}

void WriteBands(CRasterSource& source) {
    for (int band = 0; band < source.GetBandCount(); ++band) {
        Pixels pixels = BandPixels(band);
        EXPECT_EQ(source.GetRasterBand(band)->WriteBlock(0, 0, WIDTH, HEIGHT, pixels.data(), WIDTH,
                                                         HEIGHT, PDT_Float64, 0, 0),
                  GIS_SUCCESS);
    }
}

} // namespace

TEST_P(CreatableFormats, IsCreatedWrittenAndReadBackByGdal) {
    const CreatableFormat& format = GetParam();
    const WithoutLeaksOfIlwis ignoring(format.format);
    const TemporaryFolder folder;
    std::array<double, 6> geoTransform = NorthUp(500000.0, 4000000.0, 30.0);
    CGISDataSource::RegisterGDAL();
    {
        CRasterSource source;
        ASSERT_EQ(source.CreateRaster(format.format, folder.WideFile(format.name).c_str(), WIDTH,
                                      HEIGHT, format.bands, format.type, geoTransform.data(),
                                      "EPSG:32650", nullptr),
                  GIS_SUCCESS);
        EXPECT_EQ(source.GetBandCount(), format.bands);
        WriteBands(source);
    }
    const std::string path = folder.File(format.opened);
    {
        const GDALDatasetUniquePtr dataset(
            GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_VERBOSE_ERROR));
        ASSERT_NE(dataset, nullptr);
        EXPECT_EQ(dataset->GetRasterXSize(), WIDTH);
        EXPECT_EQ(dataset->GetRasterYSize(), HEIGHT);
        ASSERT_EQ(dataset->GetRasterCount(), format.bands);
        EXPECT_EQ(static_cast<int>(dataset->GetRasterBand(1)->GetRasterDataType()), format.type);
        std::array<double, 6> read = {};
        if (format.keepsGeoTransform) {
            EXPECT_EQ(dataset->GetGeoTransform(read.data()), CE_None);
            for (std::size_t i = 0; i < read.size(); ++i)
                EXPECT_NEAR(read[i], geoTransform[i], 1e-3) << i;
        }
        const OGRSpatialReference* reference = dataset->GetSpatialRef();
        if (format.keepsReference) {
            EXPECT_TRUE(reference != nullptr && reference->IsProjected() != 0);
        }
    }
    for (int band = 0; band < format.bands; ++band)
        EXPECT_EQ(ReadBand(path, band + 1), BandPixels(band)) << "band " << band;
    CGISDataSource::DestroyGDAL();
}

INSTANTIATE_TEST_SUITE_P(
    All, CreatableFormats,
    testing::Values(CreatableFormat{RDF_ADRG, "ABCDEF01.GEN", "ABCDEF01.GEN", 3, PDT_Byte, false,
                                    false},
                    CreatableFormat{RDF_BMP, "a.bmp", "a.bmp", 1, PDT_Byte, false, false},
                    CreatableFormat{RDF_BT, "a.bt", "a.bt", 1, PDT_Float32, true, true},
                    CreatableFormat{RDF_EHDR, "a.bil", "a.bil", 2, PDT_Int16, true, true},
                    CreatableFormat{RDF_ELAS, "a.elas", "a.elas", 2, PDT_Byte, true, false},
                    CreatableFormat{RDF_ENVI, "a.hdr", "a", 3, PDT_Float32, true, true},
                    CreatableFormat{RDF_ERS, "a.ers", "a.ers", 2, PDT_Int16, true, false},
                    CreatableFormat{RDF_GSBG, "a.grd", "a.grd", 1, PDT_Float32, true, false},
                    CreatableFormat{RDF_GTX, "a.gtx", "a.gtx", 1, PDT_Float32, true, false},
                    CreatableFormat{RDF_ILWIS, "a.mpl", "a.mpl", 2, PDT_Int32, true, true},
                    CreatableFormat{RDF_HFA, "a.img", "a.img", 3, PDT_Float32, true, true},
                    CreatableFormat{RDF_MFF, "a.mff", "a.hdr", 2, PDT_UInt16, false, false},
                    CreatableFormat{RDF_NITF, "a.ntf", "a.ntf", 3, PDT_Byte, false, false},
                    CreatableFormat{RDF_NTv2, "a.gsb", "a.gsb", 4, PDT_Float32, true, false},
                    CreatableFormat{RDF_PAux, "a.raw", "a.raw", 2, PDT_Int16, true, false},
                    CreatableFormat{RDF_PCIDSK, "a.pix", "a.pix", 3, PDT_UInt16, true, true},
                    CreatableFormat{RDF_PNM, "a.ppm", "a.ppm", 3, PDT_Byte, false, false},
                    CreatableFormat{RDF_RMF, "a.rsw", "a.rsw", 3, PDT_Byte, true, true},
                    CreatableFormat{RDF_RMF2, "b.rsw", "b.rsw", 1, PDT_Byte, true, true},
                    CreatableFormat{RDF_SAGA, "a.sdat", "a.sdat", 1, PDT_Float32, true, true},
                    CreatableFormat{RDF_SGI, "a.rgb", "a.rgb", 3, PDT_Byte, false, false},
                    CreatableFormat{RDF_GTiff, "a.tif", "a.tif", 4, PDT_Float64, true, true}));

TEST(CreateFormats, AMemoryRasterLivesAsLongAsItIsOpen) {
    CRasterSource source;
    ASSERT_EQ(source.CreateRaster(RDF_MEM, L"in memory", WIDTH, HEIGHT, 2, PDT_Float32, nullptr,
                                  nullptr, nullptr),
              GIS_SUCCESS);
    WriteBands(source);
    double value = 0.0;
    EXPECT_EQ(source.GetRasterBand(1)->GetPixel(&value, 3, 2, PDT_Float64), GIS_SUCCESS);
    EXPECT_EQ(value, 17.0);
}

TEST(CreateFormats, AVirtualRasterIsCreatedWithoutPixels) {
    const TemporaryFolder folder;
    CRasterSource source;
    EXPECT_EQ(source.CreateRaster(RDF_VRT, folder.WideFile("a.vrt").c_str(), WIDTH, HEIGHT, 2,
                                  PDT_Byte, nullptr, nullptr, nullptr),
              GIS_SUCCESS);
    EXPECT_EQ(source.GetBandCount(), 2);
}

TEST(CreateFormats, PcRasterNeedsAnOptionThatTheGeneralPathDoesNotPass) {
    const TemporaryFolder folder;
    CRasterSource source;
    EXPECT_EQ(source.CreateRaster(RDF_PCRaster, folder.WideFile("a.map").c_str(), WIDTH, HEIGHT, 1,
                                  PDT_Float32, nullptr, nullptr, nullptr),
              GIS_FAILED);
}

TEST(CreateFormats, FormatsThatCannotBeCreatedSayWhichFile) {
    const TemporaryFolder folder;
    for (const RasterDataFormat format :
         {RDF_AAIGrid, RDF_BLX, RDF_DTED, RDF_FIT, RDF_GIF, RDF_GSAG, RDF_GSC, RDF_JPEG, RDF_PNG,
          RDF_SRTMHGT, RDF_TSX, RDF_USGSDEM, RDF_XPM, RDF_XYZ}) {
        SCOPED_TRACE(format);
        const RecordingLog log;
        CRasterSource source;
        EXPECT_EQ(source.CreateRaster(format, folder.WideFile("图 a.out").c_str(), WIDTH, HEIGHT, 1,
                                      PDT_Byte, nullptr, nullptr, nullptr),
                  GIS_FAILED);
        EXPECT_FALSE(source.IsOpened());
        ASSERT_EQ(log.m_records.size(), 1U);
        EXPECT_EQ(log.m_records[0].level, 2);
        EXPECT_EQ(log.m_records[0].file, L"RasterSource");
        EXPECT_EQ(log.m_records[0].function, L"CRasterSource::CreateRaster");
        EXPECT_EQ(log.m_records[0].message, L"Cannot create raster dataset: 图 a.out,"
                                            L"Creation is not supported for this format.");
    }
    EXPECT_TRUE(folder.Names().empty());
}
