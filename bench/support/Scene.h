#pragma once

#include <string>

namespace zelto::bench {

/// Large synthetic scenes, made on first use and kept in the folder that ZELTO_BENCH_DATA names
/// (default: bench-data in the temporary folder). Their content is smooth terrain with noise, so
/// that compression and statistics behave as on real imagery.

/// 12,000 × 12,000 pixels, four 16-bit bands, DEFLATE, tiled 256 × 256, nearest overviews
/// 2 … 64, EPSG:32650, 10 m pixels, top-left corner (300000, 4500000).
std::string FourBands16Bit();

/// 10,000 × 10,000 pixels, three 8-bit bands, uncompressed, pixel-interleaved, no overviews;
/// the same place.
std::string ThreeBands8Bit();

/// Whether a scene has overviews.
enum class Pyramid { None, Built };

/// size × size pixels, four 16-bit bands, DEFLATE, tiled 256 × 256, pixel-interleaved, at the same
/// place; with nearest overviews 2 … 64 or without any.
std::string PixelInterleaved(int size, Pyramid pyramid);

/// A path in the folder that the scenes are kept in.
std::string BenchFile(const std::string& name);

/// Peak resident memory of this process, in megabytes: since its start, or since the last
/// ResetPeakMemory().
double PeakMemoryMegabytes();

/// Lets the peak begin anew at the memory that is resident now.
void ResetPeakMemory();

} // namespace zelto::bench
