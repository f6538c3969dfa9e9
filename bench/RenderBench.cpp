#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/aoi/RasterAOI.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/display/internal/BandDisplay.h"
#include "zelto/display/internal/Compose.h"
#include "zelto/display/internal/SourceView.h"
#include "zelto/display/internal/ViewRows.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "bench/support/Ratio.h"
#include "bench/support/Scene.h"

#include <gdal_priv.h>
#include <omp.h>

#include <array>
#include <chrono>
#include <cmath>
#include <functional>
#include <memory>
#include <numbers>
#include <stdexcept>
#include <vector>

using namespace zelto;

namespace {

constexpr int side = 1024; ///< output pixels of every view but the pan's
constexpr int panSide = 512;
constexpr int panViews = 200;

/// A raster opened for display, with three shown bands, and the buffers its views need.
struct Scene {
    explicit Scene(const std::string& path) {
        source.SetForDisplay(true);
        if (source.Open(CommonFun::M2U(path).c_str(), GIS_READONLY, true) != GIS_SUCCESS)
            throw std::runtime_error("cannot open " + path);
        std::array<int, 3> shown = {2, 1, 0};
        source.SetShowBandNum(3, shown.data());
    }

    /// A view of `pixels` × `pixels` source pixels from (column, row).
    CBoundingBox Box(double column, double row, double pixels) const {
        double left = 0.0, top = 0.0, right = 0.0, bottom = 0.0;
        source.ImageToGround(column, row, left, top);
        source.ImageToGround(column + pixels, row + pixels, right, bottom);
        return {left, top, right, bottom};
    }

    void Draw(CBoundingBox box, int size) {
        if (!source.GetShowData(&box, size, size, image.data(), false))
            throw std::runtime_error("a view was not drawn");
    }

    void DrawPlanes(CBoundingBox box, int size, CRasterAOI* area = nullptr) {
        const std::size_t count = static_cast<std::size_t>(size) * static_cast<std::size_t>(size);
        unsigned char* planes[] = {image.data(), image.data() + count, image.data() + 2 * count};
        if (!source.GetShowData(&box, size, size, 3, planes, area, false))
            throw std::runtime_error("a view was not drawn");
    }

    /// The raw reads of a view: the same windows, bands and decimation, in the file's own type.
    void Read(const CBoundingBox& box, int size, ViewRule rule = ViewRule::Interleaved) {
        const ReadWindow window = SelectViewWindow(GridOf(source), box, size, size, rule).read;
        for (int k = 0; k < 3; ++k) {
            GDALRasterBand* band = source.GetRasterBand(2 - k)->GetGDALBand();
            if (band->RasterIO(GF_Read, window.xOff, window.yOff, window.xSize, window.ySize,
                               raw.data(), window.bufWidth, window.bufHeight,
                               band->GetRasterDataType(), 0, 0, nullptr) != CE_None)
                throw std::runtime_error("a window was not read");
        }
    }

    CRasterSource source;
    std::vector<unsigned char> image = std::vector<unsigned char>(side * side * 4);
    std::vector<std::uint16_t> raw = std::vector<std::uint16_t>(4 * side * side);
};

/// Never deleted: the benchmarks' functions hold it until after GDAL has cleaned up its threads.
using ScenePointer = Scene*;

/// GDAL's, and what the engine keeps of the view before.
void EmptyCaches(Scene& scene) {
    while (GDALRasterBlock::FlushCacheBlock()) {
    }
    scene.source.GetRasterBand(0)->FlushCache();
}

/// Sets a stretch with everything it needs.
void SetStretch(CRasterSource& source, StretchType type) {
    source.SetStretchType(type);
    std::vector<int> counts(256, 1);
    std::array<unsigned char, 256> table{};
    for (int i = 0; i < source.GetBandCount(); ++i) {
        CRasterBand& band = *source.GetRasterBand(i);
        if (type == StretchHistEqualize || type == StretchAutoLevels)
            band.EnableHistogramEqualize();
        if (type == StretchZoomLinear || type == StretchZoomLinear002 || type == StretchWallis)
            band.SetStretchData(type, 120, 40, 5, 250, 130, 50);
        if (type == StretchCustomHistEqualize)
            band.SetCustomHistogram(0, 10000, 256, counts.data());
        if (type == StretchEnhanceTable)
            band.SetEnhancedData(table.data(), HistogramLineCurve, nullptr, 0);
        band.SetStretchType(type);
    }
}

const std::vector<std::pair<const char*, StretchType>> stretches = {
    {"none", StretchNone},
    {"table", StretchEnhanceTable},
    {"linear", StretchLinear},
    {"stddev", StretchStdDev},
    {"equalize", StretchHistEqualize},
    {"autolevels", StretchAutoLevels},
    {"zoom002", StretchZoomLinear002},
    {"wallis", StretchWallis},
    {"zoom", StretchZoomLinear},
    {"custom-equalize", StretchCustomHistEqualize}};

/// One view with an emptied block cache, against the raw reads.
void AddColdView(const std::string& name, ScenePointer scene, const CBoundingBox& box,
                 StretchType type) {
    bench::AddRatio(name, 1.25,
                    {[=] { scene->Draw(box, side); },
                     [=] {
                         SetStretch(scene->source, type);
                         EmptyCaches(*scene);
                     }},
                    {[=] { scene->Read(box, side); }, [=] { EmptyCaches(*scene); }}, 45);
}

/// The same into planes. Enlarged planes are read at the file's resolution, a few samples for a
/// whole picture, so that their ratio is for information.
void AddColdPlanes(const std::string& name, ScenePointer scene, const CBoundingBox& box,
                   double limit) {
    bench::AddRatio(
        name, limit,
        {[=] { scene->DrawPlanes(box, side); },
         [=] {
             SetStretch(scene->source, StretchStdDev);
             EmptyCaches(*scene);
         }},
        {[=] { scene->Read(box, side, ViewRule::Planes); }, [=] { EmptyCaches(*scene); }}, 15);
}

void AddColdViews(const std::string& file, ScenePointer scene) {
    const std::string cold = "render/" + file + "/cold/";
    const CBoundingBox whole = scene->Box(0, 0, scene->source.GetWidth());
    const CBoundingBox oneToOne = scene->Box(4000, 5000, side);
    const CBoundingBox enlarged = scene->Box(6000, 3000, side / 8.0);
    for (const auto& [name, type] : stretches) {
        AddColdView(cold + "whole/" + name, scene, whole, type);
        AddColdView(cold + "1:1/" + name, scene, oneToOne, type);
    }
    AddColdView(cold + "8x/stddev", scene, enlarged, StretchStdDev);
    AddColdPlanes(cold + "whole/planes", scene, whole, 1.25);
    AddColdPlanes(cold + "1:1/planes", scene, oneToOne, 1.25);
    AddColdPlanes(cold + "8x/planes", scene, enlarged, 0.0);
}

/// Views one after the other, each against its own raw read: a machine whose speed changes within a
/// second still compares like with like. Each work goes its own round of the boxes.
void AddPannedViews(const std::string& name, ScenePointer scene, double limit,
                    const std::function<CBoundingBox(int)>& boxOf) {
    const auto drawn = std::make_shared<int>(0);
    const auto read = std::make_shared<int>(0);
    bench::AddRatio(
        name, limit,
        {[=] { scene->Draw(boxOf((*drawn)++ % panViews), panSide); },
         [=] {
             if (*drawn == 0)
                 SetStretch(scene->source, StretchStdDev);
             EmptyCaches(*scene);
         }},
        {[=] { scene->Read(boxOf((*read)++ % panViews), panSide); }, [=] { EmptyCaches(*scene); }},
        panViews);
}

void AddPans(const std::string& file, ScenePointer scene) {
    AddPannedViews("render/" + file + "/cold/pan of 200", scene, 1.25, [=](int i) {
        return scene->Box(1000.0 + 37.0 * i, 1000.0 + 23.0 * i, panSide);
    });
    // By a quarter of their width, along rows of the scene, as a hand drags it. A byte that is not
    // compressed is read in hardly more time than it is drawn.
    constexpr int ROW = 40;
    const double limit = scene->source.GetRasterDataType() == PDT_Byte ? 1.25 : 1.15;
    AddPannedViews("render/" + file + "/cold/200 views moved on by a quarter", scene, limit,
                   [=](int i) {
                       return scene->Box(500.0 + panSide / 4.0 * (i % ROW),
                                         500.0 + panSide * (i / ROW), panSide);
                   });
}

/// One core and cached blocks, against the raw read plus 7 nanoseconds for each sample.
void AddCached(const std::string& file, ScenePointer scene) {
    const CBoundingBox box = scene->Box(4000, 5000, side);
    const std::chrono::nanoseconds allowance(7LL * 3 * side * side);
    for (const auto& [name, type] : stretches)
        bench::AddRatio("render/" + file + "/cached, one core, 1:1/" + name +
                            " (raw read + 7 ns a sample)",
                        1.0,
                        {[=] {
                             scene->Draw(box, side);
                             omp_set_num_threads(omp_get_num_procs());
                         },
                         [=, type = type] {
                             SetStretch(scene->source, type);
                             omp_set_num_threads(1);
                             scene->Read(box, side);
                         }},
                        {[=] {
                             scene->Read(box, side);
                             const auto end = std::chrono::steady_clock::now() + allowance;
                             while (std::chrono::steady_clock::now() < end) {
                             }
                         },
                         [=] { scene->Read(box, side); }},
                        5);
}

/// A star of 1,000 vertices over half of a box.
CAOISource* StarIn(const CBoundingBox& box) {
    constexpr int VERTICES = 1000;
    auto polygon = std::make_unique<CDrawPolygon>();
    for (int i = 0; i < VERTICES; ++i) {
        const double angle = 2 * std::numbers::pi * i / VERTICES;
        const double radius = (i % 2 == 0 ? 0.3 : 0.5) * box.GetWidth();
        polygon->AddVertex(
            CPoint2D((box.GetLeft() + box.GetRight()) / 2 + radius * std::cos(angle),
                     (box.GetTop() + box.GetBottom()) / 2 + radius * std::sin(angle)));
    }
    polygon->m_complete = true;
    auto aoi = std::make_unique<CAOISource>();
    if (!aoi->AddDrawShape(polygon.release()))
        throw std::runtime_error("the area is not accepted");
    return aoi.release();
}

/// Planes inside an area against all of them.
void AddMasked(const std::string& file, ScenePointer scene) {
    const auto add = [&](const std::string& name, const CBoundingBox& box) {
        // Never deleted, as the scene.
        auto* area = new CRasterAOI(&scene->source, StarIn(box));
        const auto prepare = [=] {
            SetStretch(scene->source, StretchStdDev);
            EmptyCaches(*scene);
        };
        bench::AddRatio("render/" + file + "/cold/" + name + "/masked planes (planes)", 1.15,
                        {[=] { scene->DrawPlanes(box, side, area); }, prepare},
                        {[=] { scene->DrawPlanes(box, side); }, prepare});
        bench::AddRatio("render/" + file + "/cached/" + name + "/masked planes (planes)", 0.0,
                        {[=] { scene->DrawPlanes(box, side, area); }},
                        {[=] { scene->DrawPlanes(box, side); }});
    };
    add("whole", scene->Box(0, 0, scene->source.GetWidth()));
    add("1:1", scene->Box(4000, 5000, side));
}

/// What a large view takes beyond its output and GDAL's own cache.
void AddMemory(const std::string& file, ScenePointer scene) {
    constexpr int LARGE = 4096;
    const std::string name = "render/" + file + "/memory of 4096 x 4096 at 1:1";
    const CBoundingBox box = scene->Box(2000, 2000, LARGE);
    bench::AddTime(name, 1.0, {[=] {
                       std::vector<unsigned char> image(std::size_t{4} * LARGE * LARGE);
                       const GIntBig cache = GDALGetCacheMax64();
                       EmptyCaches(*scene);
                       GDALSetCacheMax64(16 << 20);
                       bench::ResetPeakMemory();
                       const double before = bench::PeakMemoryMegabytes();
                       CBoundingBox view = box;
                       if (!scene->source.GetShowData(&view, LARGE, LARGE, image.data(), false))
                           throw std::runtime_error("a view was not drawn");
                       const double grown = bench::PeakMemoryMegabytes() - before;
                       GDALSetCacheMax64(cache);
                       const int bytes = GDALGetDataTypeSizeBytes(
                           scene->source.GetRasterBand(0)->GetGDALBand()->GetRasterDataType());
                       bench::Remark(name, "peak grows by " + std::to_string(std::lround(grown)) +
                                               " MB, of which 16 GDAL's cache; a band's window " +
                                               std::to_string(bytes * LARGE / 1024 * LARGE / 1024) +
                                               " MB");
                   }},
                   1);
}

/// What remains once the samples are read, all threads against one.
void AddThreads(const std::string& file, ScenePointer scene) {
    const CBoundingBox box = scene->Box(4000, 5000, side);
    const auto draw = [=](int threads) {
        omp_set_num_threads(threads);
        const ViewWindow view =
            SelectViewWindow(GridOf(scene->source), box, side, side, ViewRule::Interleaved);
        CRasterBand& band = *scene->source.GetRasterBand(0);
        static const auto samples = WindowSamples::Read(band.GetGDALBand(), view.read);
        const OutputGrid output = OutputOf(scene->source, box, view, side, 0.0);
        const SamplePositions positions(output, view.read, band.GetWidth(), band.GetHeight());
        const auto lookup = ShowBytes(*samples, band);
        const ViewMask mask;
        for (int n = 0; n < 20; ++n)
            DrawRows(BandView{side, side, positions, lookup, mask}, {},
                     [&](std::size_t pixel, int count, const ShownByte* bytes) {
                         ComposeChannel(bytes, count, {Channel::Green},
                                        scene->image.data() + pixel * 4, nullptr);
                     });
        omp_set_num_threads(omp_get_num_procs());
    };
    bench::AddRatio("render/" + file + "/drawing, all cores against one", 0.0,
                    {[=] { draw(omp_get_num_procs()); }}, {[=] { draw(1); }});
}

void AddAdjustments(ScenePointer scene) {
    const auto image = std::make_shared<std::vector<unsigned char>>();
    const auto refill = [=] {
        scene->Draw(scene->Box(0, 0, scene->source.GetWidth()), side);
        *image = scene->image;
    };
    bench::AddRatio(
        "adjust/contrast (plain table pass)", 3.0,
        {[=] { CRasterAlgorithm::AdjustContrast(image->data(), side, side, 0.3F); }, refill},
        {[=] {
             std::array<unsigned char, 256> table{};
             for (int v = 0; v < 256; ++v)
                 table[static_cast<std::size_t>(v)] = static_cast<unsigned char>(v / 2);
             for (std::size_t p = 0; p < image->size(); p += 4)
                 for (int channel = 0; channel < 3; ++channel)
                     (*image)[p + channel] = table[(*image)[p + channel]];
         },
         refill});
    bench::AddTime(
        "adjust/hue, intensity, saturation (ns a pixel)", side * side,
        {[=] { CRasterAlgorithm::AdjustHIS(image->data(), side, side, 0.1F, 0.1F, 0.1F); },
         refill});
}

} // namespace

void zelto::bench::Register() {
    for (const auto& [name, path] :
         {std::pair{"16-bit", FourBands16Bit()}, std::pair{"8-bit", ThreeBands8Bit()}}) {
        const ScenePointer scene = new Scene(path);
        AddColdViews(name, scene);
        AddPans(name, scene);
        AddCached(name, scene);
        AddMasked(name, scene);
        AddMemory(name, scene);
        AddThreads(name, scene);
        if (scene->source.GetRasterDataType() == PDT_Byte)
            AddAdjustments(scene);
    }
}
