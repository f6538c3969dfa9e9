#include "zelto/Zelto.h"

#include "tests/support/TestData.h"
#include "tests/viewer/SceneWindow.h"
#include "viewer/actions/AreaActions.h"
#include "viewer/actions/TrainingActions.h"
#include "viewer/actions/WorkActions.h"
#include "viewer/views/HistogramView.h"
#include "viewer/views/MapPictures.h"
#include "viewer/views/MapView.h"
#include "viewer/views/MessageBar.h"
#include "viewer/views/TablePanel.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QDialog>
#include <QDockWidget>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>
#include <filesystem>
#include <memory>

using namespace zelto;
using namespace zelto::test;

namespace {

using Window = SceneWindow;

void ApplyPercent(CRasterSource& source) {
    CStretchPreparation stretch(&source);
    stretch.SetStretch("percent");
    ASSERT_EQ(stretch.Apply(nullptr), GIS_SUCCESS);
}

} // namespace

TEST_F(Window, ShowsTheEnginesDrawingOfItsBoxPixelByPixel) {
    EXPECT_EQ(Map().Shown().view, Map().View());
    EXPECT_EQ(Map().Shown().image, DrawByEngine(ApplyPercent));
}

TEST_F(Window, ShowsTheFirstThreeOfManyBandsFromRedToBlue) {
    EXPECT_EQ(Current().settings.bands, (std::vector<int>{2, 1, 0}));
}

TEST_F(Window, HasOneColumnOfNamesInTheDisplayPanel) {
    const QWidget* panel = m_window->findChild<QDockWidget*>("displayPanel");
    const auto left = [&](const char* name) {
        const QWidget* widget = panel->findChild<QWidget*>(name);
        return widget->mapTo(panel, QPoint(0, 0)).x();
    };
    EXPECT_EQ(left("band0"), left("mode"));
    EXPECT_EQ(left("stretch"), left("mode"));
}

TEST_F(Window, PutsThePictureOnTheScreenAsItWasDrawn) {
    const QImage screen = Map().grab().toImage().convertToFormat(QImage::Format_RGB32);
    const QImage picture = Map().Shown().image;
    int compared = 0;
    for (int y = 0; y < picture.height(); y += 7)
        for (int x = 0; x < picture.width(); x += 7)
            if (qAlpha(picture.pixel(x, y)) == 255) {
                ASSERT_EQ(screen.pixel(x, y) & 0xffffff, picture.pixel(x, y) & 0xffffff);
                ++compared;
            }
    EXPECT_GT(compared, 1000);
}

TEST_F(Window, DrawsWhatSlidersAndBandsSay) {
    view::DisplaySettings settings = Current().settings;
    settings.bands = {3, 2, 1};
    settings.stretch = "stddev";
    settings.hue = 0.25F;
    settings.contrast = 0.4F;
    settings.transparency = 0.5F;
    m_window->GetDocument().SetSettings(Current().id, settings);
    ASSERT_TRUE(Settle(*m_window));
    EXPECT_EQ(Map().Shown().image, DrawByEngine([](CRasterSource& source) {
                  int bands[] = {3, 2, 1};
                  source.SetShowBandNum(3, bands);
                  CStretchPreparation stretch(&source);
                  stretch.SetStretch("stddev");
                  ASSERT_EQ(stretch.Apply(nullptr), GIS_SUCCESS);
                  source.m_hue = 0.25F;
                  source.m_contrast = 0.4F;
                  source.m_transparency = 0.5F;
              }));
}

TEST_F(Window, ShowsTheMovedPictureAtOnceWhileDragging) {
    const view::ViewTransform before = Map().View();
    const auto colorAt = [&](QPoint at) {
        return Map().grab().toImage().pixel(OnScreen(at).toPoint());
    };
    const QRgb middle = colorAt(Middle());
    Drag(Map(), Middle(), Middle() + QPoint(40, -26));
    EXPECT_EQ(Map().View(), before.MovedBy(OnScreen({40.0, -26.0})));
    // No answer of the worker has been taken yet: the frame shows the former picture, moved.
    EXPECT_EQ(colorAt(Middle() + QPoint(40, -26)), middle);
    ASSERT_TRUE(Settle(*m_window));
    EXPECT_EQ(Map().Shown().image, DrawByEngine(ApplyPercent));
}

TEST_F(Window, ZoomsAroundThePointerWithTheWheel) {
    const QPointF at(300.0, 200.0);
    const QPointF ground = Map().View().ToGround(OnScreen(at));
    const double scale = Map().View().Scale();
    QWheelEvent wheel(at, Map().mapToGlobal(at), {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&Map(), &wheel);
    EXPECT_LT(Map().View().Scale(), scale);
    EXPECT_NEAR(Map().View().ToGround(OnScreen(at)).x(), ground.x(), 1e-6);
    EXPECT_NEAR(Map().View().ToGround(OnScreen(at)).y(), ground.y(), 1e-6);
}

TEST_F(Window, FitsOnTheScreen) {
    const view::MainWindow window;
    EXPECT_EQ(window.size(), QSize(1280, 800).boundedTo(window.screen()->availableSize()));
}

TEST_F(Window, PansWithTheArrowKeys) {
    const double left = Map().View().Box().GetLeft();
    Map().setFocus();
    QTest::keyClick(&Map(), Qt::Key_Right);
    EXPECT_GT(Map().View().Box().GetLeft(), left);
}

TEST_F(Window, ShowsEachPixelOnceOneToOne) {
    Trigger("one-to-one");
    ASSERT_TRUE(Settle(*m_window));
    const view::LayerFacts& facts = Current().facts;
    EXPECT_DOUBLE_EQ(Map().View().Scale(), facts.PixelSize());
    const double columns =
        (Map().View().Box().GetLeft() - facts.geoTransform[0]) / facts.geoTransform[1];
    EXPECT_NEAR(columns, std::round(columns), 1e-6);
}

TEST_F(Window, TellsWhatIsUnderThePointer) {
    const QPointF ground = Map().View().ToGround(OnScreen(Middle()));
    QTest::mouseMove(&Map(), Middle() - QPoint(3, 3));
    QTest::mouseMove(&Map(), Middle());
    m_window->GetEngine().Read(Current().id, ground);
    ASSERT_TRUE(Settle(*m_window));
    CRasterSource source;
    ASSERT_EQ(source.Open(CommonFun::M2U(SampleScene()).c_str(), GIS_READONLY, true), GIS_SUCCESS);
    int column = 0;
    int row = 0;
    source.GroundToImage(ground.x(), ground.y(), column, row);
    double values[6] = {};
    source.GetPixel(values, column, row, PDT_Float64);
    QStringList expected;
    for (int i = 0; i < 6; ++i)
        expected += QString("%1: %2").arg(i + 1).arg(values[i]);
    EXPECT_EQ(m_window->findChild<QLabel*>("values")->text(), expected.join("   "));
    EXPECT_EQ(m_window->findChild<QLabel*>("position")->text(),
              QString("%1, %2").arg(column).arg(row));
}

TEST_F(Window, StretchesBetweenTheBoundsThatAreDragged) {
    auto* histogram = m_window->findChild<view::HistogramView*>("histogram0");
    ASSERT_TRUE(histogram->Histogram());
    const view::Bounds before = histogram->ShownBounds();
    const double width = histogram->width() - 16.0;
    const auto at = [&](double value) { return QPoint(qRound(8.0 + value / 255.0 * width), 30); };
    Drag(*histogram, at(before.low), at(before.low) + QPoint(10, 0));
    ASSERT_TRUE(Current().settings.ranges[0]);
    EXPECT_GT(Current().settings.ranges[0]->low, before.low);
    EXPECT_EQ(Current().settings.ranges[0]->high, before.high);
    ASSERT_TRUE(Settle(*m_window));
    EXPECT_EQ(m_window->GetMessages().Text(), "");
}

TEST_F(Window, DrawsSelectsMovesAndDeletesShapesWithMouseAndKeys) {
    view::AreaModel& areas = m_window->GetAreas();
    Trigger("tool-rectangle");
    Drag(Map(), Middle() - QPoint(100, 100), Middle() + QPoint(50, 50));
    ASSERT_EQ(areas.All().size(), 1U);
    Trigger("tool-polygon");
    for (const QPoint& corner : {QPoint(-200, -50), QPoint(-150, -50), QPoint(-150, 20)})
        QTest::mouseClick(&Map(), Qt::LeftButton, {}, Middle() + corner);
    QTest::keyClick(&Map(), Qt::Key_Return);
    ASSERT_EQ(areas.All().size(), 2U);
    EXPECT_EQ(areas.All().back().shape->m_vertices.size(), 3U);
    Trigger("tool-select");
    const CBoundingBox before = areas.All().front().shape->m_extent;
    Drag(Map(), Middle(), Middle() + QPoint(30, 0));
    const CBoundingBox after = areas.All().front().shape->m_extent;
    EXPECT_NEAR(after.GetLeft() - before.GetLeft(),
                OnScreen({30.0, 0.0}).x() * Map().View().Scale(), 1e-6);
    Trigger("area-delete");
    EXPECT_EQ(areas.All().size(), 1U);
    Trigger("undo");
    EXPECT_EQ(areas.All().size(), 2U);
}

TEST_F(Window, SavesAndOpensAreas) {
    const QString path = QString::fromStdString(m_folder.File("areas.aif"));
    Trigger("tool-ellipse");
    Drag(Map(), Middle() - QPoint(60, 60), Middle() + QPoint(60, 40));
    m_window->GetAreaActions().SaveAreas(path);
    ASSERT_TRUE(Settle(*m_window));
    ASSERT_TRUE(std::filesystem::exists(path.toStdString()));
    m_window->GetAreaActions().OpenAreas(path);
    ASSERT_TRUE(Settle(*m_window));
    const auto& all = m_window->GetAreas().All();
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[1].shape->m_extent.GetLeft(), all[0].shape->m_extent.GetLeft());
    EXPECT_EQ(all[1].shape->m_shapeKind, SHAPE_ELLIPSE);
}

TEST_F(Window, TellsTheStatisticsThatTheEngineComputesOfAnArea) {
    Trigger("tool-rectangle");
    Drag(Map(), Middle() - QPoint(60, 60), Middle() + QPoint(60, 40));
    Trigger("statistics");
    ASSERT_TRUE(Settle(*m_window));
    const auto* panel = m_window->findChild<view::TablePanel*>("statistics");
    ASSERT_NE(panel, nullptr);
    CRasterSource source;
    ASSERT_EQ(source.Open(CommonFun::M2U(SampleScene()).c_str(), GIS_READONLY, false), GIS_SUCCESS);
    CRegionStatistics statistics(&source);
    statistics.SetShape(const_cast<CDrawShape*>(m_window->GetAreas().All().front().shape.get()));
    ASSERT_EQ(statistics.Compute(nullptr), GIS_SUCCESS);
    ASSERT_EQ(panel->Table().rows.size(), 6U);
    EXPECT_EQ(panel->Table().rows[2][1], QString::number(statistics.GetBands()[2].count));
    EXPECT_EQ(panel->Table().rows[2][4], QString::number(statistics.GetBands()[2].mean, 'g', 10));
    EXPECT_EQ(panel->Table().ToText(',').count('\n'), 7);
}

TEST_F(Window, TellsWhatTheStatisticsAreOf) {
    const auto* panel = m_window->findChild<view::TablePanel*>("statistics");
    const auto title = [&] {
        Trigger("statistics");
        EXPECT_TRUE(Settle(*m_window));
        return panel->Table().title.toStdString();
    };
    EXPECT_EQ(title(), "L7_ETMs.tif, the whole image");
    DrawRectangle();
    EXPECT_EQ(title(), "L7_ETMs.tif, 1 selected shape(s)"); // translated where a program has texts
    m_window->GetAreas().Select({});
    EXPECT_EQ(title(), "L7_ETMs.tif, all 1 shape(s)");
}

TEST_F(Window, AsksBeforeShapesAreLostThatAreInNoFile) {
    QMessageBox::StandardButton answer = QMessageBox::Cancel;
    int asked = 0;
    QTimer person;
    QObject::connect(&person, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            ++asked;
            box->button(answer)->click();
        }
    });
    person.start(10);
    DrawRectangle();
    EXPECT_FALSE(m_window->close());
    EXPECT_TRUE(m_window->isVisible());
    EXPECT_EQ(asked, 1);
    const QString path = QString::fromStdString(m_folder.File("areas.aif"));
    m_window->GetAreaActions().SaveAreas(path);
    ASSERT_TRUE(Settle(*m_window));
    EXPECT_TRUE(m_window->close());
    EXPECT_EQ(asked, 1) << "nothing is lost";
    m_window->show();
    Trigger("undo");
    Trigger("redo");
    m_window->GetAreaActions().OpenAreas(path);
    ASSERT_TRUE(Settle(*m_window));
    EXPECT_TRUE(m_window->GetAreas().IsSaved()) << "each is in a file";
    DrawRectangle();
    answer = QMessageBox::Discard;
    EXPECT_TRUE(m_window->close());
    EXPECT_EQ(asked, 2);
}

TEST_F(Window, DoesNotMoveTheMapForAMessage) {
    const QSize before = Map().size();
    m_window->GetMessages().TellError("a reason");
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_window->GetMessages().isVisible());
    EXPECT_EQ(Map().size(), before);
}

TEST_F(Window, CollectsTrainingClassesAndSavesTheirSamples) {
    Trigger("tool-rectangle");
    Drag(Map(), Middle() - QPoint(60, 60), Middle() + QPoint(60, 40));
    Trigger("class-add");
    Trigger("spectra");
    ASSERT_TRUE(Settle(*m_window));
    ASSERT_EQ(m_window->GetTraining().Spectra().size(), 1U);
    EXPECT_EQ(m_window->GetTraining().Spectra().front().mean.size(), 6U);
    const QString path = QString::fromStdString(m_folder.File("classes.smp"));
    m_window->GetTrainingActions().SaveSamples(path);
    ASSERT_TRUE(Settle(*m_window));
    CClassifySampleFile file;
    ASSERT_EQ(file.ReadClassifySampleFile(CommonFun::M2U(path.toStdString())), 1);
    ASSERT_EQ(file.GetClassCount(), 1);
    EXPECT_EQ(file.GetClass(0)->m_values[1], m_window->GetTraining().Spectra().front().pixels);
}

TEST_F(Window, ExportsTheViewWithItsPlace) {
    const std::string path = m_folder.File("view.tif");
    m_window->GetWorkActions().Export(QString::fromStdString(path));
    ASSERT_TRUE(Settle(*m_window));
    CRasterSource written;
    ASSERT_EQ(written.Open(CommonFun::M2U(path).c_str(), GIS_READONLY, true), GIS_SUCCESS);
    EXPECT_EQ(written.GetWidth(), Map().View().Size().width());
    EXPECT_NEAR(written.GetLeft(), Map().View().Box().GetLeft(), 1e-6);
    EXPECT_NEAR(written.GetXResolution(), Map().View().Scale(), 1e-9);
}

TEST_F(Window, BuildsAPyramidAndShowsTheImageAnew) {
    const std::string path = m_folder.File("copy.tif");
    std::filesystem::copy_file(SampleScene(), path);
    ASSERT_TRUE(OpenAndSettle(*m_window, {QString::fromStdString(path)}));
    Trigger("pyramids");
    ASSERT_TRUE(Settle(*m_window));
    CRasterSource written;
    ASSERT_EQ(written.Open(CommonFun::M2U(path).c_str(), GIS_READONLY, false), GIS_SUCCESS);
    EXPECT_GT(written.GetRasterBand(0)->GetOverviewCount(), 0);
    EXPECT_EQ(m_window->GetDocument().Layers().size(), 2U);
}

TEST_F(Window, CopiesAnImageToAnotherFormat) {
    const std::string path = m_folder.File("copy.img");
    m_window->GetWorkActions().CopyTo(QString::fromStdString(path));
    ASSERT_TRUE(Settle(*m_window));
    CRasterSource written;
    ASSERT_EQ(written.Open(CommonFun::M2U(path).c_str(), GIS_READONLY, false), GIS_SUCCESS);
    EXPECT_EQ(written.GetRasterDataFormat(), RDF_HFA);
    EXPECT_EQ(written.GetBandCount(), 6);
    EXPECT_EQ(written.GetLeft(), Current().facts.extent.GetLeft());
}

TEST_F(Window, MakesPolygonsOfEqualPixels) {
    const std::string path = m_folder.File("polygons.shp");
    m_window->GetWorkActions().MakePolygons(QString::fromStdString(path), 1, false);
    ASSERT_TRUE(Settle(*m_window));
    CVectorSource written;
    ASSERT_EQ(written.Open(CommonFun::M2U(path).c_str(), GIS_READONLY, false), GIS_SUCCESS);
    EXPECT_EQ(written.GetLayerCount(), 1);
}

TEST_F(Window, TellsFileAndReasonWithoutBlocking) {
    const std::string path = m_folder.File("none.tif");
    ASSERT_TRUE(OpenAndSettle(*m_window, {QString::fromStdString(path)}));
    EXPECT_TRUE(m_window->GetMessages().Text().contains("none.tif"));
    EXPECT_EQ(m_window->GetDocument().Layers().size(), 1U) << "the scene is still there";
}

TEST_F(Window, LaysLayersOverEachOtherInTheirOrder) {
    const QString scene = QString::fromStdString(SampleScene());
    ASSERT_TRUE(OpenAndSettle(*m_window, {scene}));
    const QImage top = Map().Shown().image;
    view::DisplaySettings settings = Current().settings;
    settings.bands = {3};
    m_window->GetDocument().SetSettings(Current().id, settings);
    ASSERT_TRUE(Settle(*m_window));
    const QImage changed = Map().Shown().image;
    EXPECT_NE(changed, top);
    Trigger("layer-down");
    ASSERT_TRUE(Settle(*m_window));
    EXPECT_EQ(Map().Shown().image, top) << "the other layer, unchanged, covers it";
    Trigger("layer-remove");
    ASSERT_TRUE(Settle(*m_window));
    EXPECT_EQ(Map().Shown().image, top);
}

TEST_F(Window, RemembersHowAFileWasShown) {
    view::DisplaySettings settings = Current().settings;
    settings.bands = {4};
    settings.stretch = "equalize";
    m_window->GetDocument().SetSettings(Current().id, settings);
    ASSERT_TRUE(Settle(*m_window));
    Trigger("layer-remove");
    ASSERT_TRUE(OpenAndSettle(*m_window, {QString::fromStdString(SampleScene())}));
    EXPECT_EQ(Current().settings, settings);
}

TEST_F(Window, HasATooltipForEveryActionAndAShortcutOfItsOwn) {
    QHash<QKeySequence, QString> taken;
    for (const QAction* action : m_window->Actions().All()) {
        EXPECT_FALSE(action->toolTip().isEmpty()) << qPrintable(action->objectName());
        ASSERT_FALSE(action->shortcut().isEmpty()) << qPrintable(action->objectName());
        EXPECT_FALSE(taken.contains(action->shortcut()))
            << qPrintable(action->objectName()) << " and "
            << qPrintable(taken.value(action->shortcut()));
        taken[action->shortcut()] = action->objectName();
    }
}

TEST_F(Window, HasAMenuEntryForEveryAction) {
    QSet<QAction*> inMenus;
    for (const QMenu* menu : m_window->findChildren<QMenu*>())
        for (QAction* entry : menu->actions())
            inMenus.insert(entry);
    for (QAction* action : m_window->Actions().All())
        EXPECT_TRUE(inMenus.contains(action)) << qPrintable(action->objectName());
}

TEST_F(Window, RunsEveryActionByItsShortcut) {
    // Whatever an action asks is answered with no.
    QTimer refusal;
    QObject::connect(&refusal, &QTimer::timeout, [] {
        if (QWidget* dialog = QApplication::activeModalWidget())
            dialog->close();
    });
    refusal.start(20);
    ASSERT_TRUE(OpenAndSettle(*m_window, {QString::fromStdString(SampleScene())}));
    for (QAction* action : m_window->Actions().All()) {
        const QString id = action->objectName();
        // The one ends the program, the other writes beside the sample scene.
        if (id == "quit" || id == "pyramids")
            continue;
        DrawRectangle();
        if (id == "samples-save" || id == "spectra" || id == "class-assign" || id == "class-remove")
            Trigger("class-add");
        if (id == "redo")
            Trigger("undo");
        if (id == "display-paste")
            Trigger("display-copy");
        ASSERT_TRUE(Settle(*m_window));
        int ran = 0;
        const auto count = [&ran] { ++ran; };
        const QMetaObject::Connection connection =
            QObject::connect(action, &QAction::triggered, count);
        if (id == "classes-save")
            action->setEnabled(true); // the scene has no classes
        // Shortcuts are the active window's; a dialog was that before.
        m_window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
        Map().setFocus();
        QTest::keySequence(&Map(), action->shortcut());
        EXPECT_EQ(ran, 1) << qPrintable(id);
        QObject::disconnect(connection);
        ASSERT_TRUE(Settle(*m_window)) << qPrintable(id);
        for (QDialog* dialog : m_window->findChildren<QDialog*>())
            dialog->close();
        if (!m_window->GetDocument().HasPicture()) {
            ASSERT_TRUE(OpenAndSettle(*m_window, {QString::fromStdString(SampleScene())}));
        }
    }
}
