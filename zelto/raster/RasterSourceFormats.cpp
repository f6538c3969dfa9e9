#include "zelto/baselib/CommonFun.h"
#include "zelto/raster/RasterSource.h"

#include <gdal_priv.h>

#include <array>
#include <string_view>

namespace {

/// One format. Empty texts: no driver, no usual extension, recognised by no extension.
struct FormatRow {
    const char* driver;
    std::wstring_view name;                      ///< usual extension
    std::array<std::wstring_view, 2> extensions; ///< extensions that name the format
};

/// Indexed by format. Formats without a driver are recognised and opened, but never created.
constexpr std::array<FormatRow, 46> FORMATS = {{
    {"", L"", {}},                       // RDF_Unknown
    {"AAIGrid", L"asc", {L"asc"}},       // RDF_AAIGrid
    {"ADRG", L"thf", {L"thf"}},          // RDF_ADRG
    {"BLX", L"", {}},                    // RDF_BLX
    {"BMP", L"bmp", {L"bmp"}},           // RDF_BMP
    {"BT", L"bt", {L"bt"}},              // RDF_BT
    {"DTED", L"", {}},                   // RDF_DTED
    {"", L"ecw", {L"ecw"}},              // RDF_ECW
    {"EHDR", L"", {}},                   // RDF_EHDR
    {"ELAS", L"", {}},                   // RDF_ELAS
    {"ENVI", L"hdr", {}},                // RDF_ENVI: see HeaderFormat()
    {"ERS", L"", {}},                    // RDF_ERS
    {"FIT", L"", {}},                    // RDF_FIT
    {"GIF", L"gif", {L"gif"}},           // RDF_GIF
    {"GSAG", L"", {}},                   // RDF_GSAG
    {"GSBG", L"", {}},                   // RDF_GSBG
    {"GSC", L"", {}},                    // RDF_GSC
    {"GTX", L"", {}},                    // RDF_GTX
    {"IDA", L"", {}},                    // RDF_IDA
    {"ILWIS", L"", {}},                  // RDF_ILWIS
    {"HFA", L"img", {L"img"}},           // RDF_HFA
    {"INGR", L"", {}},                   // RDF_INGR
    {"JPEG", L"jpg", {L"jpg"}},          // RDF_JPEG
    {"", L"Jpeg2000", {L"jp2", L"j2k"}}, // RDF_JPEG2000: hosts show this name
    {"MEM", L"", {}},                    // RDF_MEM
    {"MFF", L"mff", {L"mff"}},           // RDF_MFF: also see HeaderFormat()
    {"NITF", L"ntf", {L"ntf"}},          // RDF_NITF
    {"NTv2", L"", {}},                   // RDF_NTv2
    {"PAux", L"aux", {L"aux"}},          // RDF_PAux
    {"PCIDSK", L"pix", {L"pix"}},        // RDF_PCIDSK
    {"PCRaster", L"", {}},               // RDF_PCRaster
    {"PNG", L"png", {L"png"}},           // RDF_PNG
    {"PNM", L"ppm", {L"ppm"}},           // RDF_PNM
    {"RMF", L"", {}},                    // RDF_RMF
    {"RMF", L"", {}},                    // RDF_RMF2
    {"SAGA", L"", {}},                   // RDF_SAGA
    {"SGI", L"", {}},                    // RDF_SGI
    {"SRTMHGT", L"", {}},                // RDF_SRTMHGT
    {"GTiff", L"tif", {L"tif"}},         // RDF_GTiff
    {"", L"tif", {}},                    // RDF_GTiffVariant39
    {"GTiff", L"tif", {}},               // RDF_GTiffVariant40
    {"TSX", L"", {}},                    // RDF_TSX
    {"USGSDEM", L"dem", {L"dem"}},       // RDF_USGSDEM
    {"VRT", L"", {}},                    // RDF_VRT
    {"XPM", L"xpm", {L"xpm"}},           // RDF_XPM
    {"XYZ", L"", {}},                    // RDF_XYZ
}};

const FormatRow& RowOf(RasterDataFormat format) {
    const bool known = format >= RDF_Unknown && format < static_cast<int>(FORMATS.size());
    return FORMATS[static_cast<std::size_t>(known ? format : RDF_Unknown)];
}

/// A header is ENVI's or MFF's, depending on the data file that stands beside it.
RasterDataFormat HeaderFormat(const std::wstring& path) {
    if (CommonFun::IsFileExist(CommonFun::getEnviDataFilePath(path)))
        return RDF_ENVI;
    if (CommonFun::IsFileExist(CommonFun::GetFilePahWithoutExtension(path) + L".b00"))
        return RDF_MFF;
    return RDF_Unknown;
}

} // namespace

RasterDataFormat CRasterSource::GetDataFormat(const wchar_t* path) {
    if (path == nullptr)
        return RDF_Unknown;
    const std::wstring extension = CommonFun::GetExtensionName(path);
    if (extension.empty())
        return RDF_Unknown;
    if (extension == L"hdr")
        return HeaderFormat(path);
    for (std::size_t format = 0; format < FORMATS.size(); ++format)
        for (const std::wstring_view known : FORMATS[format].extensions)
            if (extension == known)
                return static_cast<RasterDataFormat>(format);
    return RDF_Unknown;
}

std::wstring CRasterSource::GetDataFormatName(RasterDataFormat format) {
    return std::wstring(RowOf(format).name);
}

GDALDriver* CRasterSource::GetDriverByRasterFormat(RasterDataFormat format) {
    return GetGDALDriverManager()->GetDriverByName(RowOf(format).driver);
}
