// How long the interface's thread takes for a frame while the map of a large image is dragged, and
// how soon the first picture is there: zelto_view_frames FOLDER

#include "zelto/Zelto.h"

#include "tests/viewer/WindowDriver.h"
#include "viewer/views/MapPictures.h"
#include "viewer/views/MapView.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <vector>

namespace {

using namespace zelto;

constexpr int SIDE = 12000;
constexpr int BANDS = 4;
constexpr int FRAMES = 400;

/// A scene with structure at every scale, and its pyramid.
bool MakeScene(const std::string& path) {
    CRasterSource made;
    double place[6] = {500000.0, 10.0, 0.0, 4000000.0, 0.0, -10.0};
    if (made.CreateRaster(RDF_GTiff, CommonFun::M2U(path).c_str(), SIDE, SIDE, BANDS, PDT_Byte,
                          place, "EPSG:32650", nullptr) != GIS_SUCCESS)
        return false;
    std::vector<unsigned char> row(SIDE);
    for (int band = 0; band < BANDS; ++band)
        for (int y = 0; y < SIDE; ++y) {
            for (int x = 0; x < SIDE; ++x)
                row[static_cast<std::size_t>(x)] = static_cast<unsigned char>(
                    128 + 60 * std::sin(x * 0.002 * (band + 1)) * std::cos(y * 0.003) +
                    (x * 7 + y * 13) % 50);
            if (made.GetRasterBand(band)->WriteBlock(0, y, SIDE, 1, row.data(), SIDE, 1, PDT_Byte,
                                                     0, 0) != GIS_SUCCESS)
                return false;
        }
    made.Close();
    CRasterSource again;
    return again.Open(CommonFun::M2U(path).c_str(), GIS_UPDATE, false) == GIS_SUCCESS &&
           again.BuildOverviews("AVERAGE", 0, nullptr, nullptr) == GIS_SUCCESS;
}

/// Time that this thread has worked, whatever others do with the processor.
double ThreadMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double Milliseconds(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// What the engine needs for the same view by itself, from opening to the picture.
double DrawByEngine(const std::string& path, const view::ViewTransform& view) {
    QElapsedTimer timer;
    timer.start();
    CRasterSource source;
    source.SetForDisplay(true);
    source.Open(CommonFun::M2U(path).c_str(), GIS_READONLY, true);
    CStretchPreparation stretch(&source);
    stretch.Apply(nullptr);
    QImage image(view.Size(), QImage::Format_ARGB32);
    CBoundingBox box = view.Box();
    source.GetShowData(&box, image.width(), image.height(), image.bits(), true);
    return Milliseconds(timer);
}

/// What each frame of a drag that never rests takes of the interface's thread.
std::vector<double> MeasureFrames(view::MapView& map) {
    std::vector<double> times;
    const QPointF middle(map.rect().center());
    QTest::mousePress(&map, Qt::LeftButton, {}, middle.toPoint());
    for (int i = 0; i < FRAMES; ++i) {
        const QPointF at = middle + 180.0 * QPointF(std::sin(i * 0.05), std::cos(i * 0.07));
        const double before = ThreadMilliseconds();
        QMouseEvent move(QEvent::MouseMove, at, map.mapToGlobal(at), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(&map, &move);
        map.repaint();
        QCoreApplication::processEvents(); // answers that came in meanwhile
        times.push_back(ThreadMilliseconds() - before);
        QTest::qWait(2);
    }
    QTest::mouseRelease(&map, Qt::LeftButton, {}, middle.toPoint());
    std::sort(times.begin(), times.end());
    return times;
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const QString folder = QApplication::arguments().value(1, "build/bench-data");
    QDir().mkpath(folder);
    const QTemporaryDir settings;
    test::UseSettingsOfTest(settings.path());
    const std::string path = (folder + "/viewer-scene.tif").toStdString();
    view::MainWindow window;
    window.resize(1500, 950);
    window.show();
    (void)QTest::qWaitForWindowExposed(&window);
    if (!std::filesystem::exists(path) && !MakeScene(path)) {
        std::fprintf(stderr, "%s: cannot be made\n", path.c_str());
        return 1;
    }
    QElapsedTimer timer;
    timer.start();
    window.OpenFiles({QString::fromStdString(path)});
    test::WaitUntil([&] { return !window.GetMap().Shown().image.isNull(); });
    const double first = Milliseconds(timer);
    test::Settle(window);
    const double engine = DrawByEngine(path, window.GetMap().View());
    window.FindAction("one-to-one")->trigger();
    test::Settle(window);
    const std::vector<double> frames = MeasureFrames(window.GetMap());
    const auto part = [&](double share) {
        return frames[static_cast<std::size_t>(share * static_cast<double>(frames.size() - 1))];
    };
    std::printf("%d x %d pixels, %d bands, map of %d x %d\n", SIDE, SIDE, BANDS,
                window.GetMap().View().Size().width(), window.GetMap().View().Size().height());
    std::printf("%-44s %8.1f ms\n", "first picture in the window", first);
    std::printf("%-44s %8.1f ms\n", "the engine alone, opening to picture", engine);
    std::printf("%-44s %8.2f ms\n", "frame while dragging, median", part(0.5));
    std::printf("%-44s %8.2f ms\n", "frame while dragging, 99 of 100 below", part(0.99));
    std::printf("%-44s %8.2f ms\n", "frame while dragging, longest", part(1.0));
    return 0;
}
