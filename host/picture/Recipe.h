#pragma once

#include "zelto/display/DisplayRecipe.h"

#include "host/picture/View.h"

#include <string>

class CRasterSource;

/// @file
/// Recipes of pictures, with Failure for what does not succeed.

namespace zelto::host {

CDisplayRecipe ReadRecipe(const std::string& path);

/// A file of that name is replaced when the new one is complete.
void WriteRecipe(const CDisplayRecipe& recipe, const std::string& path);

/// Has a source show what a recipe says. View and mask are the caller's to use.
void ApplyRecipe(const CDisplayRecipe& recipe, CRasterSource& source);

/// What a source now shows, without a mask.
/// @param srs system that the view is in, as it was given; empty: the file's own
CDisplayRecipe TakeRecipe(const CRasterSource& source, const View& view, const std::string& srs);

} // namespace zelto::host
