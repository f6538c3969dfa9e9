#include "cli/render/Recipe.h"

#include <CLI/CLI.hpp>

#include <set>

namespace zelto::cli {

void AddRecipeOptions(CLI::App& render, RecipeOptions& options) {
    auto* from = render.add_option("--recipe", options.from,
                                   "make the picture as a file of --save-recipe says");
    const std::set<std::string> besides = {"--help",   "--box",       "--center",    "--scale",
                                           "--size",   "--png-level", "--overwrite", "--into",
                                           "--format", "--jobs"};
    for (CLI::Option* option : render.get_options())
        if (option != from && option->nonpositional() && besides.count(option->get_name()) == 0)
            from->excludes(option);
    render.add_option("--save-recipe", options.to,
                      "write how the picture is made, as JSON: bands, bounds, colours, view, area");
}

} // namespace zelto::cli
