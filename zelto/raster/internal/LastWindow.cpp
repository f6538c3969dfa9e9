#include "zelto/raster/internal/LastWindow.h"

#include <cstring>
#include <mutex>
#include <new>
#include <optional>
#include <utility>

namespace zelto {

namespace {

struct Kept {
    FileState file;
    std::vector<int> bands; ///< their numbers
    SampledWindow window;
    std::vector<std::vector<std::byte>> samples; ///< per band
};

/// Several threads may have sources of their own.
struct LastWindow {
    std::mutex access;
    std::optional<Kept> kept;
};

/// Outlives the last source, which a host may keep in a static object.
LastWindow& TheLastWindow() {
    static auto* const last = new LastWindow; // NOLINT(cppcoreguidelines-owning-memory)
    return *last;
}

std::vector<int> NumbersOf(const std::vector<GDALRasterBand*>& bands) {
    std::vector<int> numbers;
    numbers.reserve(bands.size());
    for (GDALRasterBand* band : bands)
        numbers.push_back(band->GetBand());
    return numbers;
}

std::size_t BytesOfBand(GDALRasterBand& band, const SampledWindow& window) {
    return static_cast<std::size_t>(GDALGetDataTypeSizeBytes(band.GetRasterDataType())) *
           static_cast<std::size_t>(window.columns) * static_cast<std::size_t>(window.rows);
}

} // namespace

void KeepLastWindow(const std::vector<GDALRasterBand*>& bands, const SampledWindow& window,
                    const std::vector<void*>& samples) {
    const std::optional<FileState> file = StateAsOpened(*bands.front()->GetDataset());
    const std::size_t bytes = BytesOfBand(*bands.front(), window);
    if (!file || bytes * bands.size() > static_cast<std::size_t>(LARGEST_LAST_WINDOW))
        return;
    try {
        Kept kept{*file, NumbersOf(bands), window, {}};
        for (const void* ofBand : samples) {
            const auto* first = static_cast<const std::byte*>(ofBand);
            kept.samples.emplace_back(first, first + bytes);
        }
        LastWindow& last = TheLastWindow();
        const std::lock_guard lock(last.access);
        last.kept = std::move(kept);
    } catch (const std::bad_alloc&) {
        ForgetLastWindow(*file);
    }
}

bool CopyLastWindow(const std::vector<GDALRasterBand*>& bands, const SampledWindow& window,
                    const std::vector<void*>& samples) {
    LastWindow& last = TheLastWindow();
    const std::lock_guard lock(last.access);
    const std::optional<Kept>& kept = last.kept;
    if (!kept || kept->window != window ||
        kept->file != StateAsOpened(*bands.front()->GetDataset()) ||
        kept->bands != NumbersOf(bands))
        return false;
    for (std::size_t b = 0; b < samples.size(); ++b)
        std::memcpy(samples[b], kept->samples[b].data(), kept->samples[b].size());
    return true;
}

void ForgetLastWindow(const FileState& file) {
    LastWindow& last = TheLastWindow();
    const std::lock_guard lock(last.access);
    if (last.kept && last.kept->file == file)
        last.kept.reset();
}

} // namespace zelto
