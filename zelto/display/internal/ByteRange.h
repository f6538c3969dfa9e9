#pragma once

#include "zelto/baselib/internal/Truncate.h"

/// @file
/// The ends of display values. NaN passes every comparison and truncates to 0.

namespace zelto {

/// Clamped to 0 … 255, not truncated.
inline double ClampToByteRange(double value) {
    if (value < 0.0)
        return 0.0;
    return value > 255.0 ? 255.0 : value;
}

/// Clamped to 1 … 254, not truncated: 0 and 255 stay free for background and marks.
inline double ClampToInnerRange(double value) {
    if (value < 1.0)
        return 1.0;
    return value > 254.0 ? 254.0 : value;
}

inline unsigned char ClampedByte(double value) {
    return TruncateToByte(ClampToByteRange(value));
}
inline unsigned char InnerByte(double value) {
    return TruncateToByte(ClampToInnerRange(value));
}

} // namespace zelto
