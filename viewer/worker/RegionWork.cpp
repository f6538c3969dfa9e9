#include "viewer/worker/RegionWork.h"

#include "zelto/aoi/AOISource.h"

#include "viewer/worker/AreaFiles.h"
#include "viewer/worker/Texts.h"

#include <QCoreApplication>

namespace zelto::view {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(RegionWork)
};

constexpr double LOW_PERCENTILE = 2.0;
constexpr double HIGH_PERCENTILE = 98.0;

/// @return false when it failed or was cancelled
bool ComputeOne(CRasterSource& source, const Shapes& shapes, host::RegionReport& report,
                CDataProgress& progress) {
    CAOISource area;
    AddShapes(area, shapes);
    CRegionStatistics statistics(&source);
    if (!shapes.empty())
        statistics.SetAOI(&area);
    CGISDataSource::ClearLastErrorText();
    if (statistics.ComputeWithCovariance(&progress) != GIS_SUCCESS ||
        statistics.ComputePercentiles(LOW_PERCENTILE, HIGH_PERCENTILE, &progress) != GIS_SUCCESS)
        return false;
    report.hasPercentiles = true;
    report.bands = statistics.GetBands();
    report.covariance = statistics.GetCovariance();
    report.covarianceCount = statistics.GetCovarianceCount();
    return true;
}

} // namespace

std::unique_ptr<CRasterSource> OpenForNumbers(const QString& path, const std::string& reference,
                                              QString& reason) {
    CGISDataSource::ClearLastErrorText();
    auto source = std::make_unique<CRasterSource>();
    const std::wstring name = Wide(path);
    GISError error = GIS_FAILED;
    if (!reference.empty())
        error = source->OpenAndWarped(name.c_str(), GIS_READONLY, reference.c_str());
    else
        error = source->Open(name.c_str(), GIS_READONLY, false);
    if (error == GIS_SUCCESS && source->GetBandCount() > 0)
        return source;
    reason = ReasonOr(path + ": " + Texts::tr("cannot be opened"));
    return nullptr;
}

RegionAnswer ComputeRegions(const RegionRequest& request, CDataProgress& progress) {
    RegionAnswer answer;
    const auto source = OpenForNumbers(request.path, request.reference, answer.reason);
    if (!source)
        return answer;
    std::vector<Shapes> regions = {request.shapes};
    if (request.eachShape) {
        regions.clear();
        for (const auto& shape : request.shapes)
            regions.push_back({shape});
    }
    for (std::size_t i = 0; i < regions.size(); ++i) {
        host::RegionReport report;
        if (request.eachShape)
            report.shape = std::to_string(i + 1);
        if (!ComputeOne(*source, regions[i], report, progress)) {
            answer.reason = ReasonOr(request.path + ": " + Texts::tr("its pixels cannot be read"));
            return answer;
        }
        answer.reports.push_back(std::move(report));
    }
    return answer;
}

} // namespace zelto::view
