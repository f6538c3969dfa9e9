#include "tests/faults/Meaning.h"

#include "tests/support/TemporaryFolder.h"

#include <gdal_alg.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <filesystem>
#include <functional>
#include <sstream>

namespace zelto::test {

namespace {

/// The bands' checksums; a file with a hole in it fails to read.
void DescribeBand(GDALRasterBand& band, std::ostream& out) {
    CPLErrorReset();
    const int sum =
        GDALChecksumImage(GDALRasterBand::ToHandle(&band), 0, 0, band.GetXSize(), band.GetYSize());
    if (sum < 0 || CPLGetLastErrorType() == CE_Failure)
        out << " damaged";
    out << ' ' << band.GetXSize() << 'x' << band.GetYSize() << ':' << sum;
}

void DescribeRaster(GDALDataset& raster, std::ostream& out) {
    double place[6] = {};
    if (raster.GetGeoTransform(place) == CE_None)
        for (const double term : place)
            out << ' ' << term;
    out << ' ' << raster.GetProjectionRef();
    for (int i = 1; i <= raster.GetRasterCount(); ++i) {
        GDALRasterBand& band = *raster.GetRasterBand(i);
        DescribeBand(band, out);
        for (int level = 0; level < band.GetOverviewCount(); ++level)
            DescribeBand(*band.GetOverview(level), out);
    }
}

void DescribeVector(GDALDataset& file, std::ostream& out) {
    for (OGRLayer* layer : file.GetLayers()) {
        out << ' ' << layer->GetName() << ':' << layer->GetGeomType();
        CPLErrorReset();
        for (const auto& feature : *layer) {
            const OGRGeometry* const geometry = feature->GetGeometryRef();
            out << '\n' << (geometry != nullptr ? geometry->exportToWkt() : "");
            for (int i = 0; i < feature->GetFieldCount(); ++i)
                out << ' ' << feature->GetFieldAsString(i);
        }
        if (CPLGetLastErrorType() == CE_Failure)
            out << " damaged";
    }
}

} // namespace

std::string PixelsOf(const std::string& path) {
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const GDALDatasetUniquePtr raster(GDALDataset::Open(path.c_str(), GDAL_OF_RASTER));
    std::ostringstream out;
    for (int i = 1; raster && i <= raster->GetRasterCount(); ++i)
        DescribeBand(*raster->GetRasterBand(i), out);
    return out.str();
}

std::string MeaningOf(const std::string& path) {
    if (!std::filesystem::exists(path))
        return "";
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const GDALDatasetUniquePtr file(GDALDataset::Open(path.c_str()));
    std::ostringstream out;
    out.precision(17);
    if (!file) {
        const std::string bytes = ReadFile(path);
        out << bytes.size() << " bytes: " << std::hash<std::string>()(bytes);
        return out.str();
    }
    out << file->GetDriverName();
    if (file->GetRasterCount() > 0)
        DescribeRaster(*file, out);
    else
        DescribeVector(*file, out);
    return out.str();
}

} // namespace zelto::test
