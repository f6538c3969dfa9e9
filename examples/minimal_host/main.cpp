// A complete host: opens a raster, tells its size and extent and, when a second path is given,
// draws it into a picture no wider than 512 pixels.
//
//   minimal_host FILE [PICTURE.ppm]

#include "zelto/Zelto.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int LARGEST_WIDTH = 512;

/// Writes blue, green, red, alpha pixels as a portable pixmap.
bool WritePicture(const char* path, const std::vector<unsigned char>& pixels, int w, int h) {
    std::ofstream stream(path, std::ios::binary);
    stream << "P6\n" << w << ' ' << h << "\n255\n";
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
        const char rgb[] = {static_cast<char>(pixels[i + 2]), static_cast<char>(pixels[i + 1]),
                            static_cast<char>(pixels[i])};
        stream.write(rgb, sizeof rgb);
    }
    return static_cast<bool>(stream.flush());
}

bool Draw(CRasterSource& scene, const char* path) {
    const int w = std::min(LARGEST_WIDTH, scene.GetWidth());
    const int h = std::max(
        1, static_cast<int>(static_cast<double>(scene.GetHeight()) * w / scene.GetWidth()));
    CBoundingBox box = scene.GetExtent();
    std::vector<unsigned char> pixels(static_cast<std::size_t>(w) * h * 4);
    return scene.GetShowData(&box, w, h, pixels.data(), true) && WritePicture(path, pixels, w, h);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) {
        std::fprintf(stderr, "usage: minimal_host FILE [PICTURE.ppm]\n");
        return 2;
    }
    CRasterSource scene;
    scene.SetForDisplay(true); // before opening: it makes the bands ready to be drawn
    const std::wstring path = CommonFun::M2U(argv[1]);
    if (scene.Open(path.c_str(), GIS_READONLY, true) != GIS_SUCCESS) {
        std::fprintf(stderr, "minimal_host: cannot open %s\n", argv[1]);
        return 1;
    }
    const CBoundingBox extent = scene.GetExtent();
    std::printf("%s: %d x %d pixels, %d bands\n",
                CommonFun::U2M(CommonFun::GetFileNameWithExtension(path)).c_str(), scene.GetWidth(),
                scene.GetHeight(), scene.GetBandCount());
    std::printf("extent %.2f %.2f %.2f %.2f\n", extent.GetLeft(), extent.GetTop(),
                extent.GetRight(), extent.GetBottom());
    if (argc == 3 && !Draw(scene, argv[2])) {
        std::fprintf(stderr, "minimal_host: cannot draw %s\n", argv[2]);
        return 1;
    }
    return 0;
}
