#pragma once

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

} // namespace zelto::cli
