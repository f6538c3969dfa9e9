#include "zelto/aoi/DrawShape.h"

#include "cli/render/Stretch.h"
#include "host/base/Failure.h"
#include "host/base/Text.h"
#include "host/files/RasterChoice.h"
#include "host/files/Region.h"
#include "host/picture/RenderRamps.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/InputBytes.h"

namespace {

void Parse(int kind, const std::string& text) {
    switch (kind) {
    case 0:
        zelto::host::ParseNumbers("--option", text);
        break;
    case 1:
        zelto::host::ParseBands("--option", text, 7);
        break;
    case 2:
        zelto::host::ParseBox("--option", text);
        break;
    case 3:
        zelto::host::ParseShape("--option", text);
        break;
    case 4:
        zelto::host::ParsePixelType(text);
        break;
    case 5:
        zelto::host::ChooseFormat(text, "new.tif");
        break;
    case 6:
        zelto::host::ChooseFormat("", text);
        break;
    case 7:
        zelto::host::CheckCreationOptions({text}, RDF_GTiff);
        break;
    case 8: {
        zelto::cli::StretchOptions options;
        options.name = text;
        zelto::cli::CheckStretch(options, false);
        break;
    }
    case 9:
        zelto::host::MakeRamp(text);
        break;
    default:
        zelto::host::Narrow(zelto::host::Wide(text));
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
    } catch (const zelto::host::UsageError&) {
    } catch (const zelto::host::Failure&) {
    }
    return 0;
}
