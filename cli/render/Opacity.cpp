#include "cli/render/Opacity.h"

#include "zelto/raster/RasterSource.h"

#include "cli/render/FileOpacity.h"
#include "cli/render/System.h"
#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/Open.h"

namespace zelto::cli {

void ApplyOpacity(host::Picture& picture, const CRasterSource& source, const View& view,
                  const std::string& srs) {
    const FileOpacity opacity(source);
    if (opacity.Path().empty())
        return;
    CRasterSource mask;
    OpenForDisplay(mask, opacity.Path(), srs);
    if (!srs.empty())
        OpenForDisplay(mask, opacity.Path(), srs, &view);
    mask.SetStretchType(StretchNone);
    host::Picture drawn(view.width, view.height);
    CBoundingBox box = view.box;
    if (!mask.GetShowData(&box, view.width, view.height, drawn.pixels.data(), true))
        throw host::Failure(host::Narrow(source.GetFilePath()),
                            host::LastReason("its mask cannot be read"));
    for (std::size_t i = 0; i < picture.pixels.size(); i += 4) {
        // Beside the mask nothing was drawn into either.
        const int shown = drawn.pixels[i + 3] != 0 ? drawn.pixels[i] : 0;
        unsigned char& alpha = picture.pixels[i + 3];
        alpha = static_cast<unsigned char>((alpha * shown + 127) / 255);
    }
}

} // namespace zelto::cli
