// The engine's own calls, timed as C++ makes them, for the Python package to be compared with:
//
//   zelto_python_call_times SCENE
//
// reads names of calls from its standard input, a line each, and answers each with the
// milliseconds that one such call took.

#include "zelto/aoi/AOISource.h"
#include "zelto/aoi/DrawPolygon.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/raster/RasterSource.h"

#include <gdal_priv.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <string>
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

} // namespace

int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    CRasterSource scene;
    scene.SetForDisplay(true);
    if (scene.Open(CommonFun::M2U(argv[1]).c_str(), GIS_READONLY, true) != GIS_SUCCESS)
        return 1;
    scene.SetStretchType(StretchStdDev);
    CBoundingBox box = scene.GetExtent();
    // Each has memory of its own, as the arrays that the package returns.
    const auto newPixels = [](std::size_t channels) {
        return std::unique_ptr<unsigned char[]>(
            new unsigned char[std::size_t{SIDE} * SIDE * channels]);
    };
    const auto render = [&] {
        const auto picture = newPixels(4);
        scene.GetShowData(&box, SIDE, SIDE, picture.get(), true);
        scene.ApplyShowDataHISC(SIDE, SIDE, picture.get());
    };
    int bands[] = {1, 2, 3};
    const auto read = [&] {
        const auto values = newPixels(3);
        if (scene.GetGDALDataset()->RasterIO(GF_Read, 0, 0, SIDE, SIDE, values.get(), SIDE, SIDE,
                                             GDT_Byte, 3, bands, 0, 0, 0, nullptr) != CE_None)
            std::abort();
    };

    CAOISource area;
    AddStar(area);
    std::vector<double> x(POINTS);
    std::vector<double> y(POINTS);
    for (std::size_t i = 0; i < POINTS; ++i) {
        x[i] = -1.0 + 2.0 * static_cast<double>(i * 7919 % POINTS) / POINTS;
        y[i] = -1.0 + 2.0 * static_cast<double>(i * 104729 % POINTS) / POINTS;
    }
    std::vector<unsigned char> inside(POINTS);
    const auto contains = [&] {
        for (std::size_t i = 0; i < POINTS; ++i)
            inside[i] = area.TopoRelationWithPoint(x[i], y[i]) == TOPO_CONTAIN;
    };

    const std::map<std::string, std::function<void()>> calls = {
        {"render", render}, {"read", read}, {"contains", contains}};
    for (std::string name; std::getline(std::cin, name);) {
        const auto call = calls.find(name);
        if (call == calls.end())
            return 2;
        std::cout << Milliseconds(call->second) << std::endl;
    }
    return 0;
}
