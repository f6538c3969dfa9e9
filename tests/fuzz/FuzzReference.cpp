#include "zelto/coordinate/CoordinateAlgorithm.h"
#include "zelto/coordinate/CoordinateTransformation.h"
#include "zelto/coordinate/ImageInfo.h"
#include "zelto/coordinate/Reproject.h"

#include "tests/fuzz/FuzzEngine.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/InputBytes.h"

#include <string>

namespace {

void Transform(CCoordinateTransformation* transformation) {
    double x[] = {0.0, 117.5, -500000.0, 1e308};
    double y[] = {0.0, 36.25, 4000000.0, -1e308};
    double z[] = {0.0, 100.0, -1e9, 1e308};
    int success[4];
    if (transformation != nullptr)
        transformation->Transform(4, x, y, z, success);
    CCoordinateTransformation::DestroyCoordinateTransformation(transformation);
}

void LayOut(const std::string& from, const std::string& to) {
    tagImageInfo source;
    source.width = 30;
    source.height = 20;
    source.srs = from;
    tagImageInfo target;
    target.srs = to;
    CReproject::GetExtent(source, target);
}

void AskAll(const char* srs, int zone, int zoneWidth) {
    CCoordinateAlgorithm::GetCoordinateInfoString(srs);
    CCoordinateAlgorithm::GetCoordinateName(srs);
    CCoordinateAlgorithm::GetDatum(srs);
    CCoordinateAlgorithm::GetUnit(srs);
    CCoordinateAlgorithm::IsProjected(srs);
    CCoordinateAlgorithm::IsGeographic(srs);
    CCoordinateAlgorithm::IsSameCoordinate(srs, "EPSG:4326");
    CCoordinateAlgorithm::NewChinaProjCS(srs, zone, zoneWidth);
    CCoordinateAlgorithm::CopyGeogCSFrom(srs);
    zelto::fuzz::Require(CCoordinateAlgorithm::IsSameCoordinate(srs, srs),
                         "a readable reference is the same as itself");
}

} // namespace

// A text that describes a spatial reference in any form, which is looked up in the projection
// library's database where it is no well-known text; sometimes through everything that reads such
// texts.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zelto::fuzz::PrepareEngine();
    zelto::fuzz::InputBytes bytes(data, size);
    const int zone = bytes.Count();
    const int zoneWidth = bytes.Flag() ? 3 : 6;
    std::vector<double> shift = bytes.Numbers(bytes.Flag() ? 7 : 0);
    const std::string text = bytes.Rest();
    const char* srs = text.c_str();
    if (!CCoordinateAlgorithm::IsValidCoordinate(srs))
        return 0;
    // Every question reads the text anew.
    if (zelto::fuzz::IsChosen(data, size, 8))
        AskAll(srs, zone, zoneWidth);
    // What it takes the projection library to connect two systems would be most of a run.
    if (!zelto::fuzz::IsChosen(data, size, 64))
        return 0;
    double* parameters = shift.empty() ? nullptr : shift.data();
    Transform(
        CCoordinateTransformation::CreateCoordinateTransformation(srs, "EPSG:4326", parameters));
    Transform(CCoordinateTransformation::CreateCoordinateTransformation("EPSG:32650", srs, nullptr,
                                                                        parameters));
    LayOut(text, "EPSG:3857");
    LayOut("EPSG:4326", text);
    return 0;
}
