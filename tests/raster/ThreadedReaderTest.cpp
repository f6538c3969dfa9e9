#include "zelto/raster/internal/ThreadedReader.h"

#include "zelto/datasource/GISDataSource.h"
#include "zelto/raster/internal/OpenedFile.h"
#include "zelto/raster/internal/RowsAhead.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <memory>
#include <random>

using zelto::FileState;
using zelto::PixelBox;
using zelto::RowsAhead;
using zelto::ThreadedReader;
using zelto::test::Pixels;
using zelto::test::RasterSpec;

namespace {

/// A data set that is open as a source opens one.
class OpenedRaster {
  public:
    explicit OpenedRaster(const std::string& path) {
        const auto file = FileState::Of(path);
        m_dataset.reset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
        zelto::NoteOpened(*m_dataset, file);
    }
    ~OpenedRaster() { zelto::NoteClosed(m_dataset.get()); }
    OpenedRaster(const OpenedRaster&) = delete;
    OpenedRaster& operator=(const OpenedRaster&) = delete;

    GDALDataset& operator*() const { return *m_dataset; }
    std::vector<GDALRasterBand*> Bands() const {
        std::vector<GDALRasterBand*> bands;
        for (int number = 1; number <= m_dataset->GetRasterCount(); ++number)
            bands.push_back(m_dataset->GetRasterBand(number));
        return bands;
    }

  private:
    GDALDatasetUniquePtr m_dataset;
};

/// A band's samples among those that a reader has read, as doubles.
Pixels SamplesOf(const ThreadedReader& reader, std::size_t band, const PixelBox& box,
                 const std::vector<std::byte>& bytes) {
    Pixels pixels(static_cast<std::size_t>(box.width) * static_cast<std::size_t>(box.height));
    GDALCopyWords64(bytes.data() + band * reader.BytesOfBand(box), reader.Type(),
                    GDALGetDataTypeSizeBytes(reader.Type()), pixels.data(), GDT_Float64,
                    sizeof(double), static_cast<GPtrDiff_t>(pixels.size()));
    return pixels;
}

Pixels Plainly(GDALRasterBand& band, const PixelBox& box) {
    Pixels pixels(static_cast<std::size_t>(box.width) * static_cast<std::size_t>(box.height));
    EXPECT_EQ(band.RasterIO(GF_Read, box.left, box.top, box.width, box.height, pixels.data(),
                            box.width, box.height, GDT_Float64, 0, 0, nullptr),
              CE_None);
    return pixels;
}

struct RandomRaster {
    RasterSpec spec;
    std::vector<Pixels> bands;
};

const std::vector<std::string>& Compressions() {
    static const std::vector<std::string> all = {"DEFLATE", "LZW",  "PACKBITS", "ZSTD",
                                                 "LZMA",    "LERC", "JPEG",     "WEBP"};
    return all;
}

RandomRaster MakeRaster(std::mt19937& random) {
    constexpr GDALDataType TYPES[] = {GDT_Byte,  GDT_UInt16,  GDT_Int16,   GDT_UInt32,
                                      GDT_Int32, GDT_Float32, GDT_Float64, GDT_CFloat32};
    RandomRaster raster;
    const std::string compression = Compressions()[random() % Compressions().size()];
    const bool isPicture = compression == "JPEG" || compression == "WEBP";
    raster.spec.width = static_cast<int>(1 + random() % 700);
    raster.spec.height = static_cast<int>(1 + random() % 500);
    raster.spec.type = isPicture ? GDT_Byte : TYPES[random() % std::size(TYPES)];
    if (compression == "LERC" && raster.spec.type == GDT_CFloat32)
        raster.spec.type = GDT_Float32;
    raster.spec.options = {"COMPRESS=" + compression};
    const bool byPixel = compression == "WEBP" || random() % 2 == 0;
    raster.spec.options.push_back(byPixel ? "INTERLEAVE=PIXEL" : "INTERLEAVE=BAND");
    if (random() % 3 != 0)
        raster.spec.options.insert(raster.spec.options.end(),
                                   {"TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=48"});
    else
        raster.spec.options.push_back("BLOCKYSIZE=16");
    const bool isNumeric =
        compression == "DEFLATE" || compression == "LZW" || compression == "ZSTD";
    if (isNumeric && raster.spec.type == GDT_UInt16 && random() % 2 == 0)
        raster.spec.options.emplace_back("NBITS=12");
    else if (isNumeric && raster.spec.type != GDT_CFloat32 && random() % 2 == 0)
        raster.spec.options.emplace_back("PREDICTOR=2");
    if (isNumeric && random() % 2 == 0)
        raster.spec.options.emplace_back("ENDIANNESS=BIG");
    if (compression == "JPEG" && byPixel && random() % 2 == 0)
        raster.spec.options.emplace_back("PHOTOMETRIC=YCBCR");
    // Blocks of one value may be left out of the file.
    const bool isSparse = random() % 3 == 0;
    if (isSparse)
        raster.spec.options.emplace_back("SPARSE_OK=TRUE");
    if (random() % 3 == 0)
        raster.spec.noData = 7.0;
    raster.bands.resize(isPicture ? 3 : 1 + random() % 4);
    for (Pixels& pixels : raster.bands)
        pixels = zelto::test::MakePixels(raster.spec.width, raster.spec.height, [&](int x, int y) {
            const bool isEmpty = isSparse && (x / 100 + y / 100) % 2 == 0;
            return isEmpty ? raster.spec.noData.value_or(0.0)
                           : static_cast<double>(random() % 250) + (x % 3) * 0.25;
        });
    return raster;
}

PixelBox RandomBox(const RasterSpec& spec, std::mt19937& random) {
    PixelBox box{};
    box.left = static_cast<int>(random() % static_cast<unsigned>(spec.width));
    box.top = static_cast<int>(random() % static_cast<unsigned>(spec.height));
    box.width = 1 + static_cast<int>(random() % static_cast<unsigned>(spec.width - box.left));
    box.height = 1 + static_cast<int>(random() % static_cast<unsigned>(spec.height - box.top));
    return box;
}

bool IsSame(const Pixels& a, const Pixels& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof a[0]) == 0;
}

class ThreadedReaderTest : public testing::Test {
  protected:
    ThreadedReaderTest() { CGISDataSource::RegisterGDAL(); }
    ~ThreadedReaderTest() override { CGISDataSource::DestroyGDAL(); }

    std::string Write(const std::string& name, const RasterSpec& spec,
                      const std::vector<Pixels>& bands) const {
        return zelto::test::WriteRaster(m_folder.File(name), spec, bands);
    }

    zelto::test::TemporaryFolder m_folder;
};

/// Makes the compressed bytes of a one-band file's last tile useless.
void DamageLastBlock(const std::string& path) {
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    const std::string offset =
        dataset->GetRasterBand(1)->GetMetadataItem("BLOCK_OFFSET_4_3", "TIFF");
    std::string bytes = zelto::test::ReadFile(path);
    bytes.replace(std::stoul(offset), 64, 64, '\xFF');
    zelto::test::WriteFile(path, bytes);
}

const RasterSpec TILES = {
    .width = 300,
    .height = 200,
    .options = {"COMPRESS=DEFLATE", "TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=64"}};
const Pixels TILED_RAMP =
    zelto::test::MakePixels(300, 200, [](int x, int y) { return (x * 7 + y * 13) % 251; });

} // namespace

TEST_F(ThreadedReaderTest, ReadsWhatTheBandsRead) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 80; ++round) {
        const RandomRaster raster = MakeRaster(random);
        const OpenedRaster opened(Write(std::to_string(round) + ".tif", raster.spec, raster.bands));
        const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", round % 2 == 0 ? "2" : "5", false);
        std::vector<GDALRasterBand*> bands = opened.Bands();
        std::shuffle(bands.begin(), bands.end(), random);
        bands.resize(1 + random() % bands.size());
        const auto reader = ThreadedReader::Of(bands);
        ASSERT_NE(reader, nullptr);
        for (int n = 0; n < 4; ++n) {
            const PixelBox box = RandomBox(raster.spec, random);
            std::vector<std::byte> bytes(reader->BytesOf(box));
            ASSERT_TRUE(reader->Read(box, bytes.data()));
            for (std::size_t b = 0; b < bands.size(); ++b)
                ASSERT_TRUE(IsSame(SamplesOf(*reader, b, box, bytes), Plainly(*bands[b], box)))
                    << raster.spec.options.front() << ' ' << GDALGetDataTypeName(raster.spec.type)
                    << ' ' << box.left << ' ' << box.top << ' ' << box.width << ' ' << box.height;
        }
    }
}

TEST_F(ThreadedReaderTest, TheHostsNumberOfThreadsCounts) {
    const OpenedRaster opened(Write("a.tif", TILES, {TILED_RAMP}));
    {
        const CPLConfigOptionSetter one("GDAL_NUM_THREADS", "1", false);
        EXPECT_EQ(ThreadedReader::Of(opened.Bands()), nullptr);
    }
    const CPLConfigOptionSetter two("GDAL_NUM_THREADS", "2", false);
    EXPECT_NE(ThreadedReader::Of(opened.Bands()), nullptr);
}

TEST_F(ThreadedReaderTest, LeavesAloneWhatASecondHandleMightNotReadTheSame) {
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "2", false);
    const std::string path = Write("a.tif", TILES, {TILED_RAMP, TILED_RAMP});
    {
        const GDALDatasetUniquePtr notNoted(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
        EXPECT_EQ(ThreadedReader::Of({notNoted->GetRasterBand(1)}), nullptr);
    }
    RasterSpec plain = TILES;
    plain.options = {};
    const OpenedRaster uncompressed(Write("plain.tif", plain, {TILED_RAMP}));
    EXPECT_EQ(ThreadedReader::Of(uncompressed.Bands()), nullptr) << "nothing to decode";
    const OpenedRaster opened(path);
    const OpenedRaster other(Write("b.tif", TILES, {TILED_RAMP}));
    EXPECT_EQ(ThreadedReader::Of({opened.Bands()[0], other.Bands()[0]}), nullptr);
    EXPECT_EQ(ThreadedReader::Of({}), nullptr);
    EXPECT_EQ(ThreadedReader::Of({nullptr}), nullptr);
    EXPECT_NE(ThreadedReader::Of(opened.Bands()), nullptr);
}

TEST_F(ThreadedReaderTest, AFileThatHasTakenTheNameIsNotReadInItsPlace) {
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "2", false);
    const std::string path = Write("a.tif", TILES, {TILED_RAMP});
    const OpenedRaster opened(path);
    std::filesystem::rename(Write("b.tif", TILES, {Pixels(TILED_RAMP.size(), 1.0)}), path);
    EXPECT_EQ(ThreadedReader::Of(opened.Bands()), nullptr);
}

TEST_F(ThreadedReaderTest, AFileThatWasWrittenToSinceIsLeftAlone) {
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "2", false);
    const std::string path = Write("a.tif", TILES, {TILED_RAMP});
    const OpenedRaster opened(path);
    ASSERT_NE(ThreadedReader::Of(opened.Bands()), nullptr);
    const auto before = std::filesystem::last_write_time(path);
    std::filesystem::last_write_time(path, before + std::chrono::milliseconds(1));
    EXPECT_EQ(ThreadedReader::Of(opened.Bands()), nullptr);
    std::filesystem::last_write_time(path, before);
    EXPECT_NE(ThreadedReader::Of(opened.Bands()), nullptr);
    std::filesystem::resize_file(path, std::filesystem::file_size(path) + 1);
    std::filesystem::last_write_time(path, before);
    EXPECT_EQ(ThreadedReader::Of(opened.Bands()), nullptr);
}

TEST_F(ThreadedReaderTest, OptionsThatHaveChangedSinceTheOpeningChangeNoSample) {
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "2", false);
    RasterSpec spec = TILES;
    spec.options[0] = "COMPRESS=JPEG";
    spec.options.insert(spec.options.end(), {"INTERLEAVE=PIXEL", "PHOTOMETRIC=YCBCR"});
    const std::string path =
        Write("a.tif", spec, {TILED_RAMP, Pixels(TILED_RAMP.size(), 90.0), TILED_RAMP});
    std::unique_ptr<OpenedRaster> opened;
    {
        const CPLConfigOptionSetter asStored("CONVERT_YCBCR_TO_RGB", "NO", false);
        opened = std::make_unique<OpenedRaster>(path);
    }
    EXPECT_EQ(ThreadedReader::Of(opened->Bands()), nullptr);
}

TEST_F(ThreadedReaderTest, ErrorsThatAreIgnoredSinceTheOpeningAreStillFailures) {
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "2", false);
    const std::string path = Write("a.tif", TILES, {TILED_RAMP});
    DamageLastBlock(path);
    const OpenedRaster opened(path);
    const CPLConfigOptionSetter ignored("GTIFF_IGNORE_READ_ERRORS", "YES", false);
    const auto reader = ThreadedReader::Of(opened.Bands());
    ASSERT_NE(reader, nullptr);
    std::vector<std::byte> samples(reader->BytesOf({0, 0, 300, 200}));
    EXPECT_FALSE(reader->Read({0, 0, 300, 200}, samples.data()));
}

TEST_F(ThreadedReaderTest, AnUnreadableBlockIsAFailureWithoutAMessage) {
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "2", false);
    const std::string path = Write("a.tif", TILES, {TILED_RAMP});
    DamageLastBlock(path);
    const OpenedRaster opened(path);
    const auto reader = ThreadedReader::Of(opened.Bands());
    ASSERT_NE(reader, nullptr);
    std::vector<std::byte> samples(reader->BytesOf({0, 0, 300, 200}));
    CPLErrorReset();
    EXPECT_TRUE(reader->Read({0, 0, 300, 192}, samples.data()));
    EXPECT_FALSE(reader->Read({0, 0, 300, 200}, samples.data()));
    EXPECT_EQ(CPLGetLastErrorType(), CE_None);
}

TEST_F(ThreadedReaderTest, RowsAheadCopyEveryRowOfAWindow) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "5", false);
    for (const GDALDataType type : {GDT_Byte, GDT_UInt16, GDT_Int16, GDT_Int32, GDT_Float32}) {
        RasterSpec spec = TILES;
        spec.width = 2100;
        spec.height = 1500;
        spec.type = type;
        spec.options.emplace_back(random() % 2 == 0 ? "INTERLEAVE=PIXEL" : "INTERLEAVE=BAND");
        const auto noise = [&] {
            return zelto::test::MakePixels(spec.width, spec.height, [&](int, int) {
                return static_cast<double>(random() % 128);
            });
        };
        const OpenedRaster opened(Write("rows.tif", spec, {noise(), noise()}));
        const PixelBox window = {13, 27, 2080, 1400};
        EXPECT_EQ(RowsAhead::Of(opened.Bands(), {0, 0, 100, 100}, 3), nullptr) << "too few pixels";
        EXPECT_EQ(RowsAhead::Of(opened.Bands(), {21, 27, 2080, 1400}, 3), nullptr) << "beyond";
        const int rows = 1 + static_cast<int>(random() % 300);
        const auto ahead = RowsAhead::Of(opened.Bands(), window, rows);
        ASSERT_NE(ahead, nullptr);
        Pixels samples(static_cast<std::size_t>(window.width) * static_cast<std::size_t>(rows));
        for (int row = 0; row < window.height; row += rows) {
            const int count = std::min(rows, window.height - row);
            ASSERT_TRUE(ahead->Prepare(row, count));
            for (std::size_t b = 0; b < 2; ++b) {
                ahead->Copy(b, row, count, samples.data());
                const Pixels expected = Plainly(
                    *opened.Bands()[b], {window.left, window.top + row, window.width, count});
                ASSERT_TRUE(std::equal(expected.begin(), expected.end(), samples.begin()));
            }
        }
    }
}
