#include "zelto/aoi/DrawRectangle.h"

#include "tests/support/RasterFile.h"
#include "tests/support/TemporaryFolder.h"
#include "viewer/worker/LayerStore.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>

using namespace zelto;
using namespace zelto::test;

namespace {

/// The image alone, two pixels side by side, under the stretch that changes nothing.
/// @param adjust changes the settings and the request
template <typename Adjust>
QImage DrawTwoPixels(const std::string& path, Adjust adjust) {
    view::LayerStore store;
    QString reason;
    EXPECT_TRUE(store.Open(1, {{QString::fromStdString(path)}, {}}, 1, reason))
        << reason.toStdString();
    view::DrawRequest request;
    request.view = view::ViewTransform::Fitting(store.Facts(1).extent, {2, 1});
    view::DisplaySettings settings = store.Facts(1).initial;
    settings.stretch = "none";
    adjust(settings, request);
    request.layers.push_back({1, settings});
    QImage image = store.Draw(request.layers[0], request, reason);
    EXPECT_EQ(reason, "");
    return image;
}

QImage DrawTwoPixels(const std::string& path) {
    return DrawTwoPixels(path, [](view::DisplaySettings&, view::DrawRequest&) {});
}

std::string WriteTwoPixels(const TemporaryFolder& folder) {
    return WriteRaster(
        folder.File("two.tif"),
        {.width = 2, .height = 1, .geoTransform = NorthUp(0, 1, 1), .options = {"PHOTOMETRIC=RGB"}},
        {{10, 40}, {20, 50}, {30, 60}});
}

} // namespace

TEST(LayerMask, WhatAMaskHidesIsTransparent) {
    const TemporaryFolder folder;
    const std::string path = WriteTwoPixels(folder);
    EXPECT_EQ(DrawTwoPixels(path).pixel(0, 0), qRgba(10, 20, 30, 255));
    AddMask(path, {0, 255}, 2, 1);
    const QImage image = DrawTwoPixels(path);
    EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0);
    EXPECT_EQ(image.pixel(1, 0), qRgba(40, 50, 60, 255));
}

TEST(LayerMask, ColoursStandWhereTheFileSaysThatTheyAre) {
    const TemporaryFolder folder;
    const std::string path = WriteTwoPixels(folder);
    GDALAllRegister();
    {
        const GDALDatasetUniquePtr file(
            GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_UPDATE));
        ASSERT_NE(file, nullptr);
        ASSERT_EQ(file->GetRasterBand(1)->SetColorInterpretation(GCI_BlueBand), CE_None);
        ASSERT_EQ(file->GetRasterBand(3)->SetColorInterpretation(GCI_RedBand), CE_None);
    }
    EXPECT_EQ(DrawTwoPixels(path).pixel(1, 0), qRgba(60, 50, 40, 255));
}

TEST(LayerMask, ASingleBandWithinAnAreaStaysGreyAndFadesOnce) {
    const TemporaryFolder folder;
    const std::string path = WriteTwoPixels(folder);
    const auto draw = [&](float transparency) {
        return DrawTwoPixels(path,
                             [&](view::DisplaySettings& settings, view::DrawRequest& request) {
                                 settings.bands = {0};
                                 settings.contrast = 0.5F;
                                 settings.transparency = transparency;
                                 auto left = std::make_shared<CDrawRectangle>();
                                 left->AddVertex({-1.0, 2.0});
                                 left->AddVertex({1.0, -1.0});
                                 left->UpdateExtent();
                                 request.mask = {left};
                             });
    };
    const QImage opaque = draw(0.0F);
    const QRgb inside = opaque.pixel(0, 0);
    EXPECT_NE(qRed(inside), 10) << "the contrast is adjusted";
    EXPECT_EQ(inside, qRgba(qRed(inside), qRed(inside), qRed(inside), 255));
    EXPECT_EQ(qAlpha(opaque.pixel(1, 0)), 0);
    EXPECT_EQ(qAlpha(draw(0.4F).pixel(0, 0)), 153);
}
