#include "viewer/views/RegionTable.h"

#include <QCoreApplication>

namespace zelto::view {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(RegionTable)
};

} // namespace

NumberTable MakeRegionTable(const QString& image, const RegionAnswer& answer) {
    NumberTable table;
    const bool hasShapes = !answer.reports.empty() && !answer.reports.front().shape.empty();
    table.title = image;
    if (hasShapes)
        table.columns += Texts::tr("Shape");
    table.columns +=
        {Texts::tr("Band"), Texts::tr("Pixels"),    Texts::tr("Minimum"), Texts::tr("Maximum"),
         Texts::tr("Mean"), Texts::tr("Deviation"), Texts::tr("2 %"),     Texts::tr("98 %")};
    const std::size_t bands = answer.reports.empty() ? 0 : answer.reports.front().bands.size();
    for (std::size_t b = 0; b < bands; ++b)
        table.columns += Texts::tr("Covariance %1").arg(b + 1);
    for (const host::RegionReport& report : answer.reports) {
        for (std::size_t b = 0; b < report.bands.size(); ++b) {
            const CRegionStatistics::Band& band = report.bands[b];
            QStringList row;
            if (hasShapes)
                row += QString::fromStdString(report.shape);
            row += {QString::number(band.index + 1), QString::number(band.count),
                    TableNumber(band.minimum),       TableNumber(band.maximum),
                    TableNumber(band.mean),          TableNumber(band.standardDeviation),
                    TableNumber(band.lowPercentile), TableNumber(band.highPercentile)};
            for (std::size_t other = 0; other < bands; ++other)
                if (const std::size_t cell = b * bands + other; cell < report.covariance.size())
                    row += TableNumber(report.covariance[cell]);
            table.rows.push_back(row);
        }
    }
    return table;
}

NumberTable MakeHistogramTable(const QString& image,
                               const std::vector<RegionHistogram>& histograms) {
    NumberTable table;
    table.title = image;
    table.columns = {Texts::tr("Band"), Texts::tr("From"), Texts::tr("To"), Texts::tr("Pixels")};
    for (const RegionHistogram& each : histograms) {
        const host::BandHistogram& histogram = each.histogram;
        for (std::size_t i = 0; i < histogram.counts.size(); ++i) {
            const double from = histogram.low + histogram.width * static_cast<double>(i);
            table.rows.push_back({QString::number(each.band + 1), TableNumber(from),
                                  TableNumber(from + histogram.width),
                                  QString::number(histogram.counts[i])});
        }
    }
    return table;
}

} // namespace zelto::view
