#include "host/report/SampleClasses.h"

#include "zelto/algorithm/RasterAlgorithm.h"
#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/vector/VectorSource.h"

#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/Open.h"
#include "host/files/Reference.h"
#include "host/files/Region.h"

#include <ogrsf_frmts.h>

#include <algorithm>
#include <cmath>

namespace zelto::host {

namespace {

SampleClass& ClassWith(SampleClasses& classes, double label) {
    const auto found = std::find_if(classes.begin(), classes.end(),
                                    [&](const SampleClass& c) { return c.label == label; });
    if (found != classes.end())
        return *found;
    classes.emplace_back();
    classes.back().label = label;
    classes.back().name = "class " + FormatNumber(label);
    classes.back().pixels = CImgSamplePixels(label);
    return classes.back();
}

/// The class that an attribute names: by number where it is one, else numbered as they come.
SampleClass& ClassNamed(SampleClasses& classes, const OGRFeature& feature, int field) {
    const std::string name = feature.GetFieldAsString(field);
    const OGRFieldType type = feature.GetFieldDefnRef(field)->GetType();
    if (type == OFTInteger || type == OFTInteger64 || type == OFTReal)
        return ClassWith(classes, feature.GetFieldAsDouble(field));
    const auto found = std::find_if(classes.begin(), classes.end(),
                                    [&](const SampleClass& c) { return c.name == name; });
    if (found != classes.end())
        return *found;
    SampleClass& added = ClassWith(classes, static_cast<double>(classes.size()) + 1);
    added.name = name;
    return added;
}

void AddCopies(SampleClass& sampleClass, const CAOISource& area) {
    for (int i = 0; i < area.GetDrawShapeCount(); ++i)
        sampleClass.shapes.emplace_back(CDrawShape::CreateCopy(area.GetDrawShape(i)));
}

void AddFeatures(SampleClasses& classes, OGRLayer& layer, int field, const std::string& wkt) {
    auto target = ParseReference(wkt);
    const bool transforming = target && layer.GetSpatialRef() != nullptr;
    for (const auto& feature : layer) {
        OGRGeometry* geometry = feature->GetGeometryRef();
        if (geometry == nullptr || (transforming && geometry->transformTo(&*target) != OGRERR_NONE))
            continue;
        const std::unique_ptr<CAOISource> area(CAOISource::Create(geometry));
        if (area)
            AddCopies(ClassNamed(classes, *feature, field), *area);
    }
}

SampleClasses ClassesByField(const std::string& path, const std::string& field,
                             const CRasterSource& raster) {
    CVectorSource source;
    OpenOrFail(source, path);
    SampleClasses classes;
    bool found = false;
    for (int i = 0; i < source.GetLayerCount(); ++i) {
        OGRLayer& layer = *source.GetVectorLayer(i)->GetOGRLayer();
        const int index = layer.GetLayerDefn()->GetFieldIndex(field.c_str());
        if (index < 0)
            continue;
        found = true;
        AddFeatures(classes, layer, index, raster.GetProjectionWKT());
    }
    if (!found)
        throw Failure(path, "has no field '" + field + "'");
    return classes;
}

SampleClasses ClassesByPosition(const std::string& path, const std::string& labels,
                                const CRasterSource& raster) {
    RegionOptions region;
    region.aoi = path;
    const auto area = MakeRegion(region, raster);
    const auto count = static_cast<std::size_t>(area->GetDrawShapeCount());
    std::vector<double> numbers;
    if (!labels.empty())
        numbers = ParseNumbers("--labels", labels);
    if (numbers.size() > 1 && numbers.size() != count)
        throw UsageError("--labels: " + std::to_string(numbers.size()) + " labels for " +
                         std::to_string(count) + " shapes");
    SampleClasses classes;
    for (std::size_t i = 0; i < count; ++i) {
        double label = static_cast<double>(i) + 1;
        if (!numbers.empty())
            label = numbers.size() == 1 ? numbers[0] : numbers[i];
        CDrawShape* const shape = area->GetDrawShape(static_cast<int>(i));
        ClassWith(classes, label).shapes.emplace_back(CDrawShape::CreateCopy(shape));
    }
    return classes;
}

void GiveNames(SampleClasses& classes, const std::string& text) {
    std::size_t start = 0;
    for (SampleClass& sampleClass : classes) {
        if (start == std::string::npos)
            throw UsageError("--names: fewer names than the " + std::to_string(classes.size()) +
                             " classes");
        const std::size_t comma = text.find(',', start);
        sampleClass.name = text.substr(start, comma - start);
        start = comma == std::string::npos ? comma : comma + 1;
    }
    if (start != std::string::npos)
        throw UsageError("--names: more names than the " + std::to_string(classes.size()) +
                         " classes");
}

/// Whether a shape has no samples because it has no pixels; the engine's false also stands for
/// pixels that could not be read, and for a lack of memory.
bool IsOffImage(const std::string& reason) {
    return reason.find(NO_OVERLAP) != std::string::npos ||
           reason.find(NO_PIXELS) != std::string::npos;
}

/// The values of a sample, into a place that is used again and again.
void ReadSample(const CImgSamplePixels& pixels, int index, std::vector<double>& sample) {
    for (std::size_t b = 0; b < sample.size(); ++b)
        sample[b] = pixels.Get(index, static_cast<int>(b));
}

} // namespace

SampleClasses MakeClasses(const std::string& aoi, const LabelOptions& options,
                          const CRasterSource& raster) {
    SampleClasses classes = options.field.empty() ? ClassesByPosition(aoi, options.labels, raster)
                                                  : ClassesByField(aoi, options.field, raster);
    if (classes.empty())
        throw Failure(aoi, "holds no shapes");
    if (!options.names.empty())
        GiveNames(classes, options.names);
    return classes;
}

SampleClasses ClassesOf(const CClassifySampleFile& file) {
    SampleClasses classes;
    for (int i = 0; i < file.GetClassCount(); ++i) {
        const CClassifySampleFile::ClassRecord* record = file.GetClass(i);
        if (record == nullptr)
            break;
        classes.emplace_back();
        classes.back().label = record->m_values[0];
        classes.back().name = Narrow(record->GetName());
        classes.back().pixels = CImgSamplePixels(classes.back().label);
        for (CDrawShape* shape : record->m_sampleShapes)
            classes.back().shapes.emplace_back(CDrawShape::CreateCopy(shape));
    }
    return classes;
}

void CollectPixels(SampleClasses& classes, CRasterSource& raster, const std::string& path) {
    for (SampleClass& sampleClass : classes) {
        for (const auto& shape : sampleClass.shapes) {
            ForgetReasons();
            const bool collected = CRasterAlgorithm::GetSamplePixelFromDrawShape(
                &raster, shape.get(), &sampleClass.pixels);
            if (collected)
                continue;
            const std::string reason = LastReason("cannot be read");
            if (!IsOffImage(reason))
                throw Failure(path, reason);
            ++sampleClass.shapesOffImage;
        }
    }
}

SampleStatistics StatisticsOf(const CImgSamplePixels& pixels, int bandCount) {
    const auto bands = static_cast<std::size_t>(bandCount);
    SampleStatistics result;
    result.mean.assign(bands, 0.0);
    result.covariance.assign(bands * bands, 0.0);
    const int count = pixels.GetSampleSize();
    std::vector<double> sample(bands);
    for (int i = 0; i < count; ++i) {
        ReadSample(pixels, i, sample);
        if (i == 0)
            result.minimum = result.maximum = sample;
        for (std::size_t b = 0; b < bands; ++b) {
            result.mean[b] += sample[b];
            result.minimum[b] = std::min(result.minimum[b], sample[b]);
            result.maximum[b] = std::max(result.maximum[b], sample[b]);
        }
    }
    result.minimum.resize(bands);
    result.maximum.resize(bands);
    for (double& mean : result.mean)
        mean = count > 0 ? mean / count : 0.0;
    for (int i = 0; i < count; ++i) {
        ReadSample(pixels, i, sample);
        for (std::size_t a = 0; a < bands; ++a)
            for (std::size_t b = 0; b < bands; ++b)
                result.covariance[a * bands + b] +=
                    (sample[a] - result.mean[a]) * (sample[b] - result.mean[b]) / count;
    }
    return result;
}

CClassifySampleFile::ClassRecord MakeRecord(const SampleClass& sampleClass, int bandCount) {
    const SampleStatistics statistics = StatisticsOf(sampleClass.pixels, bandCount);
    CClassifySampleFile::ClassRecord record;
    record.SetName(Wide(sampleClass.name));
    record.m_values = {static_cast<std::int32_t>(std::lround(sampleClass.label)),
                       sampleClass.pixels.GetSampleSize(), 0};
    record.m_bandCount = bandCount;
    record.m_firstArray = statistics.mean;
    record.m_secondArray = statistics.minimum;
    record.m_thirdArray = statistics.maximum;
    record.m_matrix = statistics.covariance;
    record.m_hasSamples = 1;
    record.m_sampleShapeCount = static_cast<std::int32_t>(sampleClass.shapes.size());
    for (const auto& shape : sampleClass.shapes)
        record.m_sampleShapes.push_back(CDrawShape::CreateCopy(shape.get()));
    return record;
}

} // namespace zelto::host
