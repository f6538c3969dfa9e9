#include "viewer/worker/AreaFiles.h"

#include "zelto/aoi/AOISource.h"

#include "viewer/model/ShapeEditing.h"
#include "viewer/worker/Texts.h"

#include <QCoreApplication>
#include <memory>

namespace zelto::view {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(AreaFiles)
};

} // namespace

bool AddShapes(CAOISource& area, const Shapes& shapes) {
    bool added = true;
    for (const ShapePointer& shape : shapes) {
        std::unique_ptr<CDrawShape> copy(
            CDrawShape::CreateCopy(const_cast<CDrawShape*>(shape.get())));
        if (area.AddDrawShape(copy.get()))
            static_cast<void>(copy.release()); // the area's from now on
        else
            added = false;
    }
    return added;
}

AreaFileContent ReadAreas(const QString& path, const std::string& reference) {
    AreaFileContent content;
    CGISDataSource::ClearLastErrorText();
    CAOISource source;
    const char* target = reference.empty() ? nullptr : reference.c_str();
    if (source.OpenAndWarped(Wide(path).c_str(), GIS_READONLY, target) != GIS_SUCCESS) {
        content.reason = ReasonOr(path + ": " + Texts::tr("not a file of areas"));
        return content;
    }
    content.remark = ReasonOr({});
    for (int i = 0; i < source.GetDrawShapeCount(); ++i)
        if (ShapePointer shape = CopyOf(source.GetDrawShape(i)))
            content.shapes.push_back(std::move(shape));
    if (content.shapes.empty())
        content.reason = path + ": " + Texts::tr("it holds no areas");
    return content;
}

QString WriteAreas(const QString& path, const Shapes& shapes, const std::string& reference,
                   double resolution) {
    CAOISource source;
    source.SetSpatialReferenceWKT(reference.c_str());
    if (resolution > 0.0)
        source.SetResolution(resolution);
    if (!AddShapes(source, shapes))
        return path + ": " + Texts::tr("a shape cannot be saved");
    source.RecomputeExtent();
    const bool isShapefile = path.endsWith(".shp", Qt::CaseInsensitive);
    CGISDataSource::ClearLastErrorText();
    if (source.SaveAs(Wide(path).c_str(), isShapefile ? VDF_SHAPEFILE : VDF_AOI) != GIS_SUCCESS)
        return ReasonOr(path + ": " + Texts::tr("cannot be written"));
    return {};
}

} // namespace zelto::view
