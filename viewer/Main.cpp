#include "cli/support/StateFolder.h"
#include "viewer/MainWindow.h"
#include "viewer/model/Preferences.h"
#include "viewer/views/Icons.h"
#include "viewer/views/Theme.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

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
    parser.process(application);
    zelto::cli::LogBelowStateFolder();
    zelto::view::MainWindow window;
    window.show();
    window.OpenFiles(parser.positionalArguments());
    return QApplication::exec();
}
