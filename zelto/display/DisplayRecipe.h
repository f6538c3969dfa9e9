#pragma once

#include "zelto/Export.h"
#include "zelto/geometry/BoundingBox.h"

#include <memory>
#include <optional>
#include <string>

class CRasterSource;

namespace zelto {
struct RecipeContent;
}

/// Everything that makes a picture of a raster: the bands that are shown, their stretch with the
/// bounds, histograms and tables that were found for it, colour adjustments, ramp, classes, and
/// what a host adds: the view and an area that masks. An addition to the fixed interface.
///
/// Applied to the same image, on whatever machine, a recipe gives the same bytes: nothing is
/// sampled or counted again. Applied to others it shows equal values in equal colours.
///
/// What belongs to the image itself stays there: its pixels, its colour table, its no-data values.
///
/// In a file it is JSON; the schema is docs/schema/display-recipe.schema.json. Members that are
/// not known, and values that cannot be, are refused, and CGISDataSource::GetLastErrorText() names
/// the file and the member.
///
/// @code
/// CDisplayRecipe look;
/// look.Take(scene);                          // after its stretch was prepared
/// look.Write(L"look.json");
/// ...
/// if (look.Read(L"look.json") && look.Apply(other))
///     other.GetShowData(&box, w, h, picture.data(), true);
/// @endcode
class ZELTO_API CDisplayRecipe {
  public:
    /// The part of the ground that is drawn.
    struct View {
        CBoundingBox box;  ///< ground units
        int width = 0;     ///< pixels of the picture
        int height = 0;    ///< pixels of the picture
        std::string srs{}; ///< reference system to show the image in; empty: its own
    };

    /// An area outside which nothing of the image is shown.
    struct Mask {
        std::wstring area;    ///< path of its file
        bool isBlack = false; ///< whether the outside is black instead of transparent
    };

    /// A recipe without bands, which cannot be applied.
    CDisplayRecipe();
    CDisplayRecipe(const CDisplayRecipe& other);
    CDisplayRecipe& operator=(const CDisplayRecipe& other);
    ~CDisplayRecipe();

    /// Takes what a source shows and how. View and mask stay as they are.
    /// @return false for a source that shows no band, or one that it does not have
    bool Take(const CRasterSource& source);
    /// Has a source show what the recipe says and how. View and mask are the host's to use.
    /// @return false, with the source as it was, when it lacks one of the bands; false also
    ///         without memory
    bool Apply(CRasterSource& source) const;

    void SetView(const std::optional<View>& view);
    const std::optional<View>& GetView() const;
    void SetMask(const std::optional<Mask>& mask);
    const std::optional<Mask>& GetMask() const;

    /// Reads a file. The path of the mask's area is relative to the file's folder.
    /// @return false, with the recipe as it was, for a file that cannot be read or is no recipe
    bool Read(const wchar_t* path);
    /// Writes a file, which replaces one of the same name when it is complete.
    bool Write(const wchar_t* path) const;
    /// The same with a text of UTF-8, and paths as they stand.
    bool SetJson(const std::string& text);
    std::string GetJson() const;

  private:
    std::unique_ptr<zelto::RecipeContent> m_content;
};
