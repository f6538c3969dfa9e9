#include "viewer/worker/ImageWork.h"

#include "zelto/baselib/NewFileSet.h"
#include "zelto/coordinate/CoordinateAlgorithm.h"
#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "host/files/PolygonBuild.h"
#include "host/files/PyramidBuild.h"
#include "host/files/RasterCopy.h"
#include "viewer/worker/Texts.h"

#include <QCoreApplication>
#include <QSaveFile>
#include <cmath>
#include <vector>

namespace zelto::view {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(ImageWork)
};

QString Failure(const QString& path, const QString& otherwise) {
    return ReasonOr(path + ": " + otherwise);
}

/// One colour of a picture, with red as the first band.
std::vector<unsigned char> ChannelOf(const QImage& picture, int band) {
    const int shifts[] = {16, 8, 0, 24};
    std::vector<unsigned char> values;
    values.reserve(static_cast<std::size_t>(picture.width()) *
                   static_cast<std::size_t>(picture.height()));
    for (int row = 0; row < picture.height(); ++row) {
        const auto* line = reinterpret_cast<const QRgb*>(picture.constScanLine(row));
        for (int column = 0; column < picture.width(); ++column)
            values.push_back(static_cast<unsigned char>(line[column] >> shifts[band]));
    }
    return values;
}

QString WriteGeoTiff(const QString& path, const QImage& picture, const CBoundingBox& box,
                     const std::string& reference) {
    CNewFileSet files(Wide(path));
    if (!files.IsOpen())
        return Failure(path, Texts::tr("cannot be written"));
    double place[6] = {box.GetLeft(), box.GetWidth() / picture.width(),   0.0, box.GetTop(),
                       0.0,           -box.GetHeight() / picture.height()};
    char compression[] = "COMPRESS=DEFLATE";
    char alpha[] = "ALPHA=YES";
    char colors[] = "PHOTOMETRIC=RGB";
    char* options[] = {compression, colors, alpha, nullptr};
    CRasterSource made;
    CGISDataSource::ClearLastErrorText();
    bool written =
        made.CreateRaster(RDF_GTiff, files.GetTemporaryPath().c_str(), picture.width(),
                          picture.height(), 4, PDT_Byte, place,
                          reference.empty() ? nullptr : reference.c_str(), options) == GIS_SUCCESS;
    for (int band = 0; written && band < 4; ++band) {
        std::vector<unsigned char> values = ChannelOf(picture, band);
        written = made.GetRasterBand(band)->WriteBlock(
                      0, 0, picture.width(), picture.height(), values.data(), picture.width(),
                      picture.height(), PDT_Byte, 0, 0) == GIS_SUCCESS;
    }
    made.Close();
    if (!written || !ReasonOr({}).isEmpty() || !files.Commit())
        return Failure(path, Texts::tr("cannot be written"));
    return {};
}

QString WritePng(const QString& path, const QImage& picture) {
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && picture.save(&file, "PNG") && file.commit())
        return {};
    return path + ": " + file.errorString();
}

} // namespace

QString BuildPyramid(const QString& path, const QString& resampling, CDataProgress& progress) {
    progress.BeginProgress(L"", 100);
    host::BuildPyramid(path.toStdString(), resampling.toStdString(), {}, progress);
    return {};
}

QString CopyImage(const QString& path, const QString& target, CDataProgress& progress) {
    host::CopyOptions options;
    options.from = path.toStdString();
    options.to = target.toStdString();
    options.overwrite = true; // the dialog has asked
    QStringList lost;
    for (const std::string& what : host::CopyRaster(options, progress))
        lost << QString::fromStdString(what);
    return lost.isEmpty()
               ? QString()
               : Failure(target, Texts::tr("the format cannot hold") + " " + lost.join(", "));
}

QString MakePolygons(const QString& path, const QString& target, int band, bool eight,
                     CDataProgress& progress) {
    CGISDataSource::ClearLastErrorText();
    CRasterSource source;
    if (source.Open(Wide(path).c_str(), GIS_READONLY, true) != GIS_SUCCESS)
        return Failure(path, Texts::tr("cannot be opened"));
    host::PolygonOptions options;
    options.band = band;
    options.eight = eight;
    progress.BeginProgress(L"", 100);
    host::BuildPolygons(source, path.toStdString(), target.toStdString(), options, progress);
    return {};
}

QString PlaceImage(const QString& path, const Placement& placement) {
    const std::string srs = placement.srs.toStdString();
    if (!srs.empty() && !CCoordinateAlgorithm::IsValidCoordinate(srs.c_str()))
        return placement.srs + ": " + Texts::tr("not a reference system");
    CRasterSource source;
    CGISDataSource::ClearLastErrorText();
    if (source.Open(Wide(path).c_str(), GIS_UPDATE, false) != GIS_SUCCESS)
        return Failure(path, Texts::tr("cannot be opened"));
    if (source.GetAccess() != GIS_UPDATE)
        return path + ": " + Texts::tr("it can only be read");
    if (placement.box) {
        const CBoundingBox& box = *placement.box;
        double place[6] = {box.GetLeft(), box.GetWidth() / source.GetWidth(),   0.0, box.GetTop(),
                           0.0,           -box.GetHeight() / source.GetHeight()};
        if (source.SetGeoTransform(place, true) != GIS_SUCCESS)
            return Failure(path, Texts::tr("the format cannot store a place"));
    }
    if (!srs.empty() && source.SetProjection(srs.c_str()) != GIS_SUCCESS)
        return Failure(path, Texts::tr("the format cannot store a reference system"));
    CGISDataSource::ClearLastErrorText();
    source.Close();
    return ReasonOr({});
}

QString WritePicture(const QString& path, const QImage& picture, const CBoundingBox& box,
                     const std::string& reference) {
    const QImage straight = picture.convertToFormat(QImage::Format_ARGB32);
    if (path.endsWith(".tif", Qt::CaseInsensitive) || path.endsWith(".tiff", Qt::CaseInsensitive))
        return WriteGeoTiff(path, straight, box, reference);
    return WritePng(path, straight);
}

} // namespace zelto::view
