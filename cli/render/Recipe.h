#pragma once

#include "zelto/display/DisplayRecipe.h"

#include "cli/render/View.h"

#include <string>

namespace CLI {
class App;
}

namespace zelto::cli {

struct RecipeOptions {
    std::string from; ///< file that says how the picture is made; empty: the options do
    std::string to;   ///< file that is told how it was; empty: none
};

/// Adds --recipe and --save-recipe. Beside a recipe only the view may be chosen; call it after the
/// other options have been added.
void AddRecipeOptions(CLI::App& render, RecipeOptions& options);

/// Throws Failure.
CDisplayRecipe ReadRecipe(const std::string& path);

/// Has a source show what a recipe says. Throws Failure naming `path`.
void ApplyRecipe(const CDisplayRecipe& recipe, CRasterSource& source, const std::string& path);

/// What a source now shows. Throws Failure naming `path`.
CDisplayRecipe TakeRecipe(const CRasterSource& source, const View& view, const std::string& srs,
                          const std::string& path);

/// Throws Failure.
void WriteRecipe(const CDisplayRecipe& recipe, const std::string& path);

} // namespace zelto::cli
