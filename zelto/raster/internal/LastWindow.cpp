#include "zelto/raster/internal/LastWindow.h"

#include "zelto/raster/internal/OpenedFile.h"

#include <cstring>
#include <mutex>
#include <new>
#include <utility>

namespace zelto {

namespace {

struct Kept {
    const GDALDataset* dataset = nullptr;
    std::vector<GDALRasterBand*> bands;
    SampledWindow window{};
    std::vector<std::vector<std::byte>> samples; ///< per band
};

/// Several threads may have sources of their own.
struct LastWindow {
    std::mutex access;
    Kept kept;
};

/// Outlives the last source, which a host may keep in a static object.
LastWindow& TheLastWindow() {
    static auto* const last = new LastWindow; // NOLINT(cppcoreguidelines-owning-memory)
    return *last;
}

std::size_t BytesOfBand(GDALRasterBand& band, const SampledWindow& window) {
    return static_cast<std::size_t>(GDALGetDataTypeSizeBytes(band.GetRasterDataType())) *
           static_cast<std::size_t>(window.columns) * static_cast<std::size_t>(window.rows);
}

} // namespace

void KeepLastWindow(const std::vector<GDALRasterBand*>& bands, const SampledWindow& window,
                    const std::vector<void*>& samples) {
    const GDALDataset* dataset = bands.front()->GetDataset();
    const std::size_t bytes = BytesOfBand(*bands.front(), window);
    if (bytes * bands.size() > static_cast<std::size_t>(LARGEST_LAST_WINDOW) ||
        !IsAsOpened(*dataset))
        return;
    try {
        Kept kept{dataset, bands, window, {}};
        for (const void* ofBand : samples) {
            const auto* first = static_cast<const std::byte*>(ofBand);
            kept.samples.emplace_back(first, first + bytes);
        }
        LastWindow& last = TheLastWindow();
        const std::lock_guard lock(last.access);
        last.kept = std::move(kept);
    } catch (const std::bad_alloc&) {
        ForgetLastWindow(dataset);
    }
}

bool CopyLastWindow(const std::vector<GDALRasterBand*>& bands, const SampledWindow& window,
                    const std::vector<void*>& samples) {
    LastWindow& last = TheLastWindow();
    const std::lock_guard lock(last.access);
    const Kept& kept = last.kept;
    if (kept.dataset == nullptr || kept.bands != bands || kept.window != window ||
        !IsAsOpened(*kept.dataset))
        return false;
    for (std::size_t b = 0; b < samples.size(); ++b)
        std::memcpy(samples[b], kept.samples[b].data(), kept.samples[b].size());
    return true;
}

void ForgetLastWindow(const GDALDataset* dataset) {
    LastWindow& last = TheLastWindow();
    const std::lock_guard lock(last.access);
    if (dataset != nullptr && last.kept.dataset == dataset)
        last.kept = {};
}

} // namespace zelto
