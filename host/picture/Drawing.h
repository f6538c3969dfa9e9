#pragma once

#include "host/picture/View.h"

#include <functional>
#include <memory>
#include <string>

class CAOISource;
class CRasterSource;

/// @file
/// Pictures of what a source shows, as every host of ours draws them. Pixels are rows from the
/// top, 4 bytes each, width × height of the view.

namespace zelto::host {

/// Order of the first three bytes of a pixel; the fourth is alpha.
enum class ChannelOrder { BlueFirst, RedFirst };

/// Draws all of the view. The source's hue, intensity, saturation and contrast are 0 afterwards.
/// Throws Failure with the file's name.
void DrawWhole(CRasterSource& source, const View& view, ChannelOrder order, unsigned char* pixels);

/// Draws three planes, red, green and blue one after the other, width × height each.
/// @param area only what it holds is drawn; null: everything
/// @param inside receives width × height marks of what the area holds, 1 or 0; null without area
/// Throws Failure with the file's name.
void DrawPlanes(CRasterSource& source, CAOISource* area, const View& view, unsigned char* planes,
                unsigned char* inside);

/// Draws what lies in an area. Pixels outside it are transparent or black, whatever is adjusted;
/// pixels without data inside it are black before the adjustments. Throws Failure.
/// @return false when nothing of the area lies in the view
bool DrawMasked(CRasterSource& source, CAOISource& area, const View& view, bool isBlackOutside,
                ChannelOrder order, unsigned char* pixels);

/// Opens a raster as that of the picture was opened: for display, in the same system, on the same
/// grid.
using OpenLikewise = std::function<std::unique_ptr<CRasterSource>(const std::string& path)>;

/// Makes a picture as transparent as its file is there: by an alpha band, a mask, or because a
/// rotated or reprojected image does not fill its rectangle. Throws Failure.
/// @param source what was drawn
void ApplyOpacity(const CRasterSource& source, const View& view, const OpenLikewise& open,
                  unsigned char* pixels);

/// The same with the raster of FileOpacity, opened. Throws Failure with the name of `file`.
void ApplyMask(CRasterSource& mask, const std::string& file, const View& view,
               unsigned char* pixels);

} // namespace zelto::host
