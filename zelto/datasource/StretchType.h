#pragma once

/// How a band's samples become display bytes. The value is what is stored and compared; any
/// other value behaves as StretchLinear.
enum StretchType : int {
    StretchNone = 0,               ///< min-max to 1 … 254; 8-bit bands pass through
    StretchEnhanceTable = 1,       ///< min-max to 0 … 255, then the user's enhancement table
    StretchLinear = 2,             ///< min-max to 0 … 255
    StretchStdDev = 3,             ///< mean ± 2 standard deviations to 1 … 254
    StretchHistEqualize = 4,       ///< equalisation through the band's histogram
    StretchAutoLevels = 5,         ///< auto levels through the band's histogram
    StretchZoomLinear002 = 6,      ///< min-max to 1 … 254, then a CZoomLinear002 object
    StretchWallis = 7,             ///< min-max wrapped to a byte, then a CWallisStretch object
    StretchZoomLinear = 8,         ///< min-max to 1 … 254, then a CZoomLinear object
    StretchCustomHistEqualize = 9, ///< equalisation through a caller's histogram
};

/// Kind of line a host draws through an enhancement curve's points. The engine stores it and
/// never interprets it; the values are the host's, these two only give them names.
enum HistogramLineType : int { HistogramLineStraight = 0, HistogramLineCurve = 1 };
