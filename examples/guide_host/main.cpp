// What README.md and docs/host-guide.md show, as one program: tells what a scene and parts of it
// are.
//
//   guide_host SCENE FOLDER     writes its logs and picture.ppm into the folder

#include <ogr_geometry.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <vector>
#include <zelto/Zelto.h>

namespace {

void Show(const std::string& text) {
    std::printf("%s\n", text.c_str());
}

/// What the engine says goes to the error output.
class HostLog : public CLog {
  protected:
    void WriteMessage(int level, const std::wstring& /*file*/, int /*line*/,
                      const std::wstring& /*function*/, const std::wstring& message) override {
        std::fprintf(stderr, "%d: %s\n", level, CommonFun::U2M(message).c_str());
    }
};

/// Cancels when the user has said so.
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

bool FailsWithAReason(const wchar_t* path) {
    CRasterSource scene;
    if (scene.Open(path, GIS_READONLY, true) != GIS_SUCCESS) {
        Show(CGISDataSource::GetLastErrorText()); // "/data/a.tif: not recognized as ..."
        return true;
    }
    return false;
}

bool StretchByHand(CRasterSource& scene, const CBoundingBox& view) {
    Progress progress;
    CStretchPreparation stretch(&scene); // after the bands were chosen
    stretch.SetStretch("percent");       // or "auto", "stddev", "linear", ...
    stretch.SetClip(2, 98);
    stretch.SetView(view); // or SetArea; nothing: the whole image
    if (stretch.Apply(&progress) != GIS_SUCCESS) {
        Show(CGISDataSource::GetLastErrorText()); // the former stretch stays
        return false;
    }
    return true;
}

bool TakesARecipeAlong(const CRasterSource& scene, CRasterSource& other, const wchar_t* path) {
    CDisplayRecipe look;
    if (!look.Take(scene) || !look.Write(path))
        return false;
    CDisplayRecipe same;
    return same.Read(path) && same.Apply(other);
}

bool Measure(CRasterSource& scene, CAOISource& area) {
    Progress progress;
    CRegionStatistics statistics(&scene);
    statistics.SetAOI(&area); // or SetShape, SetBox; nothing: the whole raster
    if (statistics.Compute(&progress) != GIS_SUCCESS)
        return false;
    for (const CRegionStatistics::Band& band : statistics.GetBands())
        std::printf("%lld %.3f %.3f\n", static_cast<long long>(band.count), band.mean,
                    band.standardDeviation);
    return true;
}

bool MeasureZone(CRasterSource& scene, const OGRGeometry& polygon, int band) {
    Progress progress;
    CZonalStatistics zones(&scene);
    zones.SetWeights(CZonalStatistics::Weights::Coverage);
    zones.SetQuantiles({0.1, 0.5, 0.9});
    zones.AddZone(&polygon); // in the raster's reference system
    if (zones.Compute(&progress) != GIS_SUCCESS)
        return false;
    std::printf("zone %.3f\n", zones.GetZone(0)[band].mean);
    return true;
}

/// A rectangle from the middle of a box to its edges.
std::unique_ptr<OGRGeometry> Quarter(const CBoundingBox& box) {
    const double x = (box.GetLeft() + box.GetRight()) / 2;
    const double y = (box.GetTop() + box.GetBottom()) / 2;
    auto ring = std::make_unique<OGRLinearRing>();
    ring->addPoint(x, y);
    ring->addPoint(box.GetRight(), y);
    ring->addPoint(box.GetRight(), box.GetTop());
    ring->addPoint(x, box.GetTop());
    ring->closeRings();
    auto polygon = std::make_unique<OGRPolygon>();
    polygon->addRingDirectly(ring.release());
    return polygon;
}

/// The same as an area of the engine's own.
bool AddQuarter(CAOISource& area, const CBoundingBox& box) {
    auto rectangle = std::make_unique<CDrawRectangle>();
    rectangle->AddVertex({(box.GetLeft() + box.GetRight()) / 2, box.GetTop()});
    rectangle->AddVertex({box.GetRight(), (box.GetTop() + box.GetBottom()) / 2});
    rectangle->m_complete = true;
    return area.AddDrawShape(rectangle.get()) && rectangle.release() != nullptr;
}

/// The picture of the README: bands 4, 3 and 2 between their percentiles 2 and 98, in blue, green,
/// red and alpha, rows from the top; empty where that fails.
std::vector<unsigned char> QuickLook(const wchar_t* path, int width, int height) {
    CRasterSource scene;
    scene.SetForDisplay(true);
    if (scene.Open(path, GIS_READONLY, true) != GIS_SUCCESS)
        return {};
    int bands[] = {3, 2, 1}; // counted from 0
    scene.SetShowBandNum(3, bands);
    CStretchPreparation stretch(&scene);
    stretch.SetStretch("percent");
    stretch.Apply(nullptr);
    CBoundingBox box = scene.GetExtent();
    std::vector<unsigned char> picture(width * height * 4); // blue, green, red, alpha
    scene.GetShowData(&box, width, height, picture.data(), true);
    CRegionStatistics statistics(&scene);
    statistics.Compute(nullptr);
    std::printf("mean of band 4: %.4f\n", statistics.GetBands()[3].mean);
    return picture;
}

bool WritePicture(const std::string& path, const std::vector<unsigned char>& pixels, int width,
                  int height) {
    std::ofstream stream(path, std::ios::binary);
    stream << "P6\n" << width << ' ' << height << "\n255\n";
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 4)
        for (const std::size_t channel : {2U, 1U, 0U})
            stream.put(static_cast<char>(pixels[i + channel]));
    return static_cast<bool>(stream.flush());
}

bool Draw(const std::wstring& path, const std::string& folder) {
    const int w = 349;
    const int h = 352;
    CRasterSource scene;
    scene.SetForDisplay(true);                                       // before opening
    if (scene.Open(path.c_str(), GIS_READONLY, true) != GIS_SUCCESS) // true: north-up view
        return false;
    int bands[3] = {3, 2, 1};
    scene.SetShowBandNum(3, bands);
    scene.SetStretchType(StretchStdDev);
    CBoundingBox box = scene.GetExtent();
    std::vector<unsigned char> picture(w * h * 4); // blue, green, red, alpha; rows from the top
    if (!scene.GetShowData(&box, w, h, picture.data(), true))
        return false;

    CRasterSource other;
    other.SetForDisplay(true);
    if (other.Open(path.c_str(), GIS_READONLY, true) != GIS_SUCCESS || !StretchByHand(scene, box) ||
        !TakesARecipeAlong(scene, other, CommonFun::M2U(folder + "/look.json").c_str()))
        return false;
    std::vector<unsigned char> again(picture.size());
    if (!scene.GetShowData(&box, w, h, picture.data(), true) ||
        !other.GetShowData(&box, w, h, again.data(), true) || picture != again)
        return false;

    CAOISource area;
    return picture == QuickLook(path.c_str(), w, h) && AddQuarter(area, box) &&
           WritePicture(folder + "/picture.ppm", picture, w, h) && Measure(scene, area) &&
           MeasureZone(scene, *Quarter(box), 0);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: guide_host SCENE FOLDER\n");
        return 2;
    }
    const std::string folder = argv[2];
    const std::string logs = folder + "/logs";
    CGISDataSource::SetLogFolder(logs.c_str()); // "": no log
    CGISDataSource::RegisterGDAL();             // at start
    HostLog hostLog;
    CLog::m_pLogger = &hostLog; // null: the engine writes no log
    const bool done =
        Draw(CommonFun::M2U(argv[1]), folder) && FailsWithAReason(L"/there/is/no/such.tif");
    CLog::m_pLogger = nullptr;
    CGISDataSource::DestroyGDAL(); // at the end
    return done ? 0 : 1;
}
