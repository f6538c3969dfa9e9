// What a program of the project is measured against where no tool of GDAL does the same: plain
// use of GDAL, in a process of its own.

#include <gdal_priv.h>
#include <gdal_utils.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Words = std::vector<std::string>;

void Require(bool condition, const std::string& what) {
    if (!condition)
        throw std::runtime_error(what);
}

GDALDatasetUniquePtr Open(const std::string& path, bool threads) {
    const char* const options[] = {"NUM_THREADS=ALL_CPUS", nullptr};
    GDALDatasetUniquePtr dataset(
        GDALDataset::Open(path.c_str(), GDAL_OF_RASTER, nullptr, threads ? options : nullptr));
    Require(dataset != nullptr, "cannot open " + path);
    return dataset;
}

/// read FILE LEFT TOP RIGHT BOTTOM: all pixels of a ground box, all bands, in the file's own type,
/// a row of blocks at a time, with as many threads as GDAL decodes with.
void Read(const Words& words) {
    const auto dataset = Open(words.at(0), true);
    double g[6];
    dataset->GetGeoTransform(g);
    const auto pixel = [&](std::size_t word, double origin, double step, int size) {
        return std::clamp(static_cast<int>((std::stod(words.at(word)) - origin) / step), 0, size);
    };
    const int left = pixel(1, g[0], g[1], dataset->GetRasterXSize());
    const int top = pixel(2, g[3], g[5], dataset->GetRasterYSize());
    const int width = pixel(3, g[0], g[1], dataset->GetRasterXSize()) - left;
    const int bottom = pixel(4, g[3], g[5], dataset->GetRasterYSize());
    int blockWidth = 0, blockHeight = 0;
    dataset->GetRasterBand(1)->GetBlockSize(&blockWidth, &blockHeight);
    const GDALDataType type = dataset->GetRasterBand(1)->GetRasterDataType();
    std::vector<std::uint8_t> samples(
        static_cast<std::size_t>(width) * static_cast<std::size_t>(blockHeight) *
        static_cast<std::size_t>(dataset->GetRasterCount() * GDALGetDataTypeSizeBytes(type)));
    for (int row = top; row < bottom;) {
        const int rows = std::min((row / blockHeight + 1) * blockHeight, bottom) - row;
        Require(dataset->RasterIO(GF_Read, left, row, width, rows, samples.data(), width, rows,
                                  type, dataset->GetRasterCount(), nullptr, 0, 0, 0,
                                  nullptr) == CE_None,
                "cannot read");
        row += rows;
    }
}

/// What a stretch by the mean and deviation must read before it can draw: a sample of the three
/// bands, at most 2,048 pixels along a side.
void ReadSamples(GDALDataset& dataset) {
    constexpr int SIDE = 2048;
    const int longest = std::max(dataset.GetRasterXSize(), dataset.GetRasterYSize());
    const int step = (longest + SIDE - 1) / SIDE;
    const int width = std::max(dataset.GetRasterXSize() / step, 1);
    const int height = std::max(dataset.GetRasterYSize() / step, 1);
    std::vector<double> samples(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (const int band : {3, 2, 1})
        Require(dataset.GetRasterBand(band)->RasterIO(
                    GF_Read, 0, 0, dataset.GetRasterXSize(), dataset.GetRasterYSize(),
                    samples.data(), width, height, GDT_Float64, 0, 0, nullptr) == CE_None,
                "cannot read");
}

/// sample-and-translate FILE OUT [option of gdal_translate…]: the sample and then the picture.
void SampleAndTranslate(const Words& words) {
    const auto dataset = Open(words.at(0), false);
    ReadSamples(*dataset);
    CPLStringList options;
    for (std::size_t i = 2; i < words.size(); ++i)
        options.AddString(words[i].c_str());
    GDALTranslateOptions* parsed = GDALTranslateOptionsNew(options.List(), nullptr);
    const GDALDatasetH made =
        GDALTranslate(words.at(1).c_str(), GDALDataset::ToHandle(dataset.get()), parsed, nullptr);
    GDALTranslateOptionsFree(parsed);
    Require(made != nullptr, "cannot translate");
    GDALClose(made);
}

} // namespace

int main(int argc, char** argv) try {
    GDALAllRegister();
    const Words words(argv + std::min(argc, 2), argv + argc);
    const std::string command = argc > 1 ? argv[1] : "";
    Require(command == "read" || command == "sample-and-translate", "unknown command");
    (command == "read" ? Read : SampleAndTranslate)(words);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
