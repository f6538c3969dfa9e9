// What a viewer does behind its window: shows a scene, zooms at the mouse, drags the view, lets the
// stretch follow it, shows only what lies in an area, and measures that.
//
//   view_host SCENE FOLDER      writes whole.ppm, zoomed.ppm, dragged.ppm and area.ppm

#include "zelto/Zelto.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int WIDTH = 320;
constexpr int HEIGHT = 240;

/// The part of the ground that the window shows: square pixels, whatever the shape of the window.
class View {
  public:
    /// All of a box in the middle of the window.
    explicit View(const CBoundingBox& box)
        : m_x((box.GetLeft() + box.GetRight()) / 2),
          m_y((box.GetTop() + box.GetBottom()) / 2),
          m_scale(std::max(box.GetWidth() / WIDTH, box.GetHeight() / HEIGHT)) {}

    CBoundingBox Box() const {
        const double dx = m_scale * WIDTH / 2;
        const double dy = m_scale * HEIGHT / 2;
        return {m_x - dx, m_y + dy, m_x + dx, m_y - dy};
    }
    /// Moves the ground under the mouse along with it, by so many pixels to the right and down.
    void Drag(int columns, int rows) {
        m_x -= columns * m_scale;
        m_y += rows * m_scale;
    }
    /// Makes the ground `factor` times as large. What is under the mouse stays there.
    void Zoom(double factor, int column, int row) {
        const double dx = (column - WIDTH / 2.0) * m_scale;
        const double dy = (row - HEIGHT / 2.0) * m_scale;
        m_x += dx - dx / factor;
        m_y -= dy - dy / factor;
        m_scale /= factor;
    }

  private:
    double m_x; ///< ground position in the middle of the window
    double m_y;
    double m_scale; ///< ground units per pixel
};

/// A dialog's part in long work: shows it and may cancel it.
class Progress : public CDataProgress {
  public:
    void HostPrepare() override {}
    void BeginProgress(const wchar_t* /*title*/, int /*total*/) override {}
    bool StepProgress(int /*percent*/, const wchar_t* /*message*/) override { return !cancelled; }
    void HostFinish() override {}
    void HostShow() override {}
    void HostHide() override {}

    bool cancelled = false;
};

/// Tells why the last call failed.
bool Fail(const char* what) {
    std::fprintf(stderr, "view_host: %s: %s\n", what, CGISDataSource::GetLastErrorText().c_str());
    return false;
}

/// Writes blue, green, red, alpha pixels on white as a portable pixmap.
bool WritePicture(const std::string& path, const std::vector<unsigned char>& pixels) {
    std::ofstream stream(path, std::ios::binary);
    stream << "P6\n" << WIDTH << ' ' << HEIGHT << "\n255\n";
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 4)
        for (const std::size_t channel : {2U, 1U, 0U})
            stream.put(static_cast<char>(pixels[i + 3] == 0 ? 255 : pixels[i + channel]));
    return static_cast<bool>(stream.flush());
}

/// Opens a scene. A large one without a pyramid gets one, and is then opened again to show it.
bool OpenScene(CRasterSource& scene, const std::wstring& path) {
    scene.SetForDisplay(true);
    if (scene.Open(path.c_str(), GIS_READONLY, true) != GIS_SUCCESS)
        return Fail("cannot open the scene");
    if (!scene.IsOverviewsValid()) {
        Progress progress;
        if (scene.BuildOverviews("NEAREST", 0, nullptr, &progress) != GIS_SUCCESS)
            return Fail("cannot build the pyramid"); // the scene can be shown all the same
        if (scene.Reopen(GIS_READONLY, false) != GIS_SUCCESS)
            return Fail("cannot open the scene again");
    }
    return true;
}

/// Draws the view as the scene's stretch is set.
bool Draw(CRasterSource& scene, const View& view, const std::string& path) {
    CBoundingBox box = view.Box();
    std::vector<unsigned char> pixels(static_cast<std::size_t>(WIDTH) * HEIGHT * 4);
    if (!scene.GetShowData(&box, WIDTH, HEIGHT, pixels.data(), true))
        return Fail("cannot draw"); // also where the view lies beside the scene
    return WritePicture(path, pixels);
}

/// Draws what of the view lies in an area: one plane for each colour, and where the area is.
bool DrawArea(CRasterSource& scene, CAOISource& area, const View& view, const std::string& path) {
    CRasterAOI mask(&scene, &area);
    mask.Initialize();
    const std::size_t size = static_cast<std::size_t>(WIDTH) * HEIGHT;
    std::vector<unsigned char> planes[3];
    unsigned char* pointers[3];
    for (int i = 0; i < 3; ++i) {
        planes[i].resize(size);
        pointers[i] = planes[i].data();
    }
    std::vector<unsigned char> inside(size);
    CBoundingBox box = view.Box();
    if (!scene.GetMaskedShowData(&box, WIDTH, HEIGHT, 3, pointers, &mask, inside.data()))
        return Fail("cannot draw the area");
    std::vector<unsigned char> pixels;
    for (std::size_t i = 0; i < size; ++i)
        for (const unsigned char byte : {planes[2][i], planes[1][i], planes[0][i],
                                         static_cast<unsigned char>(inside[i] != 0 ? 255 : 0)})
            pixels.push_back(byte);
    return WritePicture(path, pixels);
}

/// Tells what the area holds.
bool Measure(CRasterSource& scene, CAOISource& area) {
    CRegionStatistics statistics(&scene);
    statistics.SetAOI(&area);
    Progress progress;
    if (statistics.Compute(&progress) != GIS_SUCCESS)
        return Fail("cannot measure the area");
    for (const CRegionStatistics::Band& band : statistics.GetBands())
        std::printf("band %d: %lld pixels, mean %.3f\n", band.index + 1,
                    static_cast<long long>(band.count), band.mean);
    return true;
}

/// A triangle in the middle of a box.
bool AddTriangle(CAOISource& area, const CBoundingBox& box) {
    auto triangle = std::make_unique<CDrawPolygon>();
    const double dx = box.GetWidth() / 4;
    const double dy = box.GetHeight() / 4;
    triangle->AddVertex({box.GetLeft() + dx, box.GetBottom() + dy});
    triangle->AddVertex({box.GetRight() - dx, box.GetBottom() + dy});
    triangle->AddVertex({(box.GetLeft() + box.GetRight()) / 2, box.GetTop() - dy});
    triangle->m_complete = true;
    if (!area.AddDrawShape(triangle.get()))
        return Fail("the area takes no triangle");
    static_cast<void>(triangle.release()); // the area owns it now
    return true;
}

/// Has the stretch go by the view and tells between which values it shows the first band.
bool StretchTo(CRasterSource& scene, const View& view) {
    CStretchPreparation stretch(&scene);
    if (!stretch.SetStretch("percent") || !stretch.SetClip(2, 98))
        return Fail("no such stretch");
    stretch.SetView(view.Box());
    if (stretch.Apply(nullptr) != GIS_SUCCESS)
        return Fail("cannot stretch");
    const CStretchPreparation::Band& first = stretch.GetBands().front();
    std::printf("band %d: %g to %g\n", first.index + 1, first.range.low, first.range.high);
    return true;
}

bool Show(CRasterSource& scene, const std::string& folder) {
    int bands[3] = {3, 2, 1}; // near infrared, red, green of this sensor
    if (!scene.SetShowBandNum(3, bands))
        return Fail("no such bands");
    View view(scene.GetExtent());
    if (!StretchTo(scene, view) || !Draw(scene, view, folder + "/whole.ppm"))
        return false;
    view.Zoom(4.0, WIDTH / 2, HEIGHT / 2);
    if (!StretchTo(scene, view) || !Draw(scene, view, folder + "/zoomed.ppm"))
        return false;
    view.Drag(-40, 25); // the stretch stays, so that colours do not change under the hand
    if (!Draw(scene, view, folder + "/dragged.ppm"))
        return false;
    CAOISource area;
    return AddTriangle(area, view.Box()) && DrawArea(scene, area, view, folder + "/area.ppm") &&
           Measure(scene, area);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: view_host SCENE FOLDER\n");
        return 2;
    }
    CRasterSource scene;
    return OpenScene(scene, CommonFun::M2U(argv[1])) && Show(scene, argv[2]) ? 0 : 1;
}
