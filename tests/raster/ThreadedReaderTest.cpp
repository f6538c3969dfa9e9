#include "zelto/raster/internal/ThreadedReader.h"

#include "zelto/datasource/GISDataSource.h"
#include "zelto/raster/internal/OpenedFile.h"
#include "zelto/raster/internal/RowsAhead.h"

#include "tests/raster/BareDataset.h"
#include "tests/raster/DamagedBlock.h"
#include "tests/raster/HugeBlock.h"
#include "tests/raster/OpenedRaster.h"
#include "tests/support/LimitedMemory.h"
#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <omp.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <future>
#include <memory>
#include <pthread.h>
#include <random>
#include <system_error>

using zelto::FileState;
using zelto::PixelBox;
using zelto::RowsAhead;
using zelto::ThreadedReader;
using zelto::test::OpenedRaster;
using zelto::test::Pixels;
using zelto::test::RasterSpec;

namespace {

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

const RasterSpec TILES = {
    .width = 300,
    .height = 200,
    .options = {"COMPRESS=DEFLATE", "TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=64"}};
const Pixels TILED_RAMP =
    zelto::test::MakePixels(300, 200, [](int x, int y) { return (x * 7 + y * 13) % 251; });

class ThreadedReaderTest : public testing::Test {
  protected:
    ThreadedReaderTest() { CGISDataSource::RegisterGDAL(); }
    ~ThreadedReaderTest() override { CGISDataSource::DestroyGDAL(); }

    std::string Write(const std::string& name, const RasterSpec& spec,
                      const std::vector<Pixels>& bands) const {
        return zelto::test::WriteRaster(m_folder.File(name), spec, bands);
    }
    /// An image of 2,200 columns, enough to be read ahead of who asks for its rows: column and
    /// three times the row, modulo 251.
    std::string WriteRows(int height) const {
        RasterSpec spec = TILES;
        spec.width = 2200;
        spec.height = height;
        return Write("rows.tif", spec, {zelto::test::MakePixels(2200, height, [](int x, int y) {
                         return (x + 3 * y) % 251;
                     })});
    }

    zelto::test::TemporaryFolder m_folder;
};

/// While it lives no thread starts: its stack would take more addresses than a process has.
class WithoutNewThreads {
  public:
    WithoutNewThreads() {
        pthread_getattr_default_np(&m_former);
        pthread_attr_t vast;
        pthread_attr_init(&vast);
        pthread_attr_setstacksize(&vast, std::size_t{1} << 47);
        pthread_setattr_default_np(&vast);
        pthread_attr_destroy(&vast);
    }
    ~WithoutNewThreads() {
        pthread_setattr_default_np(&m_former);
        pthread_attr_destroy(&m_former);
    }
    WithoutNewThreads(const WithoutNewThreads&) = delete;
    WithoutNewThreads& operator=(const WithoutNewThreads&) = delete;

  private:
    pthread_attr_t m_former;
};

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
    zelto::test::DamageLastBlock(path);
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
    zelto::test::DamageLastBlock(path);
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

TEST_F(ThreadedReaderTest, WithoutAWishOfTheHostsOpenMpDecides) {
    const OpenedRaster opened(Write("a.tif", TILES, {TILED_RAMP}));
    const int former = omp_get_max_threads();
    omp_set_num_threads(1);
    EXPECT_EQ(ThreadedReader::Of(opened.Bands()), nullptr);
    omp_set_num_threads(3);
    EXPECT_NE(ThreadedReader::Of(opened.Bands()), nullptr);
    int found = 0;
#pragma omp parallel num_threads(2) reduction(+ : found)
    if (omp_get_thread_num() == 0 && ThreadedReader::Of(opened.Bands()) != nullptr)
        ++found;
    EXPECT_EQ(found, 0) << "the threads of a parallel part have work already";
    omp_set_num_threads(former);
}

TEST_F(ThreadedReaderTest, AllProcessorsAreAsManyThreadsAsThereAre) {
    const OpenedRaster opened(Write("a.tif", TILES, {TILED_RAMP}));
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "ALL_CPUS", false);
    EXPECT_EQ(ThreadedReader::Of(opened.Bands()) != nullptr, CPLGetNumCPUs() > 1);
}

TEST_F(ThreadedReaderTest, OnlyGdalsOwnWayThroughItsBlocksIsTakenOnThreads) {
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "2", false);
    const OpenedRaster opened(Write("a.tif", TILES, {TILED_RAMP}));
    for (const char* option : {"GTIFF_DIRECT_IO", "GTIFF_VIRTUAL_MEM_IO"}) {
        const CPLConfigOptionSetter another(option, "YES", false);
        EXPECT_EQ(ThreadedReader::Of(opened.Bands()), nullptr) << option;
    }
    EXPECT_NE(ThreadedReader::Of(opened.Bands()), nullptr);
    RasterSpec imagine = TILES;
    imagine.driver = "HFA";
    imagine.options = {"COMPRESSED=YES"};
    const OpenedRaster other(Write("a.img", imagine, {TILED_RAMP}));
    EXPECT_EQ(ThreadedReader::Of(other.Bands()), nullptr);
    zelto::test::BareDataset withoutDriver(300, 200, 1);
    EXPECT_EQ(ThreadedReader::Of({withoutDriver.GetRasterBand(1)}), nullptr);
    // What is open for a change may not have reached the file.
    const std::string path = Write("b.tif", TILES, {TILED_RAMP});
    const GDALDatasetUniquePtr changing(
        GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
    zelto::NoteOpened(*changing, FileState::Of(path));
    EXPECT_EQ(ThreadedReader::Of({changing->GetRasterBand(1)}), nullptr);
    zelto::NoteClosed(changing.get());
}

TEST_F(ThreadedReaderTest, BandsThatAreNoneOfTheFilesAreLeftAlone) {
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "2", false);
    RasterSpec spec = TILES;
    spec.overviews = {2};
    const OpenedRaster opened(Write("a.tif", spec, {TILED_RAMP}));
    GDALRasterBand* const band = opened.Bands()[0];
    EXPECT_NE(ThreadedReader::Of({band}), nullptr);
    EXPECT_EQ(ThreadedReader::Of({band, nullptr}), nullptr);
    EXPECT_EQ(ThreadedReader::Of({band, band->GetOverview(0)}), nullptr);
    EXPECT_EQ(ThreadedReader::Of({band, band->GetMaskBand()}), nullptr);
    for (const int number : {0, 1}) {
        zelto::test::StrayBand stray(*opened, number);
        EXPECT_EQ(ThreadedReader::Of({band, &stray}), nullptr) << number;
    }
}

TEST_F(ThreadedReaderTest, BlocksBeyondAnyHealthyFilesAreLeftAlone) {
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "2", false);
    EXPECT_EQ(
        ThreadedReader::Of(OpenedRaster(zelto::test::WriteHugeBlock(m_folder, 40'000)).Bands()),
        nullptr);
    // Blocks that one thread may hold, but not two.
    EXPECT_EQ(
        ThreadedReader::Of(OpenedRaster(zelto::test::WriteHugeBlock(m_folder, 16'000)).Bands()),
        nullptr);
    EXPECT_NE(
        ThreadedReader::Of(OpenedRaster(zelto::test::WriteHugeBlock(m_folder, 8'000)).Bands()),
        nullptr);
}

TEST_F(ThreadedReaderTest, AWindowMustLieInsideAndBeLarge) {
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "2", false);
    RasterSpec spec = TILES;
    spec.width = 2200;
    spec.height = 2100;
    const OpenedRaster opened(Write("a.tif", spec, {Pixels(std::size_t{2200} * 2100, 1.0)}));
    const auto isWorth = [&](const PixelBox& window) {
        return ThreadedReader::IsWorth(opened.Bands(), window);
    };
    EXPECT_TRUE(isWorth({0, 0, 2200, 2100}));
    EXPECT_TRUE(isWorth({150, 50, 2050, 2050}));
    EXPECT_TRUE(isWorth({0, 0, 2048, 2048})); // 4 MB
    EXPECT_FALSE(isWorth({0, 0, 2048, 2047}));
    EXPECT_FALSE(isWorth({-1, 0, 2200, 2100}));
    EXPECT_FALSE(isWorth({0, -1, 2200, 2100}));
    EXPECT_FALSE(isWorth({151, 50, 2050, 2050}));
    EXPECT_FALSE(isWorth({150, 51, 2050, 2050}));
    EXPECT_FALSE(isWorth({0, 0, 0, 2100}));
    EXPECT_FALSE(isWorth({0, 0, 2200, 0}));
    EXPECT_FALSE(ThreadedReader::IsWorth({}, {0, 0, 2200, 2100}));
}

TEST_F(ThreadedReaderTest, AFileThatAnotherHandleShowsAsAnotherImageIsLeftAlone) {
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "2", false);
    const std::string path = Write("a.tif", TILES, {TILED_RAMP, TILED_RAMP});
    const auto isReadOf = [&](const RasterSpec& spec, std::size_t bandCount) {
        // As if it had been written over the file, of the same length and at the same time.
        const auto pixels = static_cast<std::size_t>(spec.width) * spec.height;
        const std::string other =
            Write("b.tif", spec, std::vector<Pixels>(bandCount, Pixels(pixels, 1.0)));
        const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
        dataset->SetDescription(other.c_str());
        zelto::NoteOpened(*dataset, FileState::Of(other));
        const bool isRead = ThreadedReader::Of({dataset->GetRasterBand(1)}) != nullptr;
        zelto::NoteClosed(dataset.get());
        return isRead;
    };
    EXPECT_TRUE(isReadOf(TILES, 2));
    EXPECT_FALSE(isReadOf(TILES, 3));
    RasterSpec spec = TILES;
    spec.width = 301;
    EXPECT_FALSE(isReadOf(spec, 2));
    spec = TILES;
    spec.height = 201;
    EXPECT_FALSE(isReadOf(spec, 2));
    spec = TILES;
    spec.type = GDT_Int16;
    EXPECT_FALSE(isReadOf(spec, 2));
    spec = TILES;
    spec.options[0] = "COMPRESS=LZW";
    EXPECT_FALSE(isReadOf(spec, 2));
    spec = TILES;
    spec.options.emplace_back("NBITS=7");
    EXPECT_FALSE(isReadOf(spec, 2));
    spec = TILES;
    spec.options.emplace_back("PHOTOMETRIC=MINISWHITE");
    EXPECT_FALSE(isReadOf(spec, 2));
    spec = TILES;
    spec.options.emplace_back("ALPHA=YES");
    EXPECT_FALSE(isReadOf(spec, 2));
}

TEST_F(ThreadedReaderTest, WhatCannotBeOpenedAgainIsLeftAlone) {
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "2", false);
    const OpenedRaster opened(Write("a.tif", TILES, {TILED_RAMP}));
    zelto::test::WriteFile(m_folder.Path() / "b.tif", "no image");
    (*opened).SetDescription(m_folder.File("b.tif").c_str());
    zelto::NoteOpened(*opened, FileState::Of(m_folder.File("b.tif")));
    EXPECT_EQ(ThreadedReader::Of(opened.Bands()), nullptr);
}

TEST_F(ThreadedReaderTest, WithoutMemoryForThreadsTheCallersReadsAlone) {
    if (!zelto::test::CanLimitMemory())
        GTEST_SKIP() << "memory cannot be limited here";
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "3", false);
    const OpenedRaster opened(Write("a.tif", TILES, {TILED_RAMP}));
    const auto reader = ThreadedReader::Of(opened.Bands());
    ASSERT_NE(reader, nullptr);
    const PixelBox box = {0, 0, 300, 200};
    const Pixels expected = Plainly(*opened.Bands()[0], box);
    std::vector<std::byte> samples(reader->BytesOf(box));
    // The stack of a thread is larger than this.
    EXPECT_EQ(zelto::test::RunWithMemory(std::size_t{4} << 20,
                                         [&] {
                                             return reader->Read(box, samples.data()) &&
                                                    IsSame(SamplesOf(*reader, 0, box, samples),
                                                           expected);
                                         }),
              zelto::test::Ending::ANSWERED_TRUE);
}

TEST_F(ThreadedReaderTest, RowsAheadAreReadWithoutMemoryForTheirThreadToo) {
    if (!zelto::test::CanLimitMemory())
        GTEST_SKIP() << "memory cannot be limited here";
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "2", false);
    const OpenedRaster opened(WriteRows(2100));
    EXPECT_EQ(zelto::test::RunWithMemory(
                  std::size_t{7} << 20,
                  [&] {
                      const auto ahead = RowsAhead::Of(opened.Bands(), {0, 0, 2200, 2100}, 1);
                      Pixels row(2200);
                      if (!ahead || !ahead->Prepare(0, 1))
                          return false;
                      ahead->Copy(0, 0, 1, row.data());
                      return row[7] == 7.0 && row[252] == 1.0;
                  }),
              zelto::test::Ending::ANSWERED_TRUE);
}

TEST_F(ThreadedReaderTest, WhereNoThreadStartsTheCallersReadsAlone) {
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "3", false);
    const OpenedRaster opened(WriteRows(2100));
    const WithoutNewThreads alone;
    ASSERT_THROW(std::async(std::launch::async, [] {}), std::system_error);
    const auto reader = ThreadedReader::Of(opened.Bands());
    ASSERT_NE(reader, nullptr);
    const PixelBox box = {100, 200, 300, 250};
    std::vector<std::byte> samples(reader->BytesOf(box));
    EXPECT_TRUE(reader->Read(box, samples.data()));
    EXPECT_TRUE(IsSame(SamplesOf(*reader, 0, box, samples), Plainly(*opened.Bands()[0], box)));
    const auto ahead = RowsAhead::Of(opened.Bands(), {0, 0, 2200, 2100}, 1);
    ASSERT_NE(ahead, nullptr);
    ASSERT_TRUE(ahead->Prepare(0, 1));
    Pixels row(2200);
    ahead->Copy(0, 0, 1, row.data());
    EXPECT_EQ(row[7], 7.0);
    EXPECT_EQ(row[252], 1.0);
}

TEST_F(ThreadedReaderTest, RowsAheadThatCannotBeReadAreAFailureForGood) {
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "2", false);
    const std::string path = WriteRows(4000);
    zelto::test::DamageLastBlock(path);
    const OpenedRaster opened(path);
    const auto ahead = RowsAhead::Of(opened.Bands(), {0, 0, 2200, 4000}, 100);
    ASSERT_NE(ahead, nullptr);
    ASSERT_TRUE(ahead->Prepare(0, 100));
    Pixels row(2200);
    ahead->Copy(0, 2, 1, row.data());
    EXPECT_EQ(row[10], 16.0);
    // The last row of blocks is in the second batch of 8 MB.
    EXPECT_FALSE(ahead->Prepare(3900, 100));
    EXPECT_FALSE(ahead->Prepare(3900, 100));
}

TEST_F(ThreadedReaderTest, RowsOfVeryLargeBlocksAreNotReadAhead) {
    const CPLConfigOptionSetter threads("GDAL_NUM_THREADS", "2", false);
    const OpenedRaster opened(zelto::test::WriteHugeBlock(m_folder, 8'208));
    EXPECT_NE(ThreadedReader::Of(opened.Bands()), nullptr);
    // 8,208 rows of a block stand in one batch: 67,371,264 bytes.
    EXPECT_EQ(RowsAhead::Of(opened.Bands(), {0, 0, 8'208, 8'208}, 1), nullptr);
    EXPECT_NE(RowsAhead::Of(opened.Bands(), {0, 0, 8'000, 8'208}, 1), nullptr);
}
