#include "viewer/worker/HistogramWork.h"

#include "zelto/aoi/AOISource.h"
#include "zelto/raster/RasterBand.h"

#include "viewer/worker/AreaFiles.h"
#include "viewer/worker/Texts.h"

#include <QCoreApplication>
#include <utility>

namespace zelto::view {

namespace {

constexpr int BUCKETS = 256;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(HistogramWork)
};

} // namespace

RegionHistograms CountRegion(const RegionRequest& request, CDataProgress& progress) {
    RegionHistograms answer;
    const auto source = OpenForNumbers(request.path, request.reference, answer.reason);
    if (!source)
        return answer;
    CAOISource area;
    AddShapes(area, request.shapes);
    CRegionStatistics region(source.get());
    if (!request.shapes.empty())
        region.SetAOI(&area);
    CGISDataSource::ClearLastErrorText();
    if (region.Compute(&progress) != GIS_SUCCESS) {
        answer.reason = ReasonOr(request.path + ": " + Texts::tr("its pixels cannot be read"));
        return answer;
    }
    std::vector<host::BandHistogram> histograms = host::CountValues(
        region, *source, BUCKETS, std::nullopt, request.path.toStdString(), progress);
    for (std::size_t i = 0; i < histograms.size(); ++i)
        answer.bands.push_back({region.GetBands()[i].index, std::move(histograms[i])});
    return answer;
}

} // namespace zelto::view
