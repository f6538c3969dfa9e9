#include "zelto/raster/internal/RowsAhead.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <new>
#include <system_error>
#include <utility>

namespace zelto {

namespace {

/// Enough blocks for all threads. One row of blocks may be larger.
constexpr std::int64_t BYTES_OF_BATCH = std::int64_t{8} << 20;

/// A quarter of GDAL's usual cache; three batches are held at once.
constexpr std::int64_t LARGEST_BATCH = std::int64_t{64} << 20;

/// Rows of whole blocks.
/// @param bytesOfRow of all bands
std::int64_t RowsOfBatch(GDALRasterBand& band, std::int64_t bytesOfRow, int mostRows) {
    int blockWidth = 1;
    int blockHeight = 1;
    band.GetBlockSize(&blockWidth, &blockHeight);
    const std::int64_t rows = std::max<std::int64_t>(BYTES_OF_BATCH / bytesOfRow, mostRows);
    const std::int64_t blocks = std::max<std::int64_t>((rows + blockHeight - 1) / blockHeight, 1);
    return std::min<std::int64_t>(blocks * blockHeight, INT_MAX);
}

/// Twice as fast as GDAL's copying, which decides about more.
template <typename Sample>
void CopyAs(const std::byte* from, std::size_t count, double* samples) {
    for (std::size_t i = 0; i < count; ++i, from += sizeof(Sample)) {
        Sample sample;
        std::memcpy(&sample, from, sizeof sample);
        samples[i] = sample;
    }
}

} // namespace

std::unique_ptr<RowsAhead> RowsAhead::Of(const std::vector<GDALRasterBand*>& bands,
                                         const PixelBox& window, int mostRows) {
    auto reader = ThreadedReader::IsWorth(bands, window) ? ThreadedReader::Of(bands) : nullptr;
    if (!reader)
        return nullptr;
    const auto bytesOfRow = static_cast<std::int64_t>(reader->BytesOf({0, 0, window.width, 1}));
    const std::int64_t batchRows = RowsOfBatch(*bands.front(), bytesOfRow, mostRows);
    if (std::min<std::int64_t>(batchRows, window.height) * bytesOfRow > LARGEST_BATCH)
        return nullptr;
    return std::unique_ptr<RowsAhead>(
        new RowsAhead(std::move(reader), window, static_cast<int>(batchRows)));
}

RowsAhead::RowsAhead(std::unique_ptr<ThreadedReader> reader, const PixelBox& window, int batchRows)
    : m_reader(std::move(reader)), m_window(window), m_batchRows(batchRows) {
    for (Batch& batch : m_atHand)
        batch.box = {window.left, window.top, window.width, 0};
    Begin(window.top);
}

PixelBox RowsAhead::BatchOf(int imageRow) const {
    const int batchTop = imageRow / m_batchRows * m_batchRows;
    const int end = m_window.top + m_window.height;
    const int top = std::max(batchTop, m_window.top);
    const int rows = std::min(m_batchRows - (top - batchTop), end - top);
    return {m_window.left, top, m_window.width, rows};
}

void RowsAhead::Begin(int imageRow) {
    m_next.box = BatchOf(imageRow);
    const auto read = [this] {
        try {
            m_next.samples.resize(m_reader->BytesOf(m_next.box));
            return m_reader->Read(m_next.box, m_next.samples.data());
        } catch (const std::bad_alloc&) {
            return false;
        }
    };
    try {
        m_reading = std::async(std::launch::async, read);
    } catch (const std::system_error&) { // no thread for it
        m_reading = std::async(std::launch::deferred, read);
    } catch (const std::bad_alloc&) {
        m_reading = {};
    }
}

bool RowsAhead::Finish() {
    if (!m_reading.valid() || !m_reading.get())
        return false;
    std::swap(m_atHand[0], m_atHand[1]);
    std::swap(m_atHand[1], m_next);
    const int end = m_atHand[1].End();
    if (end < m_window.top + m_window.height)
        Begin(end);
    return true;
}

bool RowsAhead::Prepare(int firstRow, int rows) {
    while (m_atHand[1].End() < m_window.top + firstRow + rows)
        if (!Finish())
            return false;
    return true;
}

void RowsAhead::Copy(std::size_t band, int firstRow, int rows, double* samples) const {
    for (const Batch& batch : m_atHand)
        CopyFrom(batch, band, firstRow, rows, samples);
}

void RowsAhead::CopyFrom(const Batch& batch, std::size_t band, int firstRow, int rows,
                         double* samples) const {
    const int wanted = m_window.top + firstRow;
    const int top = std::max(wanted, batch.box.top);
    const int end = std::min(wanted + rows, batch.End());
    if (top >= end)
        return;
    const auto width = static_cast<std::size_t>(m_window.width);
    const std::byte* from = batch.samples.data() + band * m_reader->BytesOfBand(batch.box) +
                            m_reader->BytesOfBand({0, 0, m_window.width, top - batch.box.top});
    double* to = samples + static_cast<std::size_t>(top - wanted) * width;
    const std::size_t count = width * static_cast<std::size_t>(end - top);
    switch (m_reader->Type()) {
    case GDT_Byte:
        return CopyAs<std::uint8_t>(from, count, to);
    case GDT_UInt16:
        return CopyAs<std::uint16_t>(from, count, to);
    case GDT_Int16:
        return CopyAs<std::int16_t>(from, count, to);
    case GDT_Float32:
        return CopyAs<float>(from, count, to);
    default:
        GDALCopyWords64(from, m_reader->Type(), GDALGetDataTypeSizeBytes(m_reader->Type()), to,
                        GDT_Float64, sizeof(double), static_cast<GPtrDiff_t>(count));
    }
}

} // namespace zelto
