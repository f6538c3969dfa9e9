// Makes the pictures of the main situations that the guide shows: zelto_view_screens FOLDER SCENE

#include "tests/viewer/WindowDriver.h"
#include "viewer/model/ShapeEditing.h"
#include "viewer/views/Icons.h"
#include "viewer/views/MapView.h"
#include "viewer/views/Theme.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QDockWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>
#include <cstdio>
#include <memory>

namespace {

using namespace zelto;

using WindowPointer = std::unique_ptr<view::MainWindow>;

WindowPointer ShowWindow(view::Theme theme) {
    view::Preferences().SetThemeName(theme == view::Theme::Dark ? "dark" : "light");
    auto window = std::make_unique<view::MainWindow>();
    window->resize(1280, 800);
    window->show();
    (void)QTest::qWaitForWindowExposed(window.get());
    return window;
}

void Choose(view::MainWindow& window, const char* box, int index) {
    if (auto* combo = window.findChild<QComboBox*>(box))
        combo->setCurrentIndex(index);
}

/// Near infrared, red and green as red, green and blue: vegetation in red.
void ShowFalseColor(view::MainWindow& window) {
    Choose(window, "band0", 3);
    Choose(window, "band1", 2);
    Choose(window, "band2", 1);
    Choose(window, "stretch", 1);
    test::Settle(window);
}

/// Shapes of three classes, at places told as parts of the map's sides.
void AddClasses(view::MainWindow& window) {
    const view::ViewTransform map = window.GetMap().View();
    const auto at = [&](double x, double y) {
        return map.ToGround({x * map.Size().width(), y * map.Size().height()});
    };
    const auto add = [&](const QString& name, const view::Shapes& shapes) {
        const int number = window.GetTraining().Add(name);
        window.GetAreas().AddAll(shapes, name);
        window.GetAreas().SetClassOfSelected(number);
    };
    add("Sea",
        {view::MakeShape(SHAPE_POLYGON, {at(.74, .86), at(.90, .72), at(.92, .94), at(.76, .96)}),
         view::MakeShape(SHAPE_ELLIPSE, {at(.87, .50), at(.94, .62)})});
    add("Forest", {view::MakeShape(SHAPE_RECTANGLE, {at(.08, .06), at(.17, .17)}),
                   view::MakeShape(SHAPE_POLYGON, {at(.38, .30), at(.46, .28), at(.47, .38)})});
    add("Town",
        {view::MakeShape(SHAPE_POLYGON, {at(.74, .24), at(.81, .27), at(.79, .42), at(.72, .38)})});
    test::Settle(window);
}

/// Takes the pictures one after the other, each in a window of its own.
class Screens {
  public:
    Screens(const QString& folder, const QString& scene) : m_folder(folder), m_scene(scene) {}

    void TakeAll() {
        Take(*ShowWindow(view::Theme::Light), "welcome");
        FalseColor();
        Ramp();
        Training(view::Theme::Light, "training");
        Training(view::Theme::Dark, "dark");
        Numbers();
        Properties();
        Chinese();
    }

  private:
    WindowPointer Open(view::Theme theme = view::Theme::Light) {
        WindowPointer window = ShowWindow(theme);
        test::OpenAndSettle(*window, {m_scene});
        window->FindAction("fit")->trigger();
        window->FindAction("display-reset")->trigger();
        test::Settle(*window);
        return window;
    }

    void Take(QWidget& widget, const QString& name) {
        QTest::qWait(50);
        const QString path = m_folder + "/" + name + ".jpg";
        const bool saved = widget.grab().save(path, nullptr, 80);
        std::printf("%s%s\n", qPrintable(path), saved ? "" : ": cannot be written");
    }

    void FalseColor() {
        const WindowPointer window = Open();
        ShowFalseColor(*window);
        window->GetMap().ZoomBy(2.2);
        test::Settle(*window);
        Take(*window, "false-color");
    }

    void Ramp() {
        const WindowPointer window = Open();
        Choose(*window, "mode", 1);
        Choose(*window, "stretch", 1);
        Choose(*window, "ramp", 5);
        test::Settle(*window);
        Take(*window, "ramp");
    }

    void Training(view::Theme theme, const QString& name) {
        const WindowPointer window = Open(theme);
        ShowFalseColor(*window);
        AddClasses(*window);
        window->FindAction("spectra")->trigger();
        test::Settle(*window);
        window->FindAction("tool-select")->trigger();
        Take(*window, name);
    }

    void Numbers() {
        const WindowPointer window = Open();
        AddClasses(*window);
        window->findChild<QDockWidget*>("trainingPanel")->hide();
        window->FindAction("area-select-all")->trigger();
        window->FindAction("statistics-each")->trigger();
        window->FindAction("areas-mask")->trigger();
        test::Settle(*window);
        Take(*window, "statistics");
        window->FindAction("areas-mask")->trigger();
        window->FindAction("histograms")->trigger();
        test::Settle(*window);
        Take(*window, "histograms");
    }

    void Properties() {
        const WindowPointer window = Open();
        window->FindAction("properties")->trigger();
        test::Settle(*window);
        Take(*window->findChild<QWidget*>("properties"), "properties");
    }

    void Chinese() {
        QTranslator translator;
        if (!translator.load(":/i18n/zelto-view_zh_CN.qm"))
            return;
        QApplication::installTranslator(&translator);
        {
            const WindowPointer window = Open();
            AddClasses(*window);
            Take(*window, "chinese");
        }
        QApplication::removeTranslator(&translator);
    }

    QString m_folder;
    QString m_scene;
};

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setWindowIcon(view::MakeProgramIcon());
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 3) {
        std::fprintf(stderr, "usage: zelto_view_screens FOLDER SCENE\n");
        return 2;
    }
    QTranslator english; // it knows singular and plural
    if (english.load(":/i18n/zelto-view_en.qm"))
        QApplication::installTranslator(&english);
    const QTemporaryDir settings;
    test::UseSettingsOfTest(settings.path());
    QDir().mkpath(arguments[1]);
    Screens(arguments[1], arguments[2]).TakeAll();
    return 0;
}
