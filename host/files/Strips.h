#pragma once

#include "zelto/datasource/Enumerations.h"

#include <cstddef>
#include <functional>
#include <string>

class CDataProgress;
class CRasterSource;

namespace zelto::host {

/// Rows of an image to be worked through from top to bottom.
struct RowRange {
    int first = 0;
    int count = 0;
    std::size_t bytesPerRow = 0;
    int blockHeight = 1; ///< strips end at multiples of it, so that blocks are read once
};

/// Calls `work` with the first row and the number of rows of one strip after the other, each of
/// a few megabytes. Shows progress; throws Failure when the user stops the work.
/// @param path the file that the failure names
void ForEachStrip(const RowRange& rows, const wchar_t* title, const std::string& path,
                  const std::function<void(int first, int count)>& work);
/// The same with the progress of a host, which may stop the work.
void ForEachStrip(const RowRange& rows, const wchar_t* title, const std::string& path,
                  CDataProgress& progress, const std::function<void(int first, int count)>& work);

/// Writes full rows of all bands, band after band, at `first`. Throws Failure naming `path`.
void WriteRows(CRasterSource& raster, int first, int count, void* samples, PixelDataType type,
               const std::string& path);

/// Gives every pixel the same value. Throws Failure naming `path`.
void FillRaster(CRasterSource& raster, double value, const std::string& path);

} // namespace zelto::host
