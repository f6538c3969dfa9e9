#include "zelto/raster/internal/JointSampling.h"

#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/raster/internal/BlockLimit.h"
#include "zelto/raster/internal/SampleStatistics.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <numeric>
#include <string_view>

namespace zelto {

namespace {

/// Pixels that are read at once: a quarter of what the samples may take.
constexpr std::int64_t WINDOW_BYTES = JOINT_SAMPLING_BYTES / 4;

std::string_view Structure(GDALDataset& dataset, const char* item) {
    const char* value = dataset.GetMetadataItem(item, "IMAGE_STRUCTURE");
    return value != nullptr ? value : "";
}

/// Which of `size` pixels GDAL picks for `count` samples along one axis, told by a raster in
/// memory whose pixels hold their own positions.
std::vector<std::int32_t> PickedPositions(int size, int count, bool alongRows) {
    std::vector<std::int32_t> positions(static_cast<std::size_t>(size));
    std::iota(positions.begin(), positions.end(), 0);
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("MEM");
    if (driver == nullptr)
        return {};
    const int width = alongRows ? 1 : size;
    const int height = alongRows ? size : 1;
    const GDALDatasetUniquePtr raster(driver->Create("", width, height, 1, GDT_Int32, nullptr));
    std::vector<std::int32_t> picked(static_cast<std::size_t>(count));
    if (!raster ||
        raster->GetRasterBand(1)->RasterIO(GF_Write, 0, 0, width, height, positions.data(), width,
                                           height, GDT_Int32, 0, 0, nullptr) != CE_None ||
        raster->GetRasterBand(1)->RasterIO(GF_Read, 0, 0, width, height, picked.data(),
                                           alongRows ? 1 : count, alongRows ? count : 1, GDT_Int32,
                                           0, 0, nullptr) != CE_None)
        return {};
    return picked;
}

/// Some of the positions, one after another.
struct Part {
    std::size_t first;
    std::size_t last; ///< past the end
};

/// Cuts rising positions where a multiple of `step` lies between two of them.
std::vector<Part> CutAtMultiples(const std::vector<std::int32_t>& positions, int step) {
    std::vector<Part> parts;
    for (std::size_t i = 0; i < positions.size(); ++i) {
        if (i == 0 || positions[i] / step != positions[i - 1] / step)
            parts.push_back({i, i});
        parts.back().last = i + 1;
    }
    return parts;
}

/// The samples of several bands of one type, and what they are read through.
template <typename Sample>
class JointReader {
  public:
    JointReader(const std::vector<JointBand>& bands, StatisticsGrid grid)
        : m_bands(bands),
          m_type(bands.front().band->GetRasterDataType()),
          m_columns(PickedPositions(bands.front().band->GetXSize(), grid.columns, false)),
          m_rows(PickedPositions(bands.front().band->GetYSize(), grid.rows, true)),
          m_samples(bands.size(), std::vector<Sample>(grid.Count())) {
        for (const JointBand& member : bands)
            m_numbers.push_back(member.band->GetBand());
    }

    bool Read() {
        if (m_columns.empty() || m_rows.empty())
            return false;
        int blockWidth = 0;
        int blockHeight = 0;
        m_bands.front().band->GetBlockSize(&blockWidth, &blockHeight);
        const std::int64_t bytesOfBlock =
            static_cast<std::int64_t>(sizeof(Sample) * m_bands.size()) * blockWidth * blockHeight;
        if (bytesOfBlock > WINDOW_BYTES)
            return false;
        const auto rowParts = CutAtMultiples(m_rows, blockHeight);
        const auto columnParts = CutAtMultiples(m_columns, WindowWidth(blockWidth, bytesOfBlock));
        for (const Part& rows : rowParts)
            for (const Part& columns : columnParts)
                if (!ReadPart(rows, columns))
                    return false;
        return true;
    }

    std::vector<BandSummary> Summaries() const {
        std::vector<BandSummary> summaries(m_bands.size());
        for (std::size_t b = 0; b < m_bands.size(); ++b) {
            const auto& noData = m_bands[b].noData;
            SampleStatistics statistics(noData ? &*noData : nullptr, nullptr);
            statistics.Add(m_samples[b].data(), m_samples[b].size());
            BandSummary& found = summaries[b];
            statistics.Report(found.minimum, found.maximum, found.mean, found.standardDeviation);
        }
        return summaries;
    }

  private:
    /// Columns of a window: a row of blocks, or as many of its blocks as the bound allows.
    int WindowWidth(int blockWidth, std::int64_t bytesOfBlock) const {
        const std::int64_t blocks = std::max<std::int64_t>(WINDOW_BYTES / bytesOfBlock, 1);
        return static_cast<int>(std::min<std::int64_t>(blocks * blockWidth, INT32_MAX));
    }

    bool ReadPart(const Part& rows, const Part& columns) {
        const int left = m_columns[columns.first];
        const int top = m_rows[rows.first];
        const int width = m_columns[columns.last - 1] - left + 1;
        const int height = m_rows[rows.last - 1] - top + 1;
        const std::size_t bandCount = m_bands.size();
        m_pixels.resize(bandCount * static_cast<std::size_t>(width) *
                        static_cast<std::size_t>(height));
        const GSpacing pixelSpace = GSpacing{sizeof(Sample)} * static_cast<GSpacing>(bandCount);
        if (m_bands.front().band->GetDataset()->RasterIO(
                GF_Read, left, top, width, height, m_pixels.data(), width, height, m_type,
                static_cast<int>(bandCount), m_numbers.data(), pixelSpace, pixelSpace * width,
                sizeof(Sample), nullptr) != CE_None)
            return false;
        for (std::size_t r = rows.first; r < rows.last; ++r) {
            const auto line =
                static_cast<std::size_t>(m_rows[r] - top) * static_cast<std::size_t>(width);
            for (std::size_t c = columns.first; c < columns.last; ++c) {
                const Sample* pixel =
                    &m_pixels[(line + static_cast<std::size_t>(m_columns[c] - left)) * bandCount];
                for (std::size_t b = 0; b < bandCount; ++b)
                    m_samples[b][r * m_columns.size() + c] = pixel[b];
            }
        }
        return true;
    }

    const std::vector<JointBand>& m_bands;
    GDALDataType m_type;
    std::vector<int> m_numbers; ///< of the bands in their data set
    std::vector<std::int32_t> m_columns;
    std::vector<std::int32_t> m_rows;
    std::vector<std::vector<Sample>> m_samples; ///< per band, row by row
    std::vector<Sample> m_pixels;               ///< of one window, pixel by pixel
};

template <typename Sample>
std::vector<BandSummary> SampleAs(const std::vector<JointBand>& bands) {
    GDALRasterBand& first = *bands.front().band;
    JointReader<Sample> reader(bands, StatisticsGrid(first.GetXSize(), first.GetYSize()));
    return reader.Read() ? reader.Summaries() : std::vector<BandSummary>{};
}

std::vector<BandSummary> SampleInOwnType(const std::vector<JointBand>& bands) {
    switch (bands.front().band->GetRasterDataType()) {
    case GDT_Byte:
        return SampleAs<std::uint8_t>(bands);
    case GDT_UInt16:
        return SampleAs<std::uint16_t>(bands);
    case GDT_Int16:
        return SampleAs<std::int16_t>(bands);
    case GDT_UInt32:
        return SampleAs<std::uint32_t>(bands);
    case GDT_Int32:
        return SampleAs<std::int32_t>(bands);
    case GDT_Float32:
        return SampleAs<float>(bands);
    case GDT_Float64:
        return SampleAs<double>(bands);
    default:
        return {};
    }
}

} // namespace

bool CanSampleJointly(GDALRasterBand& band) {
    GDALDataset* dataset = band.GetDataset();
    if (dataset == nullptr || dataset->GetDriver() == nullptr || band.GetBand() < 1 ||
        !EQUAL(dataset->GetDriver()->GetDescription(), "GTiff") || !CanHoldBlocks(band))
        return false;
    // Where GDAL reads from a pyramid, or goes around its blocks, it picks other samples. Files
    // compressed as JPEG have a hidden pyramid.
    const std::string_view compression = Structure(*dataset, "COMPRESSION");
    const bool readFromBlocks = band.GetOverviewCount() == 0 && !band.HasArbitraryOverviews() &&
                                compression.find("JPEG") == std::string_view::npos &&
                                CPLGetConfigOption("GTIFF_DIRECT_IO", nullptr) == nullptr &&
                                CPLGetConfigOption("GTIFF_VIRTUAL_MEM_IO", nullptr) == nullptr;
    return readFromBlocks && !compression.empty() && dataset->GetRasterCount() > 1 &&
           Structure(*dataset, "INTERLEAVE") == "PIXEL";
}

std::vector<BandSummary> SampleJointly(const std::vector<JointBand>& bands) {
    if (bands.empty())
        return {};
    // A pixel that no sample is taken from may be unreadable without harm. Whoever then reads the
    // bands one by one hears of what matters.
    const CPLErrorStateBackuper state;
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const GdalWatch watch;
    try {
        std::vector<BandSummary> found = SampleInOwnType(bands);
        if (watch.HasError())
            found.clear();
        return found;
    } catch (const std::bad_alloc&) {
        return {};
    }
}

} // namespace zelto
