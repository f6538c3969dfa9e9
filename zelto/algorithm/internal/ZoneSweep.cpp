#include "zelto/algorithm/internal/ZoneSweep.h"

#include "zelto/algorithm/internal/SampleReader.h"
#include "zelto/datasource/DataProgress.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <stdexcept>

namespace zelto {

namespace {

constexpr const wchar_t* SWEEP_TITLE = L"计算统计信息";
constexpr int SWEEP_STEPS = 100;

/// Three gigabytes of values with their weights and places.
constexpr std::size_t MOST_VALUES_KEPT = std::size_t{1} << 27;

} // namespace

ZoneSweep::ZoneSweep(const std::vector<CRasterBand*>& bands, CZonalStatistics::Weights weights,
                     std::span<const double> shares)
    : m_bands(bands), m_weights(weights), m_shares(shares) {
    for (const CRasterBand* band : bands)
        m_filters.emplace_back(*band);
}

std::vector<ZoneSweep::Group>
ZoneSweep::MakeGroups(std::span<const std::unique_ptr<ZoneOutline>> zones) const {
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < zones.size(); ++i)
        if (zones[i]->FirstRow() < zones[i]->EndRow())
            order.push_back(i);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return zones[a]->FirstRow() < zones[b]->FirstRow();
    });
    std::vector<Group> groups;
    for (const std::size_t i : order) {
        const ZoneOutline& zone = *zones[i];
        PixelWindow window = {zone.FirstColumn(), zone.FirstRow(),
                              zone.EndColumn() - zone.FirstColumn(),
                              zone.EndRow() - zone.FirstRow()};
        if (!groups.empty() &&
            window.top < groups.back().window.top + groups.back().window.height) {
            const PixelWindow& other = groups.back().window;
            const int left = std::min(window.left, other.left);
            const int right = std::max(window.left + window.width, other.left + other.width);
            const int end = std::max(window.top + window.height, other.top + other.height);
            groups.back().window = {left, other.top, right - left, end - other.top};
        } else {
            groups.push_back({window, {}});
        }
        groups.back().zones.push_back(i);
    }
    return groups;
}

bool ZoneSweep::Run(std::span<const std::unique_ptr<ZoneOutline>> zones, CDataProgress* progress) {
    m_progress = progress;
    if (progress != nullptr)
        progress->BeginProgress(SWEEP_TITLE, SWEEP_STEPS);
    // Zones beside the raster keep these.
    const std::vector<CZonalStatistics::Band> nothing(m_bands.size(),
                                                      ZoneValues(false).Finish(m_shares));
    m_results.assign(zones.size(), nothing);
    const std::vector<Group> groups = MakeGroups(zones);
    m_rowsInAll = std::accumulate(
        groups.begin(), groups.end(), std::int64_t{0},
        [](std::int64_t sum, const Group& group) { return sum + group.window.height; });
    return std::all_of(groups.begin(), groups.end(),
                       [&](const Group& group) { return Visit(group, zones); });
}

bool ZoneSweep::Visit(const Group& group, std::span<const std::unique_ptr<ZoneOutline>> zones) {
    const PixelWindow& window = group.window;
    const int bandCount = std::max(static_cast<int>(m_bands.size()), 1);
    const int maximumRows = std::max(READ_BUDGET_SAMPLES / window.width / bandCount, 1);
    std::vector<OpenZone> open;
    auto next = group.zones.begin();
    const auto visit = [&](std::span<const double*> samples, int firstRow, int rows) {
        const int endRow = window.top + firstRow + rows;
        for (; next != group.zones.end() && zones[*next]->FirstRow() < endRow; ++next) {
            zones[*next]->Rewind();
            open.push_back(
                {*next, zones[*next].get(),
                 std::vector<ZoneValues>(m_bands.size(), ZoneValues(!m_shares.empty()))});
        }
        for (OpenZone& zone : open)
            AddRows(zone, window, samples, firstRow, rows);
        const auto isOver = [&](const OpenZone& zone) { return zone.outline->EndRow() <= endRow; };
        for (OpenZone& zone : open)
            if (isOver(zone))
                Close(zone);
        open.erase(std::remove_if(open.begin(), open.end(), isOver), open.end());
        return Step(rows);
    };
    return VisitBandStrips(
        m_bands, window,
        LimitedGrid(window.width, window.height, std::numeric_limits<std::int64_t>::max()),
        maximumRows, visit);
}

/// @param firstRow,rows of the window, which `samples` hold packed
void ZoneSweep::AddRows(OpenZone& zone, const PixelWindow& window, std::span<const double*> samples,
                        int firstRow, int rows) {
    const int first = window.top + firstRow;
    const int end = std::min(first + rows, zone.outline->EndRow());
    for (int row = std::max(first, zone.outline->FirstRow()); row < end; ++row) {
        if (m_weights == CZonalStatistics::Weights::Coverage)
            zone.outline->FindCoverage(row, m_spans);
        else
            zone.outline->FindCenters(row, m_spans);
        const auto rowStart =
            static_cast<std::size_t>(row - first) * static_cast<std::size_t>(window.width);
        for (std::size_t b = 0; b < m_bands.size(); ++b) {
            const std::size_t before = zone.values[b].Kept();
            for (const ZoneSpan& span : m_spans) {
                const auto begin = rowStart + static_cast<std::size_t>(span.begin - window.left);
                const auto count = static_cast<std::size_t>(span.end - span.begin);
                zone.values[b].Add(m_filters[b].Select({samples[b] + begin, count}), span.weight);
            }
            m_kept += zone.values[b].Kept() - before;
        }
        if (m_kept > MOST_VALUES_KEPT)
            throw std::runtime_error("the zones hold too many values for quantiles");
    }
}

void ZoneSweep::Close(OpenZone& zone) {
    for (std::size_t b = 0; b < m_bands.size(); ++b) {
        m_kept -= zone.values[b].Kept();
        m_results[zone.number][b] = zone.values[b].Finish(m_shares);
    }
}

bool ZoneSweep::Step(int rows) {
    m_rowsDone += rows;
    const auto percent = SWEEP_STEPS * m_rowsDone / m_rowsInAll;
    return m_progress == nullptr ||
           m_progress->StepProgress(static_cast<int>(percent), SWEEP_TITLE);
}

} // namespace zelto
