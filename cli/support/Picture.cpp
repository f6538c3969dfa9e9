#include "cli/support/Picture.h"

#include "zelto/baselib/NewFileSet.h"
#include "zelto/datasource/GISDataSource.h"

#include "cli/support/Failure.h"
#include "cli/support/Interrupts.h"
#include "cli/support/Open.h"
#include "cli/support/Text.h"

#include <gdal_priv.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <map>

namespace zelto::cli {

namespace {

struct Format {
    const char* driver;
    bool hasAlpha;
    std::vector<const char*> options;
};

const Format* FormatOf(const std::string& path) {
    static const Format png = {"PNG", true, {}};
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

} // namespace

void CheckPictureName(const std::string& path) {
    if (FormatOf(path) == nullptr)
        throw UsageError("'" + path +
                         "': the name of a picture ends in .png, .jpg, .jpeg, .tif or .tiff");
}

void WritePicture(const Picture& picture, const std::string& path,
                  const std::optional<PicturePlace>& place) {
    CheckPictureName(path);
    const Format& format = *FormatOf(path);
    // No side files: a picture is one file.
    const CPLConfigOptionSetter noSideFiles("GDAL_PAM_ENABLED", "NO", false);
    const GDALDatasetUniquePtr dataset =
        MakeDataset(picture, format.hasAlpha && !IsOpaque(picture));
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(format.driver);
    if (!dataset || driver == nullptr)
        throw Failure(path, LastReason("the picture cannot be made"));
    if (place && driver == GetGDALDriverManager()->GetDriverByName("GTiff"))
        SetPlace(*dataset, picture, *place);

    CPLStringList options;
    for (const char* option : format.options)
        options.AddString(option);
    CNewFileSet file(Wide(path));
    if (!file.IsOpen())
        throw Failure(CGISDataSource::GetLastErrorText());
    ForgetReasons();
    GDALDatasetUniquePtr written(driver->CreateCopy(Narrow(file.GetTemporaryPath()).c_str(),
                                                    dataset.get(), FALSE, options.List(), nullptr,
                                                    nullptr));
    const bool complete = written != nullptr;
    written.reset();
    if (!complete || CPLGetLastErrorType() >= CE_Failure)
        throw Failure(path, LastReason("cannot be written"));
    EndIfInterrupted();
    if (!file.Commit())
        throw Failure(CGISDataSource::GetLastErrorText());
}

} // namespace zelto::cli
