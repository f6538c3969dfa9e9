#pragma once

#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/baselib/ColorRamp.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zelto::test {

/// A raster source opened for display, with what it protects laid open.
class ShownRaster : public CRasterSource {
  public:
    using CRasterSource::ApplyTransparenVal;
    using CRasterSource::ComputeShowDataStatics;
    using CRasterSource::m_showDensity;

    /// Writes the bands to a file and opens it.
    ShownRaster(const RasterSpec& spec, const std::vector<Pixels>& bands) {
        SetForDisplay(true);
        WriteRaster(m_folder.File("scene.tif"), spec, bands);
        EXPECT_EQ(Open(m_folder.WideFile("scene.tif").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    }
    /// Opens a virtual raster described by `xml` over the file of the other constructor.
    explicit ShownRaster(const std::string& xml) {
        SetForDisplay(true);
        WriteFile(m_folder.Path() / "scene.vrt", xml);
        EXPECT_EQ(Open(m_folder.WideFile("scene.vrt").c_str(), GIS_READONLY, true), GIS_SUCCESS);
    }
    ~ShownRaster() override { Close(); }

    /// The raster at one output pixel per pixel, over its whole extent.
    std::vector<unsigned char> Interleaved(bool adjust = false) {
        CBoundingBox box = GetExtent();
        std::vector<unsigned char> image(4U * GetWidth() * GetHeight(), 91);
        EXPECT_TRUE(GetShowData(&box, GetWidth(), GetHeight(), image.data(), adjust));
        return image;
    }
    std::vector<std::vector<unsigned char>> Planes(int count, CRasterAOI* aoi = nullptr) {
        CBoundingBox box = GetExtent();
        std::vector<std::vector<unsigned char>> planes(
            count, std::vector<unsigned char>(GetWidth() * GetHeight(), 91));
        std::vector<unsigned char*> pointers;
        for (auto& plane : planes)
            pointers.push_back(plane.data());
        EXPECT_TRUE(GetShowData(&box, GetWidth(), GetHeight(), count, pointers.data(), aoi, false));
        return planes;
    }
    void Show(std::vector<int> bands) {
        EXPECT_TRUE(SetShowBandNum(static_cast<int>(bands.size()), bands.data()));
    }

  private:
    TemporaryFolder m_folder;
};

/// A ramp whose red, green and blue differ: v, 255 − v and v / 2.
inline CColorRamp DistinctRamp() {
    CColorRamp ramp;
    for (int v = 0; v < 256; ++v)
        ramp.SetColor(static_cast<unsigned char>(v),
                      {static_cast<unsigned char>(v), static_cast<unsigned char>(255 - v),
                       static_cast<unsigned char>(v / 2), 255});
    return ramp;
}

/// Values 10 … 19 in (1, 2, 3, 200), 20 … 29 in (4, 5, 6, 0).
inline CClassifyDisplayTable TwoClasses() {
    CClassifyDisplayTable table(2);
    table.AddClassifyItem({{1, 2, 3, 200}, 10.0, 20.0, L"water"});
    table.AddClassifyItem({{4, 5, 6, 0}, 20.0, 30.0, L"hidden"});
    return table;
}

/// Two pixels, 10 and 200, in each of so many bands.
inline ShownRaster BandsOf(int count) {
    return {{.width = 2, .height = 1}, std::vector<Pixels>(count, Pixels{10.0, 200.0})};
}

using Bytes = std::vector<unsigned char>;

} // namespace zelto::test
