#include "cli/render/Recipe.h"

#include "zelto/raster/RasterSource.h"

#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/Open.h"

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

CDisplayRecipe ReadRecipe(const std::string& path) {
    CDisplayRecipe recipe;
    if (!recipe.Read(host::Wide(path).c_str()))
        throw host::Failure(path, host::LastReason("it cannot be read"));
    return recipe;
}

void ApplyRecipe(const CDisplayRecipe& recipe, CRasterSource& source, const std::string& path) {
    if (!recipe.Apply(source))
        throw host::Failure(path, host::LastReason("it cannot be shown so"));
}

CDisplayRecipe TakeRecipe(const CRasterSource& source, const View& view, const std::string& srs,
                          const std::string& path) {
    CDisplayRecipe recipe;
    if (!recipe.Take(source))
        throw host::Failure(path, host::LastReason("it shows nothing"));
    recipe.SetView(CDisplayRecipe::View{view.box, view.width, view.height, srs});
    return recipe;
}

void WriteRecipe(const CDisplayRecipe& recipe, const std::string& path) {
    if (!recipe.Write(host::Wide(path).c_str()))
        throw host::Failure(path, host::LastReason("it cannot be written"));
}

} // namespace zelto::cli
