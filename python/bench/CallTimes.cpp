// The engine's own calls, timed as C++ makes them, for the Python package to be compared with. A
// library, loaded into the interpreter: in two processes the same call differs by a tenth, by where
// their memory happens to lie.

#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/raster/RasterSource.h"

#include <gdal_priv.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

constexpr int SIDE = 1024;
constexpr std::size_t POINTS = 10'000'000;

template <typename Work>
double Milliseconds(Work work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin)
        .count();
}

/// The polygon of 100 vertices that the Python side tests as well.
void AddStar(CAOISource& area) {
    auto star = std::make_unique<CDrawPolygon>();
    for (int i = 0; i < 100; ++i) {
        const double radius = i % 2 == 0 ? 1.0 : 0.6;
        star->AddVertex({radius * std::cos(i * 0.06283185307179587),
                         radius * std::sin(i * 0.06283185307179587)});
    }
    star->m_complete = true;
    if (area.AddDrawShape(star.get()))
        static_cast<void>(star.release());
}

/// What is called: a scene, and an area with points to test.
class Calls {
  public:
    bool Open(const char* path) {
        m_scene.SetForDisplay(true);
        if (m_scene.Open(CommonFun::M2U(path).c_str(), GIS_READONLY, true) != GIS_SUCCESS)
            return false;
        m_scene.SetStretchType(StretchStdDev);
        return true;
    }
    void Render() {
        CBoundingBox box = m_scene.GetExtent();
        const auto picture = NewPixels(4);
        m_scene.GetShowDataRedFirst(&box, SIDE, SIDE, picture.get(), true);
        m_scene.ApplyShowDataHISC(SIDE, SIDE, picture.get());
    }
    void Read() {
        int bands[] = {1, 2, 3};
        const auto values = NewPixels(3);
        if (m_scene.GetGDALDataset()->RasterIO(GF_Read, 0, 0, SIDE, SIDE, values.get(), SIDE, SIDE,
                                               GDT_Byte, 3, bands, 0, 0, 0, nullptr) != CE_None)
            std::abort();
    }
    void Contains() {
        if (m_inside.empty())
            MakePoints();
        for (std::size_t i = 0; i < POINTS; ++i)
            m_inside[i] = m_area.TopoRelationWithPoint(m_x[i], m_y[i]) == TOPO_CONTAIN;
    }

  private:
    /// Each call has memory of its own, as the arrays that the package returns.
    static std::unique_ptr<unsigned char[]> NewPixels(std::size_t channels) {
        return std::unique_ptr<unsigned char[]>(
            new unsigned char[std::size_t{SIDE} * SIDE * channels]);
    }
    void MakePoints() {
        AddStar(m_area);
        for (std::size_t i = 0; i < POINTS; ++i) {
            m_x.push_back(-1.0 + 2.0 * static_cast<double>(i * 7919 % POINTS) / POINTS);
            m_y.push_back(-1.0 + 2.0 * static_cast<double>(i * 104729 % POINTS) / POINTS);
        }
        m_inside.resize(POINTS);
    }

    CRasterSource m_scene;
    CAOISource m_area;
    std::vector<double> m_x;
    std::vector<double> m_y;
    std::vector<unsigned char> m_inside;
};

Calls& TheCalls() {
    static Calls calls;
    return calls;
}

} // namespace

extern "C" {

/// Opens the scene of the calls; 0 when that fails.
__attribute__((visibility("default"))) int OpenScene(const char* path) {
    return TheCalls().Open(path) ? 1 : 0;
}

/// The milliseconds that one call takes.
__attribute__((visibility("default"))) double TimeRender() {
    return Milliseconds([] { TheCalls().Render(); });
}
__attribute__((visibility("default"))) double TimeRead() {
    return Milliseconds([] { TheCalls().Read(); });
}
__attribute__((visibility("default"))) double TimeContains() {
    return Milliseconds([] { TheCalls().Contains(); });
}
}
