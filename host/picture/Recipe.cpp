#include "host/picture/Recipe.h"

#include "zelto/raster/RasterSource.h"

#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/Open.h"

namespace zelto::host {

CDisplayRecipe ReadRecipe(const std::string& path) {
    CDisplayRecipe recipe;
    ForgetReasons();
    if (!recipe.Read(Wide(path).c_str()))
        throw Failure(path, LastReason("it cannot be read"));
    return recipe;
}

void WriteRecipe(const CDisplayRecipe& recipe, const std::string& path) {
    ForgetReasons();
    if (!recipe.Write(Wide(path).c_str()))
        throw Failure(path, LastReason("it cannot be written"));
}

void ApplyRecipe(const CDisplayRecipe& recipe, CRasterSource& source) {
    ForgetReasons();
    if (!recipe.Apply(source))
        throw Failure(Narrow(source.GetFilePath()), LastReason("it cannot be shown so"));
}

CDisplayRecipe TakeRecipe(const CRasterSource& source, const View& view, const std::string& srs) {
    CDisplayRecipe recipe;
    ForgetReasons();
    if (!recipe.Take(source))
        throw Failure(Narrow(source.GetFilePath()), LastReason("it shows nothing"));
    recipe.SetView(CDisplayRecipe::View{view.box, view.width, view.height, srs});
    return recipe;
}

} // namespace zelto::host
