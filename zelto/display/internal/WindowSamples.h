#pragma once

#include "zelto/display/internal/ViewWindow.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

class GDALRasterBand;

namespace zelto {

/// The samples of a window in the type they are stored in: bufWidth × bufHeight, row by row.
/// Every value is exactly the double that a read as doubles would give.
class WindowSamples {
  public:
    /// Memory that is not cleared before GDAL fills it.
    template <typename T>
    struct Uninitialised {
        using value_type = T;
        T* allocate(std::size_t n) { return std::allocator<T>().allocate(n); }
        void deallocate(T* p, std::size_t n) { std::allocator<T>().deallocate(p, n); }
        template <typename U>
        void construct(U*) {}
        bool operator==(const Uninitialised&) const = default;
    };
    template <typename T>
    using Samples = std::vector<T, Uninitialised<T>>;

    /// One GDAL raster I/O of the window; a window read at no size has no samples.
    /// @return nothing without a band, when the memory cannot be had, for a file whose blocks are
    ///         beyond any healthy size, for a view that enlarges single pixels to gigabytes, or
    ///         on a GDAL error; the reason is left then, without the file
    static std::optional<WindowSamples> Read(GDALRasterBand* band, const ReadWindow& window);

    /// The same of some bands, for large windows, whose blocks GDAL's cache could not keep, of
    /// files without a pyramid: blocks are decoded once for all of the bands, on several threads.
    /// @param bands at least one; those that are null are not read together with others
    /// @return empty where that does not suit, and the bands are to be read one by one
    static std::vector<WindowSamples> ReadTogether(const std::vector<GDALRasterBand*>& bands,
                                                   const ReadWindow& window);

    /// Calls f with the vector of samples.
    template <typename F>
    decltype(auto) Visit(F&& f) const {
        return std::visit(std::forward<F>(f), m_samples);
    }

  private:
    using Any =
        std::variant<Samples<double>, Samples<float>, Samples<std::uint8_t>, Samples<std::uint16_t>,
                     Samples<std::int16_t>, Samples<std::uint32_t>, Samples<std::int32_t>>;

    explicit WindowSamples(Any samples) : m_samples(std::move(samples)) {}

    Any m_samples;
};

} // namespace zelto
