#include "zelto/raster/internal/PickedSamples.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <random>

using zelto::PixelBox;
using zelto::test::Pixels;

TEST(PickedSamples, OfEveryWindowAreThoseThatGdalReads) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    GDALAllRegister();
    const zelto::test::TemporaryFolder folder;
    zelto::test::RasterSpec spec{.width = 700, .height = 500, .type = GDT_UInt16};
    const auto noise = [&] {
        return zelto::test::MakePixels(spec.width, spec.height, [&](int, int) {
            return static_cast<double>(random() % 60000);
        });
    };
    for (const auto& [interleave, isTiled] :
         {std::pair("INTERLEAVE=PIXEL", true), std::pair("INTERLEAVE=PIXEL", false),
          std::pair("INTERLEAVE=BAND", true), std::pair("INTERLEAVE=BAND", false)}) {
        spec.options = {interleave, "COMPRESS=DEFLATE"};
        if (isTiled)
            spec.options.insert(spec.options.end(),
                                {"TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=48"});
        const std::string path =
            zelto::test::WriteRaster(folder.File("a.tif"), spec, {noise(), noise(), noise()});
        const GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
        const std::vector<GDALRasterBand*> bands = {dataset->GetRasterBand(3),
                                                    dataset->GetRasterBand(1)};
        ASSERT_TRUE(zelto::CanBePicked(*bands[0]));
        for (int round = 0; round < 100; ++round) {
            PixelBox box{};
            box.left = static_cast<int>(random() % 700);
            box.top = static_cast<int>(random() % 500);
            box.width = 1 + static_cast<int>(random() % static_cast<unsigned>(700 - box.left));
            box.height = 1 + static_cast<int>(random() % static_cast<unsigned>(500 - box.top));
            const int columns = 1 + static_cast<int>(random() % static_cast<unsigned>(box.width));
            const int rows = 1 + static_cast<int>(random() % static_cast<unsigned>(box.height));
            const auto count = static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
            std::vector<std::vector<std::uint16_t>> picked(2, std::vector<std::uint16_t>(count));
            ASSERT_TRUE(zelto::ReadPicked(bands, {box, columns, rows},
                                          {picked[0].data(), picked[1].data()}));
            for (std::size_t b = 0; b < 2; ++b) {
                std::vector<std::uint16_t> expected(count);
                ASSERT_EQ(bands[b]->RasterIO(GF_Read, box.left, box.top, box.width, box.height,
                                             expected.data(), columns, rows, GDT_UInt16, 0, 0,
                                             nullptr),
                          CE_None);
                ASSERT_EQ(picked[b], expected)
                    << box.left << ' ' << box.top << ' ' << box.width << " x " << box.height
                    << " as " << columns << " x " << rows;
            }
        }
    }
}
