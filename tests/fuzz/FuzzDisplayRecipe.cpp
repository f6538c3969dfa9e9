#include "zelto/display/DisplayRecipe.h"

#include "tests/fuzz/FuzzEngine.h"
#include "tests/fuzz/FuzzTarget.h"

// A display recipe: read, and the same text whenever it is written and read again.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zelto::fuzz::PrepareEngine();
    CDisplayRecipe recipe;
    if (!recipe.SetJson(std::string(data, data + size)))
        return 0;
    const std::string text = recipe.GetJson();
    CDisplayRecipe again;
    zelto::fuzz::Require(again.SetJson(text), "a recipe that was written is read back");
    zelto::fuzz::Require(again.GetJson() == text, "what was written stays the same");
    return 0;
}
