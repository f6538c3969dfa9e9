#include "host/base/StateFolder.h"
#include "viewer/MainWindow.h"
#include "viewer/model/Preferences.h"
#include "viewer/views/Icons.h"
#include "viewer/views/MapPictures.h"
#include "viewer/views/MapView.h"
#include "viewer/views/MessageBar.h"
#include "viewer/views/Theme.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QLibraryInfo>
#include <QLocale>
#include <QTimer>
#include <QTranslator>
#include <QWindow>
#include <cstdio>
#include <cstdlib>

namespace {

/// Qt's own texts and the program's, in the system's language where there are such.
void InstallTranslations(QApplication& application) {
    static QTranslator ofQt;
    static QTranslator own;
    if (ofQt.load(QLocale(), "qtbase", "_", QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        application.installTranslator(&ofQt);
    // English texts need theirs too: it knows singular and plural.
    if (own.load(QLocale(), "zelto-view", "_", ":/i18n") || own.load(":/i18n/zelto-view_en.qm"))
        application.installTranslator(&own);
}

/// Ends the process at the moment in which the map shows the files' picture on the screen, or when
/// no file could be opened. Nothing is torn down, which would count as well, or remembered.
void EndWithFirstPicture(zelto::view::MainWindow& window) {
    auto* timer = new QTimer(&window);
    QObject::connect(timer, &QTimer::timeout, &window, [&window] {
        if (window.GetDocument().Layers().empty()) {
            std::fprintf(stderr, "%s\n", qPrintable(window.GetMessages().Text()));
            std::_Exit(EXIT_FAILURE);
        }
        if (!window.windowHandle()->isExposed() || !window.GetPictures().IsUpToDate() ||
            window.GetMap().Shown().image.isNull())
            return;
        window.GetMap().repaint();
        QGuiApplication::sync();
        std::_Exit(EXIT_SUCCESS);
    });
    timer->start(1);
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setOrganizationName("zelto");
    QApplication::setApplicationName("zelto-view");
    QApplication::setApplicationDisplayName("Zelto");
    QApplication::setWindowIcon(zelto::view::MakeProgramIcon());
    InstallTranslations(application);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QApplication::translate("main", "Shows images of remote sensing."));
    parser.addHelpOption();
    parser.addPositionalArgument("FILE", QApplication::translate("main", "Images to open"),
                                 "[FILE…]");
    const QCommandLineOption firstPicture(
        "first-picture",
        QApplication::translate("main", "End when the first picture is shown; to measure that"));
    parser.addOption(firstPicture);
    parser.process(application);
    zelto::host::LogBelowStateFolder();
    zelto::view::MainWindow window(parser.positionalArguments());
    window.show();
    if (parser.isSet(firstPicture))
        EndWithFirstPicture(window);
    return QApplication::exec();
}
