#include "zelto/raster/internal/ThreadedReader.h"

#include "zelto/baselib/internal/GdalWatch.h"
#include "zelto/raster/internal/BlockLimit.h"
#include "zelto/raster/internal/OpenedFile.h"
#include "zelto/raster/internal/RasterDataset.h"

#include <cpl_multiproc.h>
#include <omp.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <future>
#include <string_view>
#include <system_error>
#include <utility>

namespace zelto {

namespace {

/// Bytes of samples. Less is decoded before other handles are open and their threads run.
constexpr std::int64_t SMALLEST_WORTH_THREADS = std::int64_t{4} << 20;

/// What the host has set for GDAL counts, whatever it is. Where it has set nothing, OpenMP's number
/// is what it has limited the engine to.
std::size_t WantedThreads() {
    constexpr int MOST = 16; // more would wait for the disk and for each other
    const char* wanted = CPLGetConfigOption("GDAL_NUM_THREADS", nullptr);
    int count = omp_in_parallel() != 0 ? 1 : omp_get_max_threads();
    if (wanted != nullptr)
        count = EQUAL(wanted, "ALL_CPUS") ? CPLGetNumCPUs() : std::atoi(wanted);
    return static_cast<std::size_t>(std::clamp(count, 1, MOST));
}

/// Every thread holds a block, as it is stored and decoded, with all the bands that it has.
std::size_t AffordableThreads(GDALRasterBand& band, bool byPixel) {
    constexpr std::int64_t LIMIT = std::int64_t{256} << 20;
    int width = 1;
    int height = 1;
    band.GetBlockSize(&width, &height);
    const std::int64_t samples =
        std::int64_t{width} * height * (byPixel ? band.GetDataset()->GetRasterCount() : 1);
    return static_cast<std::size_t>(LIMIT /
                                    (samples * GDALGetDataTypeSizeBytes(band.GetRasterDataType())));
}

/// Whether there is something to decode, block by block and without a lock that all handles share.
bool IsDecoded(GDALDataset& dataset) {
    return dataset.GetDriver() != nullptr &&
           EQUAL(dataset.GetDriver()->GetDescription(), "GTiff") &&
           dataset.GetAccess() == GA_ReadOnly && !ImageStructure(dataset, "COMPRESSION").empty() &&
           CPLGetConfigOption("GTIFF_DIRECT_IO", nullptr) == nullptr &&
           CPLGetConfigOption("GTIFF_VIRTUAL_MEM_IO", nullptr) == nullptr;
}

bool HasBand(GDALDataset& dataset, GDALRasterBand& band) {
    return band.GetDataset() == &dataset && band.GetBand() >= 1 &&
           dataset.GetRasterBand(band.GetBand()) == &band;
}

/// Quietly: a file that cannot be opened again is read as it is.
GDALDatasetUniquePtr OpenAgain(const GDALDataset& dataset) {
    const CPLErrorStateBackuper state;
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const char* const drivers[] = {"GTiff", nullptr};
    const char* const oneThread[] = {"NUM_THREADS=1", nullptr};
    const char* const noSiblings[] = {nullptr};
    return GDALDatasetUniquePtr(GDALDataset::Open(dataset.GetDescription(),
                                                  GDAL_OF_RASTER | GDAL_OF_INTERNAL, drivers,
                                                  oneThread, noSiblings));
}

bool IsSameList(CSLConstList a, CSLConstList b) {
    if (CSLCount(a) != CSLCount(b))
        return false;
    for (int i = 0; i < CSLCount(a); ++i)
        if (std::string_view(a[i]) != b[i])
            return false;
    return true;
}

/// Whether both turn what is stored into samples in the same way.
bool StoreAlike(GDALMajorObject& a, GDALMajorObject& b) {
    return IsSameList(a.GetMetadata("IMAGE_STRUCTURE"), b.GetMetadata("IMAGE_STRUCTURE"));
}

/// Whether both show the same image of the file. Options that were set while one was opened may
/// not have been set for the other.
bool ShowTheSame(GDALDataset& a, GDALDataset& b) {
    if (a.GetRasterXSize() != b.GetRasterXSize() || a.GetRasterYSize() != b.GetRasterYSize() ||
        a.GetRasterCount() != b.GetRasterCount() || !StoreAlike(a, b))
        return false;
    for (int number = 1; number <= a.GetRasterCount(); ++number) {
        GDALRasterBand& ofA = *a.GetRasterBand(number);
        GDALRasterBand& ofB = *b.GetRasterBand(number);
        if (ofA.GetRasterDataType() != ofB.GetRasterDataType() ||
            ofA.GetColorInterpretation() != ofB.GetColorInterpretation() || !StoreAlike(ofA, ofB))
            return false;
    }
    return true;
}

bool IsInside(const PixelBox& box, GDALDataset& dataset) {
    return box.left >= 0 && box.top >= 0 && box.width >= 1 && box.height >= 1 &&
           box.width <= dataset.GetRasterXSize() - box.left &&
           box.height <= dataset.GetRasterYSize() - box.top;
}

/// Cuts a range at multiples of `block`, so that no block has pixels in two of the at most `count`
/// parts.
std::vector<std::pair<int, int>> CutAtBlocks(int begin, int size, int block, std::size_t count) {
    const std::int64_t first = begin / block;
    const std::int64_t blocks = (begin + size - 1) / block - first + 1;
    const std::int64_t parts = std::min(static_cast<std::int64_t>(count), blocks);
    std::vector<std::pair<int, int>> ranges;
    for (std::int64_t i = 0; i < parts; ++i) {
        const std::int64_t from = (first + blocks * i / parts) * block;
        const std::int64_t to = (first + blocks * (i + 1) / parts) * block;
        ranges.emplace_back(std::max<std::int64_t>(from, begin),
                            std::min<std::int64_t>(to, std::int64_t{begin} + size));
    }
    return ranges;
}

/// A thread for the work, or the caller's own when it waits for it where there is none.
template <typename Work>
std::future<void> Start(Work work) {
    try {
        return std::async(std::launch::async, work);
    } catch (const std::system_error&) {
        return std::async(std::launch::deferred, work);
    }
}

/// The conditions that cost nothing to ask.
bool MayServe(const std::vector<GDALRasterBand*>& bands) {
    GDALRasterBand* first = bands.empty() ? nullptr : bands.front();
    GDALDataset* dataset = first != nullptr ? first->GetDataset() : nullptr;
    return dataset != nullptr && WantedThreads() > 1 && IsDecoded(*dataset) &&
           CanHoldBlocks(*first) &&
           std::all_of(bands.begin(), bands.end(), [&](GDALRasterBand* band) {
               return band != nullptr && HasBand(*dataset, *band);
           });
}

} // namespace

bool ThreadedReader::IsWorth(const std::vector<GDALRasterBand*>& bands, const PixelBox& window) {
    if (!MayServe(bands) || !IsInside(window, *bands.front()->GetDataset()))
        return false;
    const int sampleSize = GDALGetDataTypeSizeBytes(bands.front()->GetRasterDataType());
    return std::int64_t{window.width} * window.height >=
           SMALLEST_WORTH_THREADS / sampleSize / std::ssize(bands);
}

std::unique_ptr<ThreadedReader> ThreadedReader::Of(const std::vector<GDALRasterBand*>& bands) {
    if (!MayServe(bands))
        return nullptr;
    GDALRasterBand& first = *bands.front();
    GDALDataset& dataset = *first.GetDataset();
    const bool byPixel = ImageStructure(dataset, "INTERLEAVE") == "PIXEL";
    std::unique_ptr<ThreadedReader> reader(new ThreadedReader);
    if (!reader->OpenHandles(dataset, std::min(WantedThreads(), AffordableThreads(first, byPixel))))
        return nullptr;
    for (GDALRasterBand* band : bands)
        reader->m_numbers.push_back(band->GetBand());
    reader->m_type = first.GetRasterDataType();
    first.GetBlockSize(&reader->m_blockWidth, &reader->m_blockHeight);
    return reader;
}

bool ThreadedReader::OpenHandles(GDALDataset& dataset, std::size_t count) {
    if (count < 2 || !IsAsOpened(dataset))
        return false;
    for (std::size_t i = 0; i < count; ++i) {
        m_handles.push_back(OpenAgain(dataset));
        if (!m_handles.back() || !ShowTheSame(dataset, *m_handles.back()))
            return false;
    }
    // Meanwhile another file may have come.
    return IsAsOpened(dataset);
}

std::size_t ThreadedReader::BytesOfBand(const PixelBox& box) const {
    return static_cast<std::size_t>(GDALGetDataTypeSizeBytes(m_type)) *
           static_cast<std::size_t>(box.width) * static_cast<std::size_t>(box.height);
}

/// More parts than threads, one of which may have other work to do.
std::vector<PixelBox> ThreadedReader::Share(const PixelBox& box) const {
    constexpr std::size_t PARTS_OF_THREAD = 16;
    const std::size_t most = m_handles.size() * PARTS_OF_THREAD;
    std::vector<PixelBox> parts;
    if (box.height / m_blockHeight > box.width / m_blockWidth) {
        for (const auto& [top, bottom] : CutAtBlocks(box.top, box.height, m_blockHeight, most))
            parts.push_back({box.left, top, box.width, bottom - top});
    } else {
        for (const auto& [left, right] : CutAtBlocks(box.left, box.width, m_blockWidth, most))
            parts.push_back({left, box.top, right - left, box.height});
    }
    return parts;
}

bool ThreadedReader::Read(const PixelBox& box, std::byte* samples) const {
    const std::vector<PixelBox> parts = Share(box);
    std::atomic<std::size_t> next = 0;
    std::atomic<bool> read = true;
    const auto readParts = [&](GDALDataset& handle) {
        for (std::size_t part = next++; read && part < parts.size(); part = next++)
            if (!ReadPart(handle, parts[part], box, samples))
                read = false;
    };
    std::vector<std::future<void>> others;
    others.reserve(m_handles.size());
    for (std::size_t i = 1; i < std::min(m_handles.size(), parts.size()); ++i)
        others.push_back(Start([&, i] { readParts(*m_handles[i]); }));
    readParts(*m_handles[0]);
    for (std::future<void>& other : others)
        other.get();
    return read;
}

bool ThreadedReader::ReadPart(GDALDataset& handle, const PixelBox& part, const PixelBox& box,
                              std::byte* samples) const {
    const CPLErrorStateBackuper state;
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const GdalWatch watch;
    const auto pixelSpace = static_cast<GSpacing>(GDALGetDataTypeSizeBytes(m_type));
    const GSpacing lineSpace = pixelSpace * box.width;
    std::byte* first =
        samples + (part.top - box.top) * lineSpace + (part.left - box.left) * pixelSpace;
    std::vector<int> numbers = m_numbers; // GDAL takes them as its own
    return handle.RasterIO(GF_Read, part.left, part.top, part.width, part.height, first, part.width,
                           part.height, m_type, static_cast<int>(numbers.size()), numbers.data(),
                           pixelSpace, lineSpace, static_cast<GSpacing>(BytesOfBand(box)),
                           nullptr) == CE_None &&
           !watch.HasError();
}

} // namespace zelto
