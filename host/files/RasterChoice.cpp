#include "host/files/RasterChoice.h"

#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/raster/RasterSource.h"

#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/Open.h"

#include <cpl_error.h>
#include <cpl_string.h>
#include <gdal_priv.h>

namespace zelto::host {

namespace {

/// The format whose driver or usual extension has this name; RDF_Unknown when none has.
RasterDataFormat FormatCalled(const std::string& name) {
    for (int number = RDF_AAIGrid; number <= RDF_XYZ; ++number) {
        const auto format = static_cast<RasterDataFormat>(number);
        GDALDriver* driver = CRasterSource::GetDriverByRasterFormat(format);
        const std::string extension = Narrow(CRasterSource::GetDataFormatName(format));
        if ((driver != nullptr && EQUAL(driver->GetDescription(), name.c_str())) ||
            EQUAL(extension.c_str(), name.c_str()))
            return format;
    }
    return RDF_Unknown;
}

bool IsGTiff(RasterDataFormat format) {
    GDALDriver* driver = CRasterSource::GetDriverByRasterFormat(format);
    return driver != nullptr && EQUAL(driver->GetDescription(), "GTiff");
}

} // namespace

PixelDataType ParsePixelType(const std::string& name) {
    for (int number = PDT_Byte; number <= PDT_Float64; ++number) {
        const auto type = static_cast<PixelDataType>(number);
        if (EQUAL(Narrow(CRasterAlgorithm::DataTypeToWstring(type)).c_str(), name.c_str()))
            return type;
    }
    throw UsageError("--type: '" + name +
                     "' is none of Byte, UInt16, Int16, UInt32, Int32, Float32, Float64");
}

RasterDataFormat ChooseFormat(const std::string& name, const std::string& path) {
    const std::wstring widePath = Wide(path);
    RasterDataFormat format = RDF_Unknown;
    if (name.empty())
        format = CRasterSource::GetDataFormat(widePath.c_str());
    // By path alone a header is ENVI's only once its data file exists.
    if (format == RDF_Unknown)
        format = FormatCalled(name.empty() ? Narrow(CommonFun::GetExtensionName(widePath)) : name);
    if (format != RDF_Unknown)
        return format;
    if (name.empty())
        throw UsageError("'" + path + "' does not tell the format by its extension; use --format");
    throw UsageError("--format: '" + name + "' is no format that zelto knows");
}

void RequireCreatable(RasterDataFormat format, const std::string& path) {
    GDALDriver* driver = CRasterSource::GetDriverByRasterFormat(format);
    if (driver != nullptr && CPLFetchBool(driver->GetMetadata(), GDAL_DCAP_CREATE, false))
        return;
    const std::string name = driver != nullptr ? driver->GetDescription()
                                               : Narrow(CRasterSource::GetDataFormatName(format));
    throw Failure(path, "files of the format " + name + " cannot be created");
}

void CheckCreationOptions(const std::vector<std::string>& options, RasterDataFormat format) {
    for (const std::string& option : options) {
        const std::size_t equals = option.find('=');
        if (equals == std::string::npos || equals == 0)
            throw UsageError("--co: '" + option + "' is not KEY=VALUE");
    }
    if (!options.empty() && !IsGTiff(format))
        throw UsageError("--co: only GeoTIFF takes creation options");
    CPLStringList list;
    for (const std::string& option : options)
        list.AddString(option.c_str());
    GDALDriver* const driver = CRasterSource::GetDriverByRasterFormat(format);
    // It tells of a key or value that the driver does not know in a warning.
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    ForgetReasons();
    if (!options.empty() && !GDALValidateCreationOptions(GDALDriver::ToHandle(driver), list.List()))
        throw UsageError("--co: " + LastReason("the driver does not know one of the options"));
}

} // namespace zelto::host
