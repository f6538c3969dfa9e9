#include "host/picture/Picture.h"

#include "zelto/baselib/NewFileSet.h"
#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/datasource/GISDataSource.h"

#include "host/base/Failure.h"
#include "host/base/Interrupts.h"
#include "host/base/Text.h"
#include "host/files/Open.h"
#include "host/files/Output.h"

#include <gdal_priv.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <map>

namespace zelto::host {

namespace {

constexpr const char* PNG = "PNG";

struct Format {
    std::string driver;
    bool hasAlpha;
    std::vector<std::string> options;
};

const Format* FormatOf(const std::string& path) {
    static const Format png = {PNG, true, {}};
    static const Format jpeg = {"JPEG", false, {"QUALITY=92"}};
    static const Format geoTiff = {"GTiff", true, {"COMPRESS=DEFLATE", "PHOTOMETRIC=RGB"}};
    static const std::map<std::string, const Format*> formats = {
        {".png", &png}, {".jpg", &jpeg}, {".jpeg", &jpeg}, {".tif", &geoTiff}, {".tiff", &geoTiff}};
    std::string extension = std::filesystem::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    const auto found = formats.find(extension);
    return found == formats.end() ? nullptr : found->second;
}

bool IsOpaque(const Picture& picture) {
    for (std::size_t i = 3; i < picture.pixels.size(); i += 4)
        if (picture.pixels[i] != 255)
            return false;
    return true;
}

/// Byte of a pixel that goes into a band: red, green, blue, alpha.
constexpr int BYTE_OF_BAND[] = {2, 1, 0, 3};

/// One band of the picture; without an alpha channel the colours are laid on white.
std::vector<unsigned char> ExtractBand(const Picture& picture, int band, bool onWhite) {
    std::vector<unsigned char> values(picture.pixels.size() / 4);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const unsigned char* pixel = picture.pixels.data() + i * 4;
        const int value = pixel[BYTE_OF_BAND[band]];
        const int alpha = onWhite ? pixel[3] : 255;
        values[i] = static_cast<unsigned char>((value * alpha + 255 * (255 - alpha) + 127) / 255);
    }
    return values;
}

GDALDatasetUniquePtr MakeDataset(const Picture& picture, bool hasAlpha) {
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("MEM");
    GDALDatasetUniquePtr dataset(
        driver->Create("", picture.width, picture.height, hasAlpha ? 4 : 3, GDT_Byte, nullptr));
    for (int band = 0; dataset && band < dataset->GetRasterCount(); ++band) {
        std::vector<unsigned char> values = ExtractBand(picture, band, !hasAlpha);
        GDALRasterBand* target = dataset->GetRasterBand(band + 1);
        target->SetColorInterpretation(static_cast<GDALColorInterp>(GCI_RedBand + band));
        if (target->RasterIO(GF_Write, 0, 0, picture.width, picture.height, values.data(),
                             picture.width, picture.height, GDT_Byte, 0, 0, nullptr) != CE_None)
            return nullptr;
    }
    return dataset;
}

void SetPlace(GDALDataset& dataset, const Picture& picture, const PicturePlace& place) {
    double geoTransform[6] = {place.box.GetLeft(),
                              place.box.GetWidth() / picture.width,
                              0.0,
                              place.box.GetTop(),
                              0.0,
                              -place.box.GetHeight() / picture.height};
    dataset.SetGeoTransform(geoTransform);
    if (!place.wkt.empty())
        dataset.SetProjection(place.wkt.c_str());
}

/// Whether a picture can be read to its end. The drivers do not tell of every write that fails.
bool IsWhole(const std::string& path) {
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const GDALDatasetUniquePtr picture(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    if (!picture)
        return false;
    const int width = picture->GetRasterXSize();
    const int height = picture->GetRasterYSize();
    const int bands = picture->GetRasterCount();
    constexpr int STRIP = 64;
    std::vector<unsigned char> strip(std::size_t{STRIP} * width * bands);
    for (int row = 0; row < height; row += STRIP) {
        const int rows = std::min(STRIP, height - row);
        if (picture->RasterIO(GF_Read, 0, row, width, rows, strip.data(), width, rows, GDT_Byte,
                              bands, nullptr, bands, bands * width, 1, nullptr) != CE_None)
            return false;
    }
    return true;
}

/// Throws Failure naming `path`.
/// @param target where the file is made
void Write(GDALDriver& driver, GDALDataset& dataset, const Format& format,
           const std::string& target, const std::string& path) {
    CPLStringList options;
    for (const std::string& option : format.options)
        options.AddString(option.c_str());
    GdalWatch watch;
    GDALDatasetUniquePtr written(
        driver.CreateCopy(target.c_str(), &dataset, FALSE, options.List(), nullptr, nullptr));
    const bool made = written != nullptr;
    // What is still in memory is written now; closing reports no result.
    written.reset();
    if (!watch.Succeeded(made, path))
        throw Failure(path, watch.HasError() ? watch.Error() : "cannot be written");
    if (!IsWhole(target))
        throw Failure(path, "was not written whole");
}

} // namespace

void CheckPictureFile(const PictureFile& file) {
    const Format* format = FormatOf(file.path);
    if (format == nullptr)
        throw UsageError("'" + file.path +
                         "': the name of a picture ends in .png, .jpg, .jpeg, .tif or .tiff");
    if (file.pngLevel != 0 && format->driver != PNG)
        throw UsageError("--png-level: '" + file.path + "' is no PNG");
}

void WritePicture(const Picture& picture, const PictureFile& file,
                  const std::optional<PicturePlace>& place) {
    CheckPictureFile(file);
    Format format = *FormatOf(file.path);
    if (format.driver == PNG)
        format.options.push_back(
            "ZLEVEL=" + std::to_string(file.pngLevel != 0 ? file.pngLevel : BEST_PNG_LEVEL));
    // No side files: a picture is one file.
    const CPLConfigOptionSetter noSideFiles("GDAL_PAM_ENABLED", "NO", false);
    const GDALDatasetUniquePtr dataset =
        MakeDataset(picture, format.hasAlpha && !IsOpaque(picture));
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(format.driver.c_str());
    if (!dataset || driver == nullptr)
        throw Failure(file.path, LastReason("the picture cannot be made"));
    if (place && driver == GetGDALDriverManager()->GetDriverByName("GTiff"))
        SetPlace(*dataset, picture, *place);
    CNewFileSet files(Wide(file.path));
    if (!files.IsOpen())
        throw Failure(CGISDataSource::GetLastErrorText());
    Write(*driver, *dataset, format, Narrow(files.GetTemporaryPath()), file.path);
    EndIfInterrupted();
    if (!files.Commit())
        throw Failure(CGISDataSource::GetLastErrorText());
}

} // namespace zelto::host
