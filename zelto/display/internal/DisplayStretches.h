#pragma once

#include "zelto/display/internal/ByteRange.h"
#include "zelto/display/internal/HistogramLookup.h"

#include <cmath>

/// @file
/// How one sample becomes a display byte, one value type per stretch. A band's display state
/// chooses among them once (DisplayMapping); after that nothing is decided per sample but what
/// the stretch itself asks. None guards against an empty display range: the division gives
/// infinities or NaN, and the clamps and the truncation decide.

namespace zelto {

/// The bounds of every min-max stretch.
struct DisplayRange {
    double minimum = 0.0;
    double maximum = 0.0;

    double Normalise(double x) const { return (x - minimum) / (maximum - minimum) * 255.0; }
};

/// 8-bit samples as they are.
struct PassThrough {
    unsigned char operator()(double x) const { return ClampedByte(x); }
};

/// Min-max to 1 … 254.
struct InnerMinMax {
    DisplayRange range;
    unsigned char operator()(double x) const { return InnerByte(range.Normalise(x)); }
};

/// Min-max to 0 … 255.
struct MinMax {
    DisplayRange range;
    unsigned char operator()(double x) const { return ClampedByte(range.Normalise(x)); }
};

/// Min-max to 0 … 255, then a table of 256 bytes.
struct Enhanced {
    DisplayRange range;
    const unsigned char* table;
    unsigned char operator()(double x) const { return table[ClampedByte(range.Normalise(x))]; }
};

/// Two standard deviations on either side of the mean to 1 … 254.
struct StandardDeviation {
    double mean;
    double deviation;
    double lower;
    double upper;

    unsigned char operator()(double x) const {
        const double distance = x - mean;
        if (std::fabs(distance) > 2.0 * deviation)
            x = distance > 0.0 ? upper : lower;
        return InnerByte((x - lower) / (upper - lower) * 255.0);
    }
};

/// Through a histogram's equalisation map; what the map does not take is clamped as it is.
/// Without a map the lookup leaves the sample, which then wraps to a byte.
struct Equalized {
    HistogramLookup lookup;
    unsigned char operator()(double x) const {
        return lookup.Equalize(x) ? TruncateToByte(x) : ClampedByte(x);
    }
};

/// Through a histogram's auto-levels map.
struct AutoLevels {
    HistogramLookup lookup;
    unsigned char operator()(double x) const {
        return lookup.AutoLevel(x) ? TruncateToByte(x) : ClampedByte(x);
    }
};

// What a stretch-function object is given.

struct InnerNormalised {
    DisplayRange range;
    double operator()(double x) const { return ClampToInnerRange(range.Normalise(x)); }
};

struct InnerRaw {
    double operator()(double x) const { return ClampToInnerRange(x); }
};

/// Values outside 0 … 255 wrap; they are not clamped.
struct WrappedNormalised {
    DisplayRange range;
    double operator()(double x) const { return TruncateToByte(range.Normalise(x)); }
};

/// A prepared sample through a stretch function.
template <typename Prepare, typename Function>
struct Through {
    Prepare prepare;
    Function function;
    unsigned char operator()(double x) const { return function(prepare(x)); }
};

} // namespace zelto
