// A composed picture of three rasters against the three raw reads of the same windows.

#include "zelto/baselib/CommonFun.h"
#include "zelto/display/ComposedRaster.h"
#include "zelto/raster/RasterBand.h"

#include "bench/support/Ratio.h"
#include "bench/support/Scene.h"

#include <gdal_priv.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace {

constexpr int SIDE = 1024;

/// Three openings of one file, so that each colour has a source of its own.
struct Composition {
    Composition() {
        const std::wstring path = CommonFun::M2U(zelto::bench::FourBands16Bit());
        CRasterBand* bands[3];
        for (int k = 0; k < 3; ++k) {
            if (sources[k].Open(path.c_str(), GIS_READONLY, true) != GIS_SUCCESS)
                throw std::runtime_error("the scene cannot be opened");
            sources[k].SetStretchType(StretchStdDev);
            bands[k] = sources[k].GetRasterBand(3 - k);
        }
        if (composed.CreateRaster(&sources[0], bands[0], &sources[1], bands[1], &sources[2],
                                  bands[2]) != GIS_SUCCESS)
            throw std::runtime_error("the bands cannot be composed");
    }

    void Draw(CBoundingBox box) {
        if (!composed.GetShowData(&box, SIDE, SIDE, image.data(), false))
            throw std::runtime_error("the view was not drawn");
    }

    void Read(CBoundingBox box) {
        for (int k = 0; k < 3; ++k) {
            const CRect covered = sources[k].GroundToImage(&box);
            const int left = std::max(covered.left - 1, 0);
            const int top = std::max(covered.top - 1, 0);
            const int right = std::min(covered.right + 1, sources[k].GetWidth());
            const int bottom = std::min(covered.bottom + 1, sources[k].GetHeight());
            const double pixel = sources[k].GetXResolution();
            const int width = static_cast<int>((right - left) * pixel / (box.GetWidth() / SIDE));
            const int height = static_cast<int>((bottom - top) * pixel / (box.GetHeight() / SIDE));
            raw.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
            if (composed.GetRasterBand(k)->GetGDALBand()->RasterIO(
                    GF_Read, left, top, right - left, bottom - top, raw.data(), width, height,
                    GDT_UInt16, 0, 0, nullptr) != CE_None)
                throw std::runtime_error("a window was not read");
        }
    }

    CRasterSource sources[3];
    CComposedRaster composed;
    std::vector<unsigned char> image = std::vector<unsigned char>(std::size_t{4} * SIDE * SIDE);
    std::vector<unsigned short> raw;
};

void EmptyBlockCache() {
    while (GDALRasterBlock::FlushCacheBlock()) {
    }
}

void AddView(Composition* composition, const std::string& name, const CBoundingBox& box) {
    zelto::bench::AddRatio("compose/" + name, 1.25,
                           {[=] { composition->Draw(box); }, EmptyBlockCache},
                           {[=] { composition->Read(box); }, EmptyBlockCache});
}

} // namespace

void zelto::bench::Register() {
    // Never deleted: the benchmarks hold it until the program ends.
    auto* composition = new Composition;
    AddView(composition, "whole", composition->composed.GetExtent());
    CBoundingBox window;
    const CBoundingBox extent = composition->composed.GetExtent();
    window.SetBoundingBox(extent.GetLeft() + 40000.0, extent.GetTop() - 50000.0,
                          extent.GetLeft() + 40000.0 + SIDE * 10.0,
                          extent.GetTop() - 50000.0 - SIDE * 10.0);
    AddView(composition, "1:1", window);
}
