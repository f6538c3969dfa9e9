#include "zelto/baselib/internal/DiskSync.h"
#include "zelto/raster/RasterSource.h"

#include "bench/support/Ratio.h"

#include <gdal_priv.h>

#include <cstdint>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

using zelto::bench::AddRatio;

namespace {

namespace fs = std::filesystem;

constexpr int SIDE = 6000;
constexpr int BANDS = 3;

/// The levels that the engine builds for an image of this size: down to 4096 pixels.
const std::vector<int> LEVELS = {2, 4, 8, 16, 32, 64, 128};

void Require(bool good, const std::string& what) {
    if (!good)
        throw std::runtime_error(what);
}

/// A folder with the two images of the comparison, gone at the end.
class Images {
  public:
    Images() {
        std::string pattern = (fs::temp_directory_path() / "zelto-bench-XXXXXX").string();
        Require(mkdtemp(pattern.data()) != nullptr, "cannot create a temporary folder");
        m_folder = pattern;
        Write(Path("engine"));
        fs::copy_file(Path("engine"), Path("raw"));
    }
    ~Images() {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }
    Images(const Images&) = delete;
    Images& operator=(const Images&) = delete;

    std::string Path(const std::string& name) const {
        return (m_folder / (name + ".tif")).string();
    }
    /// Removes the pyramid beside an image.
    void RemovePyramid(const std::string& name) const {
        for (const char* extension : {".aux", ".rrd"})
            fs::remove(m_folder / (name + extension));
    }

  private:
    static void Write(const std::string& path) {
        GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GTiff");
        const GDALDatasetUniquePtr image(
            driver->Create(path.c_str(), SIDE, SIDE, BANDS, GDT_Byte, nullptr));
        Require(image != nullptr, "cannot create " + path);
        std::minstd_rand random(4711);
        std::vector<std::uint8_t> row(static_cast<std::size_t>(SIDE) * BANDS);
        for (int y = 0; y < SIDE; ++y) {
            for (std::size_t i = 0; i < row.size(); ++i)
                row[i] = static_cast<std::uint8_t>(y / 40 + random() % 64);
            Require(image->RasterIO(GF_Write, 0, y, SIDE, 1, row.data(), SIDE, 1, GDT_Byte, BANDS,
                                    nullptr, 0, 0, 0, nullptr) == CE_None,
                    "cannot write " + path);
        }
    }

    fs::path m_folder;
};

void BuildWithEngine(const Images& images, const char* resampling) {
    const std::string path = images.Path("engine");
    CRasterSource source;
    Require(source.OpenSimple(std::wstring(path.begin(), path.end()).c_str(), GIS_UPDATE, false) ==
                GIS_SUCCESS,
            "the engine cannot open " + path);
    Require(source.BuildOverviews(resampling, 0, nullptr, nullptr) == GIS_SUCCESS,
            "the engine cannot build a pyramid");
}

void BuildRaw(const Images& images, const char* resampling) {
    const std::string path = images.Path("raw");
    GDALDatasetUniquePtr image(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
    Require(image != nullptr, "cannot open " + path);
    // Opening in the engine looks at the bands' value range; so does a program without it.
    for (int number = 1; number <= BANDS; ++number) {
        double range[2] = {};
        Require(image->GetRasterBand(number)->ComputeRasterMinMax(TRUE, range) == CE_None,
                "cannot read " + path);
    }
    std::vector<int> levels = LEVELS;
    Require(image->BuildOverviews(resampling, static_cast<int>(levels.size()), levels.data(), 0,
                                  nullptr, nullptr, nullptr) == CE_None,
            "cannot build a pyramid");
    image.reset();
    // The engine's pyramid is on the disk when it is told to be done.
    for (const char* extension : {".aux", ".rrd"})
        Require(zelto::SyncFile(fs::path(path).replace_extension(extension)),
                "cannot sync " + path);
}

void AddPyramid(const char* resampling) {
    const auto images = std::make_shared<Images>();
    AddRatio(
        std::string("pyramids/build 6000x6000x3 ") + resampling, 1.10,
        {[=] { BuildWithEngine(*images, resampling); }, [=] { images->RemovePyramid("engine"); }},
        {[=] { BuildRaw(*images, resampling); }, [=] { images->RemovePyramid("raw"); }}, 25);
}

} // namespace

void zelto::bench::Register() {
    CGISDataSource::RegisterGDAL();
    AddPyramid("NEAREST");
    AddPyramid("AVERAGE");
}
