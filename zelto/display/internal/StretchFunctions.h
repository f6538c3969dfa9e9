#pragma once

#include "zelto/display/WallisStretch.h"
#include "zelto/display/ZoomLinear.h"
#include "zelto/display/ZoomLinear002.h"
#include "zelto/display/internal/ByteRange.h"

namespace zelto {

/// The arithmetic of the stretch-function objects as plain values, so that loops over pixels
/// call it without a pointer in between.

struct ZoomLinearFunction {
    double scale;
    double offset;

    explicit ZoomLinearFunction(const CZoomLinear& object)
        : scale(object.GetScale()), offset(object.GetOffset()) {}

    unsigned char operator()(double value) const { return ClampedByte(value * scale + offset); }
};

struct ZoomLinear002Function {
    double low;
    double high;

    explicit ZoomLinear002Function(const CZoomLinear002& object)
        : low(object.GetLow()), high(object.GetHigh()) {}

    unsigned char operator()(double value) const {
        return InnerByte((value - low) * 255.0 / (high - low));
    }
};

struct WallisFunction {
    double sourceMean;
    double sourceDeviation;
    double lowerClamp;
    double upperClamp;
    double targetMean;
    double targetDeviation;

    explicit WallisFunction(const CWallisStretch& object)
        : sourceMean(object.GetSourceMean()),
          sourceDeviation(object.GetSourceDeviation()),
          lowerClamp(object.GetLowerClamp()),
          upperClamp(object.GetUpperClamp()),
          targetMean(object.GetTargetMean()),
          targetDeviation(object.GetTargetDeviation()) {}

    unsigned char operator()(double value) const {
        // The last term is the source mean with weight zero (brightness weight 1); it still
        // turns an infinite mean into NaN.
        double y = (value - sourceMean) * (5.0 * targetDeviation) /
                       (5.0 * sourceDeviation + targetDeviation / 5.0) +
                   targetMean + sourceMean * 0.0;
        if (lowerClamp > y)
            y = lowerClamp;
        if (y > upperClamp)
            y = upperClamp;
        return TruncateToByte(y);
    }
};

} // namespace zelto
