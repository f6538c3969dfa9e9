#include "tests/display/RandomScene.h"

#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/baselib/ColorRamp.h"
#include "zelto/geometry/Point2D.h"
#include "zelto/raster/RasterBand.h"

#include "tests/support/RasterFile.h"
#include "tests/support/Text.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <sstream>

namespace zelto::test {

RandomScene::RandomScene(unsigned seed) : m_random(seed) {
    CreateFile();
    Open();
    ChooseBands();
    ChooseStretch();
    ChooseColors();
}

int RandomScene::Between(int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(m_random);
}

double RandomScene::Real(double least, double most) {
    return std::uniform_real_distribution<double>(least, most)(m_random);
}

bool RandomScene::Chance(int percent) {
    return Between(1, 100) <= percent;
}

int RandomScene::RandomSize(int largest) {
    return Chance(15) ? 1 : Between(1, largest);
}

double RandomScene::RandomValue() {
    if (m_hasNoData && Chance(10))
        return m_noData;
    switch (m_type) {
    case GDT_Byte:
        return Between(0, 255);
    case GDT_UInt16:
        return Chance(5) ? Between(0, 65535) : Between(0, 3000);
    case GDT_Int16:
        return Chance(5) ? Between(-32768, 32767) : Between(-500, 500);
    case GDT_UInt32:
        return Chance(5) ? Real(0, 4294967295.0) : Between(0, 100000);
    case GDT_Int32:
        return Chance(5) ? Real(-2147483648.0, 2147483647.0) : Between(-1000, 1000);
    default:
        if (Chance(2))
            return std::numeric_limits<double>::quiet_NaN();
        if (Chance(1))
            return std::numeric_limits<double>::infinity();
        if (Chance(1))
            return -std::numeric_limits<double>::infinity();
        return Real(-20.0, 300.0);
    }
}

std::array<double, 6> RandomScene::RandomGrid() {
    const double size = std::array{1.0, 28.5, 0.1, 30.0, 0.000277777777777778}[Between(0, 4)];
    const double x = Chance(50) ? Between(-1000, 1000) : Real(-1e5, 5e5);
    const double y = Chance(50) ? Between(-1000, 1000) : Real(-1e5, 5e6);
    switch (Between(0, 9)) {
    case 0:
        return {x, size, 0.0, y, 0.0, size}; // south up
    case 1:
        return {x, -size, 0.0, y, 0.0, -size}; // mirrored
    case 2:
    case 3: {
        const double turn = Real(-3.1, 3.1);
        return {x, size * std::cos(turn), -size * std::sin(turn),
                y, size * std::sin(turn), -size * std::cos(turn)};
    }
    case 4:
        return {x, size, 0.0, y, 0.0, -size * 1.7};
    default:
        return {x, size, 0.0, y, 0.0, -size};
    }
}

void RandomScene::CreateFile() {
    m_type = std::array{GDT_Byte,  GDT_UInt16,  GDT_Int16,  GDT_UInt32,
                        GDT_Int32, GDT_Float32, GDT_Float64}[Between(0, 6)];
    const int bands = std::array{1, 1, 2, 3, 4, 12}[Between(0, 5)];
    const int largest = Chance(20) ? 300 : 40;
    m_width = RandomSize(largest);
    m_height = RandomSize(largest);
    m_hasNoData = Chance(50);
    m_noData = m_type == GDT_Byte || m_type == GDT_UInt16 || m_type == GDT_UInt32
                   ? Between(0, 5)
                   : Between(-30, 30);
    RasterSpec spec;
    spec.width = m_width;
    spec.height = m_height;
    spec.type = m_type;
    spec.geoTransform = RandomGrid();
    if (m_hasNoData)
        spec.noData = m_noData;
    if (m_width > 100 && m_height > 100 && Chance(50))
        spec.overviews = {2, 4};
    std::vector<Pixels> pixels;
    for (int band = 0; band < bands; ++band)
        pixels.push_back(MakePixels(m_width, m_height, [this](int, int) { return RandomValue(); }));
    m_path = WriteRaster(m_folder.File("scene.tif"), spec, pixels);
    if (bands == 1 && m_type == GDT_Byte && Chance(60)) {
        GDALDatasetUniquePtr dataset(GDALDataset::Open(m_path.c_str(), GDAL_OF_UPDATE));
        GDALColorTable table;
        const int entries = Between(1, 256);
        for (int i = 0; i < entries; ++i) {
            const GDALColorEntry entry{
                static_cast<short>(Between(0, 255)), static_cast<short>(Between(0, 255)),
                static_cast<short>(Between(0, 255)), static_cast<short>(Between(0, 255))};
            table.SetColorEntry(i, &entry);
        }
        EXPECT_EQ(dataset->GetRasterBand(1)->SetColorTable(&table), CE_None);
    }
    std::ostringstream text;
    text << bands << " bands of " << GDALGetDataTypeName(m_type) << ", " << m_width << " x "
         << m_height << ", no-data " << m_hasNoData << ", grid";
    for (double term : *spec.geoTransform)
        text << ' ' << term;
    m_description = text.str();
}

void RandomScene::Open() {
    m_source = std::make_unique<CRasterSource>();
    m_source->SetForDisplay(true);
    EXPECT_EQ(m_source->Open(Wide(m_path).c_str(), GIS_READONLY, true), GIS_SUCCESS);
}

void RandomScene::ChooseBands() {
    if (Chance(40))
        return;
    const int count = Between(1, 3);
    int indices[3];
    for (int& index : indices)
        index = Between(0, m_source->GetBandCount() - 1);
    EXPECT_TRUE(m_source->SetShowBandNum(count, indices));
    m_description += ", shown " + std::to_string(count);
}

void RandomScene::PrepareBand(CRasterBand& band, int stretch) {
    if (Chance(20))
        return; // choosing a stretch without what it needs is allowed
    if (stretch == StretchHistEqualize || stretch == StretchAutoLevels)
        band.EnableHistogramEqualize();
    if (stretch == StretchAutoLevels)
        band.SetAutoLevelThresold(std::array{0.01, 0.02, 0.2}[Between(0, 2)]);
    if (stretch == StretchZoomLinear || stretch == StretchZoomLinear002)
        band.SetStretchData(static_cast<StretchType>(stretch), 0, 0, Between(-10, 100),
                            Between(100, 300), 0, 0);
    if (stretch == StretchWallis)
        band.SetStretchData(StretchWallis, Real(50, 150), Real(5, 60), Between(0, 60),
                            Between(200, 255), Real(90, 150), Real(15, 60));
    if (stretch == StretchCustomHistEqualize) {
        std::vector<int> counts(Between(2, 256));
        for (int& count : counts)
            count = Between(0, 50);
        band.SetCustomHistogram(Between(-50, 10), Between(100, 3000),
                                static_cast<int>(counts.size()), counts.data());
    }
    if (stretch == StretchEnhanceTable) {
        std::array<unsigned char, 256> table;
        for (unsigned char& entry : table)
            entry = static_cast<unsigned char>(Between(0, 255));
        band.SetEnhancedData(table.data(), HistogramLineCurve, nullptr, 0);
    }
}

void RandomScene::ChooseStretch() {
    const int stretch = std::array{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 77}[Between(0, 10)];
    m_source->SetStretchType(static_cast<StretchType>(stretch));
    for (int i = 0; i < m_source->GetBandCount(); ++i) {
        PrepareBand(*m_source->GetRasterBand(i), stretch);
        m_source->GetRasterBand(i)->SetStretchType(static_cast<StretchType>(stretch));
    }
    m_description += ", stretch " + std::to_string(stretch);
}

void RandomScene::ChooseColors() {
    m_source->m_transparency = static_cast<float>(Real(0.0, 1.0));
    if (Chance(50)) {
        CColorRamp ramp;
        for (int v = 0; v < 256; ++v)
            ramp.SetColor(static_cast<unsigned char>(v),
                          {static_cast<unsigned char>(Between(0, 255)),
                           static_cast<unsigned char>(Between(0, 255)),
                           static_cast<unsigned char>(Between(0, 255)), 255});
        m_source->SetColorRamp(&ramp);
    }
    if (Chance(50)) {
        CClassifyDisplayTable table(6);
        for (int i = 0; i < 6; ++i) {
            CClassifyDisplayItem item;
            item.m_low = i * 20.0;
            item.m_high = i * 20.0 + Between(1, 20);
            item.m_color = {static_cast<unsigned char>(Between(0, 255)),
                            static_cast<unsigned char>(Between(0, 255)),
                            static_cast<unsigned char>(Between(0, 255)),
                            static_cast<unsigned char>(Chance(30) ? 0 : Between(0, 255))};
            table.AddClassifyItem(item);
        }
        m_source->SetClassifyDisplayTable(&table);
    }
    m_source->SetDisplayType(static_cast<DataDisplayType>(Between(0, 3)));
    m_description += ", display type " + std::to_string(m_source->GetDisplayType());
}

CBoundingBox RandomScene::RandomBox() {
    const CBoundingBox extent = m_source->GetExtent();
    const double width = extent.GetWidth();
    const double height = extent.GetHeight();
    const auto at = [&](double l, double t, double r, double b) {
        return CBoundingBox(extent.m_left + l * width, extent.m_top - t * height,
                            extent.m_left + r * width, extent.m_top - b * height);
    };
    const double x = Real(0.0, 0.7), y = Real(0.0, 0.7);
    switch (Between(0, 11)) {
    case 0:
        return extent;
    case 1:
        return at(-Real(0, 1), y, Real(0.1, 0.9), y + 0.3);
    case 2:
        return at(Real(0.1, 0.9), y, 1.0 + Real(0, 1), y + 0.3);
    case 3:
        return at(x, -Real(0, 1), x + 0.3, Real(0.1, 0.9));
    case 4:
        return at(x, Real(0.1, 0.9), x + 0.3, 1.0 + Real(0, 1));
    case 5:
        return at(-Real(0, 3), -Real(0, 3), 1 + Real(0, 3), 1 + Real(0, 3));
    case 6:
        return at(5.0, x, 6.0, y);
    case 7:
        return at(x, y, x + 0.4 / m_width, y + 0.4 / m_height);
    case 8:
        return at(x + 0.3, y + 0.3, x, y);
    case 9: { // whole pixels
        const int left = Between(0, m_width - 1), top = Between(0, m_height - 1);
        return at(left / double(m_width), top / double(m_height),
                  Between(left + 1, m_width) / double(m_width),
                  Between(top + 1, m_height) / double(m_height));
    }
    default:
        return at(x, y, x + Real(0.01, 0.3), y + Real(0.01, 0.3));
    }
}

} // namespace zelto::test
