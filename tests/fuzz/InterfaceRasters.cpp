#include "tests/fuzz/InterfaceRasters.h"

#include "zelto/classify/ClassifiedAssistantFile.h"
#include "zelto/raster/RasterBand.h"

#include "tests/fuzz/FuzzEngine.h"
#include "tests/fuzz/InputFolder.h"
#include "tests/fuzz/InterfaceScene.h"

#include <gdal_priv.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace zelto::fuzz {

namespace {

constexpr double NO_DATA = -9999.0;
constexpr const char* GROUND = "EPSG:32650";

/// How a raster is made.
struct Plan {
    const char* name;
    int width;
    int height;
    int bands;
    PixelDataType type;
    double geoTransform[6];
    const char* srs;
};

/// The first one is opened most; to look its reference up would take longer than all the rest.
constexpr Plan PLANS[] = {
    {"bytes.tif", 24, 16, 3, PDT_Byte, {500000, 30, 0, 4000000, 0, -30}, ""},
    {"words.tif", 41, 30, 4, PDT_UInt16, {500100, 15, 0, 3999900, 0, -15}, GROUND},
    {"floats.tif", 17, 9, 1, PDT_Float32, {117, 0.5, 0, 36, 0, -0.5}, "EPSG:4326"},
    {"palette.tif", 20, 20, 1, PDT_Byte, {0, 1, 0, 20, 0, -1}, ""},
    {"classes.tif", 12, 12, 1, PDT_Int16, {0, 1, 0, 12, 0, -1}, ""},
    {"rotated.tif", 15, 10, 2, PDT_Int32, {1000, 8, 6, 1000, 6, -8}, GROUND},
    {"south.tif", 10, 10, 3, PDT_UInt32, {0, 1, 0, 0, 0, 1}, ""},
    {"pixel.tif", 1, 1, 1, PDT_Float64, {5, 1e-9, 0, 5, 0, -1e-9}, ""},
    {"flat.tif", 8, 8, 1, PDT_Byte, {0, 1, 0, 0, 0, 0}, ""},
    {"strip.tif", 3, 300, 1, PDT_Float64, {-180, 120, 0, 90, 0, -0.6}, "EPSG:4326"},
};

double Sample(const Plan& plan, int i) {
    const bool floating = plan.type == PDT_Float32 || plan.type == PDT_Float64;
    if (floating && i % 11 == 0)
        return i % 3 == 0 ? NO_DATA : std::numeric_limits<double>::quiet_NaN();
    if (floating && i % 13 == 0)
        return i % 2 == 0 ? HUGE_VAL : -1e30;
    return (i * 37) % 251 + (floating ? 0.25 : 0.0);
}

void Fill(CRasterSource& raster, const Plan& plan) {
    std::vector<double> samples(static_cast<std::size_t>(plan.width * plan.height));
    for (int b = 0; b < plan.bands; ++b) {
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] = Sample(plan, static_cast<int>(i) + b);
        raster.GetRasterBand(b)->WriteBlock(0, 0, plan.width, plan.height, samples.data(),
                                            plan.width, plan.height, PDT_Float64, 0, 0);
    }
}

void Make(const Plan& plan) {
    CRasterSource raster;
    double geoTransform[6];
    std::copy_n(plan.geoTransform, 6, geoTransform);
    const GISError error = raster.CreateRaster(
        RDF_GTiff, InputFolder::Get().WideFile(plan.name).c_str(), plan.width, plan.height,
        plan.bands, plan.type, geoTransform, *plan.srs == '\0' ? nullptr : plan.srs, nullptr);
    Require(error == GIS_SUCCESS, "a small raster can be made");
    Fill(raster, plan);
    if (plan.type == PDT_Float32)
        raster.SetAllBandNoDataValue(NO_DATA, true);
    if (plan.bands == 4)
        raster.BuildOverviews("AVERAGE", 0, nullptr, nullptr);
}

void PaintPalette() {
    CRasterSource raster;
    raster.OpenSimple(InputFolder::Get().WideFile("palette.tif").c_str(), GIS_UPDATE, false);
    GDALColorTable table;
    for (short i = 0; i < 200; ++i) {
        const GDALColorEntry entry = {i, static_cast<short>(255 - i), 7, 255};
        table.SetColorEntry(i, &entry);
    }
    raster.GetRasterBand(0)->SetColorTable(&table);
}

void NameClasses() {
    CClassifiedAssistantFile file;
    for (int i = 0; i < 5; ++i) {
        CClassifiedAssistantFile::ClassRecord record;
        record.SetName(L"class " + std::to_wstring(i));
        record.m_value = 40 * i;
        record.m_color = {static_cast<unsigned char>(50 * i), 100, 200, 255};
        file.AddClass(record);
    }
    file.WriteClssifiedAssistantFile(InputFolder::Get().WideFile("classes.acf"));
}

/// Rasters that are a text: without samples they are as large as they please.
void WriteVirtual(const std::string& name, int width, int height, const std::string& parts) {
    const std::string text = "<VRTDataset rasterXSize=\"" + std::to_string(width) +
                             "\" rasterYSize=\"" + std::to_string(height) + "\">" + parts +
                             "</VRTDataset>";
    InputFolder::Get().Write(name, text.data(), text.size());
}

void WriteVirtuals() {
    const std::string band = "<VRTRasterBand dataType=\"Byte\" band=\"1\"/>";
    WriteVirtual("wide.vrt", 5000, 400, band);
    WriteVirtual("none.vrt", 10, 10, "");
    WriteVirtual("wild.vrt", 10, 10,
                 "<GeoTransform>nan, inf, 0, 1e308, 0, -1e-308</GeoTransform>" + band);
    WriteVirtual("points.vrt", 10, 10,
                 "<GCPList Projection=\"EPSG:4326\">"
                 "<GCP Pixel=\"0\" Line=\"0\" X=\"10\" Y=\"20\"/>"
                 "<GCP Pixel=\"10\" Line=\"0\" X=\"11\" Y=\"20\"/>"
                 "<GCP Pixel=\"0\" Line=\"10\" X=\"10\" Y=\"19\"/>"
                 "<GCP Pixel=\"10\" Line=\"10\" X=\"11\" Y=\"19.5\"/></GCPList>" +
                     band);
}

std::vector<std::string> MakeRasters() {
    PrepareEngine();
    std::vector<std::string> names;
    for (const Plan& plan : PLANS) {
        Make(plan);
        names.emplace_back(plan.name);
    }
    PaintPalette();
    NameClasses();
    WriteVirtuals();
    for (const char* name : {"wide.vrt", "none.vrt", "wild.vrt", "points.vrt"})
        names.emplace_back(name);
    return names;
}

} // namespace

const std::vector<std::string>& RasterNames() {
    static const std::vector<std::string> names = MakeRasters();
    return names;
}

std::wstring RasterPath(InputBytes& bytes) {
    const auto& names = RasterNames();
    const auto index = static_cast<std::size_t>(bytes.Below(32));
    if (index < names.size())
        return InputFolder::Get().WideFile(names[index]);
    return index == 31 ? L"" : InputFolder::Get().WideFile(index == 30 ? "missing.tif" : names[0]);
}

std::wstring ScratchRasterPath() {
    const std::string original = InputFolder::Get().Read(RasterNames().front());
    InputFolder::Get().Write(SCRATCH_NAME, original.data(), original.size());
    return InputFolder::Get().WideFile(SCRATCH_NAME);
}

} // namespace zelto::fuzz
