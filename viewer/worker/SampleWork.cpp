#include "viewer/worker/SampleWork.h"

#include "zelto/classify/ClassifySampleFile.h"

#include "host/report/SampleClasses.h"
#include "viewer/model/ShapeEditing.h"
#include "viewer/worker/RegionWork.h"
#include "viewer/worker/Texts.h"

#include <QCoreApplication>
#include <cmath>

namespace zelto::view {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(SampleWork)
};

host::SampleClass MakeClass(const SampleShapes& shapes) {
    host::SampleClass made;
    made.label = shapes.number;
    made.name = shapes.name.toStdString();
    made.pixels = CImgSamplePixels(made.label);
    for (const auto& shape : shapes.shapes)
        made.shapes.emplace_back(CDrawShape::CreateCopy(const_cast<CDrawShape*>(shape.get())));
    return made;
}

ClassSpectrum SpectrumOf(const host::SampleClass& sampleClass, int bandCount) {
    const host::SampleStatistics statistics = host::StatisticsOf(sampleClass.pixels, bandCount);
    ClassSpectrum spectrum;
    spectrum.number = static_cast<int>(sampleClass.label);
    spectrum.pixels = sampleClass.pixels.GetSampleSize();
    spectrum.mean = statistics.mean;
    for (int b = 0; b < bandCount; ++b)
        spectrum.deviation.push_back(
            std::sqrt(statistics.covariance[static_cast<std::size_t>(b * bandCount + b)]));
    return spectrum;
}

QString Write(const QString& path, const host::SampleClasses& classes, int bandCount) {
    CClassifySampleFile file;
    file.SetTag(CClassifySampleFile::FILE_TAG);
    for (const host::SampleClass& each : classes)
        file.AddClass(host::MakeRecord(each, bandCount));
    CGISDataSource::ClearLastErrorText();
    if (file.WriteClassifySampleFile(Wide(path)) != 1)
        return ReasonOr(path + ": " + Texts::tr("cannot be written"));
    return {};
}

} // namespace

SampleAnswer CollectSamples(const SampleRequest& request, CDataProgress& progress) {
    SampleAnswer answer;
    const auto source = OpenForNumbers(request.path, request.reference, answer.reason);
    if (!source)
        return answer;
    host::SampleClasses classes;
    for (const SampleShapes& each : request.classes)
        classes.push_back(MakeClass(each));
    progress.BeginProgress(L"", 1);
    host::CollectPixels(classes, *source, request.path.toStdString());
    for (const host::SampleClass& each : classes)
        answer.spectra.push_back(SpectrumOf(each, source->GetBandCount()));
    if (!progress.StepProgress(1, L"")) {
        answer.reason = Texts::tr("cancelled");
        return answer;
    }
    if (!request.target.isEmpty())
        answer.reason = Write(request.target, classes, source->GetBandCount());
    return answer;
}

SampleFileContent ReadSamples(const QString& path) {
    SampleFileContent content;
    CClassifySampleFile file;
    if (file.ReadClassifySampleFile(Wide(path)) != 1) {
        content.reason = ReasonOr(path + ": " + Texts::tr("not a file of samples"));
        return content;
    }
    for (const host::SampleClass& each : host::ClassesOf(file)) {
        SampleShapes shapes{0, QString::fromStdString(each.name), {}};
        for (const auto& shape : each.shapes)
            shapes.shapes.push_back(CopyOf(shape.get()));
        content.classes.push_back(shapes);
    }
    return content;
}

} // namespace zelto::view
