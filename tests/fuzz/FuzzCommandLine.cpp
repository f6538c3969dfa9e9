#include "zelto/aoi/DrawShape.h"

#include "cli/render/Stretch.h"
#include "cli/support/Failure.h"
#include "cli/support/RasterChoice.h"
#include "cli/support/Region.h"
#include "cli/support/RenderRamps.h"
#include "cli/support/Text.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/InputBytes.h"

namespace {

void Parse(int kind, const std::string& text) {
    switch (kind) {
    case 0:
        zelto::cli::ParseNumbers("--option", text);
        break;
    case 1:
        zelto::cli::ParseBands("--option", text, 7);
        break;
    case 2:
        zelto::cli::ParseBox("--option", text);
        break;
    case 3:
        zelto::cli::ParseShape("--option", text);
        break;
    case 4:
        zelto::cli::ParsePixelType(text);
        break;
    case 5:
        zelto::cli::ChooseFormat(text, "new.tif");
        break;
    case 6:
        zelto::cli::ChooseFormat("", text);
        break;
    case 7:
        zelto::cli::CheckCreationOptions({text}, RDF_GTiff);
        break;
    case 8: {
        zelto::cli::StretchOptions options;
        options.name = text;
        zelto::cli::CheckStretch(options, false);
        break;
    }
    case 9:
        zelto::cli::MakeRamp(text);
        break;
    default:
        zelto::cli::Narrow(zelto::cli::Wide(text));
    }
}

} // namespace

// The texts of the command line's options: refused by the two exceptions that the program turns
// into a line of its own, never by another.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zelto::fuzz::InputBytes bytes(data, size);
    const int kind = bytes.Below(11);
    try {
        Parse(kind, bytes.Rest());
    } catch (const zelto::cli::UsageError&) {
    } catch (const zelto::cli::Failure&) {
    }
    return 0;
}
