#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/datasource/GISDataSource.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/vector/VectorLayer.h"

#include "bench/support/Ratio.h"

#include <gdal_alg.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <cmath>
#include <memory>
#include <random>
#include <stdexcept>
#include <vector>

namespace zelto::bench {

namespace {

constexpr int SIZE = 3000;

/// A classified scene: fields of waves with a little speckle, in memory.
class Classes {
  public:
    Classes() : m_pixels(static_cast<std::size_t>(SIZE) * SIZE) {
        std::minstd_rand random(5);
        for (int y = 0; y < SIZE; ++y)
            for (int x = 0; x < SIZE; ++x) {
                const double wave = std::sin(x * 0.013) * std::cos(y * 0.017);
                const bool speckled = random() % 500 == 0;
                m_pixels[static_cast<std::size_t>(y) * SIZE + static_cast<std::size_t>(x)] =
                    static_cast<unsigned char>(speckled ? 9 : 4 + std::lround(3 * wave));
            }
        GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("MEM");
        m_dataset.reset(driver->Create("", SIZE, SIZE, 1, GDT_Byte, nullptr));
        if (m_dataset->GetRasterBand(1)->RasterIO(GF_Write, 0, 0, SIZE, SIZE, m_pixels.data(), SIZE,
                                                  SIZE, GDT_Byte, 0, 0, nullptr) != CE_None)
            throw std::runtime_error("cannot fill the classes");
        m_band = std::make_unique<CRasterBand>(m_dataset->GetRasterBand(1), false, false);
    }
    CRasterBand& Band() { return *m_band; }

  private:
    std::vector<unsigned char> m_pixels;
    GDALDatasetUniquePtr m_dataset;
    std::unique_ptr<CRasterBand> m_band;
};

/// An empty layer in memory, made anew for every run.
struct Target {
    Target() {
        GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("Memory");
        dataset.reset(driver->Create("", 0, 0, 0, GDT_Unknown, nullptr));
        layer = dataset->CreateLayer("polygons", nullptr, wkbPolygon, nullptr);
        OGRFieldDefn field("value", OFTInteger);
        if (layer->CreateField(&field) != OGRERR_NONE)
            throw std::runtime_error("cannot make the layer");
    }
    GDALDatasetUniquePtr dataset;
    OGRLayer* layer = nullptr;
};

} // namespace

void Register() {
    CGISDataSource::RegisterGDAL();
    const auto classes = std::make_shared<Classes>();
    const auto target = std::make_shared<std::unique_ptr<Target>>();
    const auto prepare = [target] { *target = std::make_unique<Target>(); };
    const auto require = [](bool done) {
        if (!done)
            throw std::runtime_error("not polygonized");
    };
    AddRatio("polygons of 3,000 squared classified pixels / GDAL's own", 1.05,
             {[=] {
                  CVectorLayer layer((*target)->layer);
                  require(CRasterAlgorithm::RasterPolygonize(&classes->Band(), nullptr, &layer, 0,
                                                             nullptr, nullptr, L"") == GIS_SUCCESS);
              },
              prepare},
             {[=] {
                  require(GDALPolygonize(GDALRasterBand::ToHandle(classes->Band().GetGDALBand()),
                                         nullptr, OGRLayer::ToHandle((*target)->layer), 0, nullptr,
                                         nullptr, nullptr) == CE_None);
              },
              prepare});
}

} // namespace zelto::bench
