#include "viewer/views/RegionTable.h"

#include <QCoreApplication>

namespace zelto::view {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(RegionTable)
};

/// As many digits as tell, with a point whatever the locale, as tables are copied.
QString Number(double value) {
    return QString::number(value, 'g', 10);
}

} // namespace

StatisticsTable MakeRegionTable(const QString& image, const RegionAnswer& answer) {
    StatisticsTable table;
    const bool hasShapes = !answer.reports.empty() && answer.reports.front().shape > 0;
    table.title = image;
    if (hasShapes)
        table.columns += Texts::tr("Shape");
    table.columns +=
        {Texts::tr("Band"), Texts::tr("Pixels"),    Texts::tr("Minimum"), Texts::tr("Maximum"),
         Texts::tr("Mean"), Texts::tr("Deviation"), Texts::tr("2 %"),     Texts::tr("98 %")};
    const std::size_t bands = answer.reports.empty() ? 0 : answer.reports.front().bands.size();
    for (std::size_t b = 0; b < bands; ++b)
        table.columns += Texts::tr("Covariance %1").arg(b + 1);
    for (const RegionReport& report : answer.reports) {
        for (std::size_t b = 0; b < report.bands.size(); ++b) {
            const CRegionStatistics::Band& band = report.bands[b];
            QStringList row;
            if (hasShapes)
                row += QString::number(report.shape);
            row += {QString::number(band.index + 1),
                    QString::number(band.count),
                    Number(band.minimum),
                    Number(band.maximum),
                    Number(band.mean),
                    Number(band.standardDeviation),
                    Number(band.lowPercentile),
                    Number(band.highPercentile)};
            for (std::size_t other = 0; other < bands; ++other)
                if (const std::size_t cell = b * bands + other; cell < report.covariance.size())
                    row += Number(report.covariance[cell]);
            table.rows.push_back(row);
        }
    }
    return table;
}

} // namespace zelto::view
