#include "zelto/raster/internal/KnownStatistics.h"

#include "zelto/raster/internal/PickedSamples.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <mutex>
#include <new>
#include <vector>

namespace zelto {

namespace {

struct KnownBand {
    FileState file;
    int number;
    std::optional<std::uint64_t> noData; ///< its bits, so that NaN is found again
    BandSummary found;

    bool IsOf(const KnownBand& other) const {
        return file == other.file && number == other.number && noData == other.noData;
    }
};

/// Several threads may have sources of their own.
struct KnownBands {
    std::mutex access;
    std::vector<KnownBand> bands;
};

/// Outlives the last source, which a host may keep in a static object.
KnownBands& Known() {
    static auto* const known = new KnownBands; // NOLINT(cppcoreguidelines-owning-memory)
    return *known;
}

/// The entry of the band that another one describes; the end where there is none.
std::vector<KnownBand>::iterator Find(KnownBands& known, const KnownBand& wanted) {
    return std::find_if(known.bands.begin(), known.bands.end(),
                        [&](const KnownBand& band) { return band.IsOf(wanted); });
}

/// Nothing where the samples depend on more than the file.
std::optional<KnownBand> Describe(GDALRasterBand& band, const std::optional<double>& noData) {
    if (!CanBePicked(band))
        return std::nullopt;
    const std::optional<FileState> file = StateAsOpened(*band.GetDataset());
    if (!file)
        return std::nullopt;
    const auto bits = noData ? std::optional(std::bit_cast<std::uint64_t>(*noData)) : std::nullopt;
    return KnownBand{*file, band.GetBand(), bits, {}};
}

} // namespace

void KeepStatistics(GDALRasterBand& band, const std::optional<double>& noData,
                    const BandSummary& found) {
    std::optional<KnownBand> kept = Describe(band, noData);
    if (!kept)
        return;
    kept->found = found;
    KnownBands& known = Known();
    const std::lock_guard lock(known.access);
    if (const auto former = Find(known, *kept); former != known.bands.end()) {
        *former = *kept;
        return;
    }
    try {
        known.bands.push_back(*kept);
    } catch (const std::bad_alloc&) {
        return; // It is found again when it is wanted.
    }
}

std::optional<BandSummary> KnownStatistics(GDALRasterBand& band,
                                           const std::optional<double>& noData) {
    const std::optional<KnownBand> wanted = Describe(band, noData);
    if (!wanted)
        return std::nullopt;
    KnownBands& known = Known();
    const std::lock_guard lock(known.access);
    const auto at = Find(known, *wanted);
    return at != known.bands.end() ? std::optional(at->found) : std::nullopt;
}

void ForgetStatistics(const FileState& file) {
    KnownBands& known = Known();
    const std::lock_guard lock(known.access);
    std::erase_if(known.bands, [&](const KnownBand& band) { return band.file == file; });
}

} // namespace zelto
