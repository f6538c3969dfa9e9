#include "zelto/raster/internal/PickedSamples.h"

#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/raster/internal/BlockLimit.h"
#include "zelto/raster/internal/RasterDataset.h"
#include "zelto/raster/internal/ThreadedReader.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <numeric>
#include <span>
#include <string_view>

namespace zelto {

namespace {

/// Which of `size` pixels GDAL picks for `count` samples of a window along one axis, told by a
/// raster in memory whose pixels hold their own positions.
std::vector<std::int32_t> PickedPositions(int size, int begin, int length, int count,
                                          bool alongRows) {
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
        raster->GetRasterBand(1)->RasterIO(
            GF_Read, alongRows ? 0 : begin, alongRows ? begin : 0, alongRows ? 1 : length,
            alongRows ? length : 1, picked.data(), alongRows ? 1 : count, alongRows ? count : 1,
            GDT_Int32, 0, 0, nullptr) != CE_None)
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

/// Whether the window is so large that GDAL's cache, from which a later drawing reads, cannot keep
/// its blocks; and several of them stand side by side, which threads can share.
bool IsDecodedOnThreads(const std::vector<GDALRasterBand*>& bands, const PixelBox& window) {
    GDALRasterBand& first = *bands.front();
    const std::int64_t bandsOfBlocks =
        HasBandsTogether(first) ? first.GetDataset()->GetRasterCount() : std::ssize(bands);
    const std::int64_t bytes = std::int64_t{window.width} * window.height * bandsOfBlocks *
                               GDALGetDataTypeSizeBytes(first.GetRasterDataType());
    int blockWidth = 0;
    int blockHeight = 0;
    first.GetBlockSize(&blockWidth, &blockHeight);
    return bytes > GDALGetCacheMax64() && blockWidth < window.width &&
           ThreadedReader::IsWorth(bands, window);
}

/// Stored pixels of some bands, one band after the other.
class PixelReader {
  public:
    /// @param window that is to be read, box by box
    PixelReader(const std::vector<GDALRasterBand*>& bands, const PixelBox& window)
        : m_dataset(*bands.front()->GetDataset()),
          m_type(bands.front()->GetRasterDataType()),
          m_threaded(IsDecodedOnThreads(bands, window) ? ThreadedReader::Of(bands) : nullptr) {
        for (GDALRasterBand* band : bands)
            m_numbers.push_back(band->GetBand());
    }

    bool Read(const PixelBox& box) {
        m_bytesOfBand = SampleSize() * static_cast<std::size_t>(box.width) *
                        static_cast<std::size_t>(box.height);
        m_pixels.resize(m_numbers.size() * m_bytesOfBand);
        if (m_threaded)
            return m_threaded->Read(box, m_pixels.data());
        return m_dataset.RasterIO(GF_Read, box.left, box.top, box.width, box.height,
                                  m_pixels.data(), box.width, box.height, m_type,
                                  static_cast<int>(m_numbers.size()), m_numbers.data(), 0, 0,
                                  static_cast<GSpacing>(m_bytesOfBand), nullptr) == CE_None;
    }
    const std::byte* Of(std::size_t band) const { return m_pixels.data() + band * m_bytesOfBand; }
    std::size_t SampleSize() const {
        return static_cast<std::size_t>(GDALGetDataTypeSizeBytes(m_type));
    }

  private:
    GDALDataset& m_dataset;
    GDALDataType m_type;
    std::unique_ptr<ThreadedReader> m_threaded; ///< may be null
    std::vector<int> m_numbers;                 ///< of the bands in their data set
    std::size_t m_bytesOfBand = 0;              ///< of the box read last
    std::vector<std::byte> m_pixels;
};

/// @tparam SIZE bytes of a sample
template <std::size_t SIZE>
void CopySamples(const std::byte* line, std::span<const std::int32_t> columns, int left,
                 std::byte* target) {
    for (const std::int32_t column : columns) {
        std::memcpy(target, line + static_cast<std::size_t>(column - left) * SIZE, SIZE);
        target += SIZE;
    }
}

/// Picks the samples of a window part by part.
class Picking {
  public:
    Picking(const std::vector<GDALRasterBand*>& bands, const SampledWindow& window,
            const std::vector<void*>& samples)
        : m_reader(bands, window.box),
          m_columns(PickedPositions(bands.front()->GetXSize(), window.box.left, window.box.width,
                                    window.columns, false)),
          m_rows(PickedPositions(bands.front()->GetYSize(), window.box.top, window.box.height,
                                 window.rows, true)),
          m_samples(samples) {
        bands.front()->GetBlockSize(&m_blockWidth, &m_blockHeight);
    }

    bool Read() {
        const std::int64_t bytesOfBlock =
            static_cast<std::int64_t>(m_reader.SampleSize() * m_samples.size()) * m_blockWidth *
            m_blockHeight;
        if (m_columns.empty() || m_rows.empty() || bytesOfBlock > PICKING_BYTES)
            return false;
        // A row of blocks, or as many of its blocks as the bound allows.
        const std::int64_t width = PICKING_BYTES / bytesOfBlock * m_blockWidth;
        const auto columnParts =
            CutAtMultiples(m_columns, static_cast<int>(std::min<std::int64_t>(width, INT32_MAX)));
        for (const Part& rows : CutAtMultiples(m_rows, m_blockHeight))
            for (const Part& columns : columnParts)
                if (!ReadPart(rows, columns))
                    return false;
        return true;
    }

  private:
    bool ReadPart(const Part& rows, const Part& columns) {
        PixelBox box{};
        box.left = m_columns[columns.first];
        box.top = m_rows[rows.first];
        box.width = m_columns[columns.last - 1] - box.left + 1;
        box.height = m_rows[rows.last - 1] - box.top + 1;
        if (!m_reader.Read(box))
            return false;
        for (std::size_t b = 0; b < m_samples.size(); ++b)
            for (std::size_t r = rows.first; r < rows.last; ++r)
                CopyLine(b, r, columns, box);
        return true;
    }

    void CopyLine(std::size_t band, std::size_t row, const Part& columns, const PixelBox& box) {
        const std::size_t size = m_reader.SampleSize();
        const auto before =
            static_cast<std::size_t>(m_rows[row] - box.top) * static_cast<std::size_t>(box.width);
        const std::byte* line = m_reader.Of(band) + before * size;
        std::byte* target = static_cast<std::byte*>(m_samples[band]) +
                            (row * m_columns.size() + columns.first) * size;
        const std::span<const std::int32_t> picked(m_columns.data() + columns.first,
                                                   columns.last - columns.first);
        switch (size) {
        case 1:
            return CopySamples<1>(line, picked, box.left, target);
        case 2:
            return CopySamples<2>(line, picked, box.left, target);
        case 4:
            return CopySamples<4>(line, picked, box.left, target);
        case 8:
            return CopySamples<8>(line, picked, box.left, target);
        default:
            return CopySamples<16>(line, picked, box.left, target);
        }
    }

    PixelReader m_reader;
    std::vector<std::int32_t> m_columns;
    std::vector<std::int32_t> m_rows;
    const std::vector<void*>& m_samples;
    int m_blockWidth = 1;
    int m_blockHeight = 1;
};

} // namespace

bool CanBePicked(GDALRasterBand& band) {
    GDALDataset* dataset = band.GetDataset();
    if (dataset == nullptr || dataset->GetDriver() == nullptr || band.GetBand() < 1 ||
        !EQUAL(dataset->GetDriver()->GetDescription(), "GTiff") || !CanHoldBlocks(band))
        return false;
    // Where GDAL reads from a pyramid, or goes around its blocks, it picks other samples. Files
    // compressed as JPEG have a hidden pyramid.
    const std::string_view compression = ImageStructure(*dataset, "COMPRESSION");
    return band.GetOverviewCount() == 0 && !compression.empty() &&
           compression.find("JPEG") == std::string_view::npos &&
           CPLGetConfigOption("GTIFF_DIRECT_IO", nullptr) == nullptr &&
           CPLGetConfigOption("GTIFF_VIRTUAL_MEM_IO", nullptr) == nullptr;
}

bool HasBandsTogether(GDALRasterBand& band) {
    GDALDataset* dataset = band.GetDataset();
    return dataset != nullptr && dataset->GetRasterCount() > 1 &&
           ImageStructure(*dataset, "INTERLEAVE") == "PIXEL";
}

bool IsWorthPicking(const std::vector<GDALRasterBand*>& bands, const PixelBox& window) {
    return (bands.size() > 1 && HasBandsTogether(*bands.front())) ||
           IsDecodedOnThreads(bands, window);
}

bool ReadPicked(const std::vector<GDALRasterBand*>& bands, const SampledWindow& window,
                const std::vector<void*>& samples) {
    // A pixel that no sample is taken from may be unreadable without harm. Whoever then reads the
    // bands one by one hears of what matters.
    const CPLErrorStateBackuper state;
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const GdalWatch watch;
    try {
        Picking picking(bands, window, samples);
        return picking.Read() && !watch.HasError();
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace zelto
