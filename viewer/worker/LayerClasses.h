#pragma once

#include "zelto/baselib/ClassifyDisplayTable.h"

#include "viewer/model/DisplaySettings.h"

#include <vector>

class CRasterBand;

namespace zelto::view {

/// The classes of a table of the engine's; null: none.
std::vector<ClassColor> DescribeClasses(const CClassifyDisplayTable* table);

/// The entries of a band's colour table as classes of one value each; none without one.
std::vector<ClassColor> DescribePalette(const CRasterBand* band);

CClassifyDisplayTable TableOf(const std::vector<ClassColor>& classes);

/// The file beside an image that its classes are read from.
QString ClassFileOf(const QString& image);

/// Writes classes as the file that gives an image of whole numbers its classes.
/// @return why it failed; empty: it did not
QString WriteClasses(const QString& path, const std::vector<ClassColor>& classes);

} // namespace zelto::view
