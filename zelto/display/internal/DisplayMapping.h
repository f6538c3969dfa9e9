#pragma once

#include "zelto/display/internal/DisplayStretches.h"
#include "zelto/display/internal/StretchFunctions.h"

#include <utility>
#include <variant>

class CRasterBand;

namespace zelto {

/// A band's display state taken at one moment: maps samples to display bytes exactly as
/// CRasterBand::Convert2ShowValue() does, without looking at the band again. It refers to the
/// band's histogram and enhancement table, and is valid until the display state changes.
///
/// A loop over pixels asks for the stretch itself, once:
/// @code
/// mapping.Visit([&](const auto& stretch) {
///     for (int i = 0; i < n; ++i) bytes[i] = stretch(samples[i]);
/// });
/// @endcode
class DisplayMapping {
  public:
    /// Takes the state; builds the auto-levels map where the stretch needs it, so that several
    /// threads may map at once.
    explicit DisplayMapping(CRasterBand& band);

    /// Calls `body` with the present stretch, a value type callable as
    /// `unsigned char(double) const`, and returns its result.
    template <typename Body>
    decltype(auto) Visit(Body&& body) const {
        return std::visit(std::forward<Body>(body), m_stretch);
    }

    /// The display byte of one sample.
    unsigned char operator()(double sample) const {
        return Visit([sample](const auto& stretch) { return stretch(sample); });
    }

    /// Whether taking the state would build an auto-levels map. The map takes the place of an
    /// equalisation map, so the state is taken when there is a sample to convert, not before.
    static bool AwaitsAutoLevels(CRasterBand& band);

    /// The display byte of one sample under the band's present state, without keeping it.
    static unsigned char Convert(CRasterBand& band, double sample);

  private:
    using Stretch = std::variant<
        PassThrough, InnerMinMax, MinMax, Enhanced, StandardDeviation, Equalized, AutoLevels,
        Through<InnerNormalised, ZoomLinearFunction>,
        Through<InnerNormalised, ZoomLinear002Function>, Through<InnerNormalised, WallisFunction>,
        Through<InnerRaw, ZoomLinearFunction>, Through<InnerRaw, ZoomLinear002Function>,
        Through<InnerRaw, WallisFunction>, Through<WrappedNormalised, ZoomLinearFunction>,
        Through<WrappedNormalised, ZoomLinear002Function>,
        Through<WrappedNormalised, WallisFunction>>;

    static bool IsSinglePixel(const CRasterBand& band);
    template <typename Use>
    static auto Choose(CRasterBand& band, Use use);
    template <typename Use>
    static auto ChooseFunction(CRasterBand& band, Use use);

    Stretch m_stretch;
};

} // namespace zelto
