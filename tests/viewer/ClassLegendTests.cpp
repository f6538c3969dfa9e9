#include "zelto/Zelto.h"

#include "tests/support/TestData.h"
#include "tests/viewer/SceneWindow.h"
#include "viewer/actions/WorkActions.h"
#include "viewer/views/ClassLegend.h"

#include <QColorDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <filesystem>

using namespace zelto;
using namespace zelto::test;

namespace {

constexpr int SIDE = 64;

/// An image of four values in stripes, with a colour for each.
void MakePaletteImage(const std::string& path) {
    CRasterSource made;
    double place[6] = {1000.0, 10.0, 0.0, 5000.0, 0.0, -10.0};
    ASSERT_EQ(made.CreateRaster(RDF_GTiff, CommonFun::M2U(path).c_str(), SIDE, SIDE, 1, PDT_Byte,
                                place, "EPSG:32650", nullptr),
              GIS_SUCCESS);
    tagColorEntry colors[] = {
        {200, 0, 0, 255}, {0, 180, 0, 255}, {0, 0, 160, 255}, {90, 90, 90, 255}};
    ASSERT_EQ(made.GetRasterBand(0)->SetColorTable(colors, 4), GIS_SUCCESS);
    std::vector<unsigned char> row(SIDE);
    for (int x = 0; x < SIDE; ++x)
        row[static_cast<std::size_t>(x)] = static_cast<unsigned char>(x * 4 / SIDE);
    for (int y = 0; y < SIDE; ++y)
        ASSERT_EQ(
            made.GetRasterBand(0)->WriteBlock(0, y, SIDE, 1, row.data(), SIDE, 1, PDT_Byte, 0, 0),
            GIS_SUCCESS);
}

/// A window with an image that has a colour table.
class ClassLegend : public SceneWindow {
  protected:
    void SetUp() override {
        SceneWindow::SetUp();
        m_path = QString::fromStdString(m_folder.File("palette.tif"));
        MakePaletteImage(m_path.toStdString());
        m_filesMade = FilesOfTheImage();
        Trigger("layer-remove");
        ASSERT_TRUE(OpenAndSettle(*m_window, {m_path}));
    }

    int FilesOfTheImage() {
        int files = 0;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder.Path()))
            files += entry.path().filename().string().starts_with("palette") ? 1 : 0;
        return files;
    }

    QTableView& Table() { return *m_window->findChild<QTableView*>("classes"); }
    view::ClassLegend& Legend() { return *m_window->findChild<view::ClassLegend*>(); }

    /// What the middle of a stripe is shown as.
    QColor ShownOf(int value) {
        const double x = 1000.0 + 10.0 * SIDE * (value + 0.5) / 4.0;
        const QPointF at = Map().View().ToPixel({x, 5000.0 - 5.0 * SIDE});
        return Map().Shown().image.pixelColor(at.toPoint());
    }

    QPoint CenterOf(int row, int column) {
        const QModelIndex index = Table().model()->index(row, column);
        Table().scrollTo(index);
        return Table().visualRect(index).center();
    }

    /// Double-clicks a class's colour and chooses another one in the dialog that appears.
    void ChooseColor(int row, const QColor& color) {
        QTimer answer;
        QObject::connect(&answer, &QTimer::timeout, [color] {
            auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
            if (dialog == nullptr)
                return; // not yet
            dialog->setCurrentColor(color);
            dialog->accept();
        });
        answer.start(10);
        QTest::mouseClick(Table().viewport(), Qt::LeftButton, {}, CenterOf(row, 0));
        QTest::mouseDClick(Table().viewport(), Qt::LeftButton, {}, CenterOf(row, 0));
        ASSERT_TRUE(Settle(*m_window));
    }

    QString m_path;
    int m_filesMade = 0;
};

} // namespace

TEST_F(ClassLegend, ShowsTheEntriesOfAColourTable) {
    ASSERT_EQ(Table().model()->rowCount(), static_cast<int>(Legend().Classes().size()));
    ASSERT_GE(Legend().Classes().size(), 4U);
    EXPECT_EQ(Legend().Classes()[1].color, QColor(0, 180, 0));
    EXPECT_EQ(ShownOf(1), QColor(0, 180, 0));
    EXPECT_TRUE(Legend().isVisible());
    EXPECT_FALSE(Legend().findChild<QPushButton*>("resetClasses")->isVisible());
}

TEST_F(ClassLegend, ShowsAnEntryInTheColourThatIsChosenAndGoesBackToThatOfTheFile) {
    ChooseColor(1, QColor(255, 200, 10));
    EXPECT_EQ(ShownOf(1), QColor(255, 200, 10));
    EXPECT_EQ(ShownOf(2), QColor(0, 0, 160)) << "the others stay as they are";
    auto* reset = Legend().findChild<QPushButton*>("resetClasses");
    ASSERT_TRUE(reset->isVisible());
    QTest::mouseClick(reset, Qt::LeftButton);
    ASSERT_TRUE(Settle(*m_window));
    EXPECT_EQ(ShownOf(1), QColor(0, 180, 0));
    EXPECT_EQ(Legend().Classes()[1].color, QColor(0, 180, 0));
}

TEST_F(ClassLegend, TakesNamesThatAreTyped) {
    const QPoint at = CenterOf(2, 2);
    QTest::mouseClick(Table().viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(Table().viewport(), Qt::LeftButton, {}, at);
    auto* editor = Table().findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, "water");
    QTest::keyClick(editor, Qt::Key_Return);
    ASSERT_TRUE(Settle(*m_window));
    ASSERT_EQ(Current().settings.classes.size(), 1U);
    EXPECT_EQ(Current().settings.classes.at(1.5).name, "water");
}

TEST_F(ClassLegend, RemembersChangedColoursAndWritesNothingBesideTheImage) {
    ChooseColor(3, QColor(1, 2, 3));
    Trigger("layer-remove");
    ASSERT_TRUE(OpenAndSettle(*m_window, {m_path}));
    EXPECT_EQ(ShownOf(3), QColor(1, 2, 3));
    EXPECT_EQ(FilesOfTheImage(), m_filesMade);
    Trigger("display-reset");
    ASSERT_TRUE(Settle(*m_window));
    EXPECT_EQ(ShownOf(3), QColor(90, 90, 90));
}

TEST_F(ClassLegend, SavesTheClassesWhereTheImageTakesThemFrom) {
    ChooseColor(0, QColor(250, 240, 230));
    const QString path = QString::fromStdString(m_folder.File("palette.acf"));
    m_window->GetWorkActions().SaveClasses(path);
    ASSERT_TRUE(Settle(*m_window));
    CRasterSource source;
    source.SetForDisplay(true);
    ASSERT_EQ(source.Open(CommonFun::M2U(m_path.toStdString()).c_str(), GIS_READONLY, true),
              GIS_SUCCESS);
    const CClassifyDisplayTable* table = source.GetClassifyDisplayTable();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->GetItem(0)->m_color.red, 250);
    EXPECT_TRUE(table->GetItem(2)->Contains(2.0));
    EXPECT_EQ(table->GetItem(2)->m_color.blue, 160);
}

TEST_F(ClassLegend, LetsClassesAndGreysThroughWithTheSlider) {
    view::DisplaySettings settings = Current().settings;
    settings.transparency = 0.6F;
    settings.classes[0.5] = {QColor(10, 20, 30), {}};
    m_window->GetDocument().SetSettings(Current().id, settings);
    ASSERT_TRUE(Settle(*m_window));
    EXPECT_EQ(ShownOf(1).alpha(), 102); // 255 × 0.4
    Trigger("layer-remove");
    ASSERT_TRUE(OpenAndSettle(*m_window, {QString::fromStdString(SampleScene())}));
    settings = Current().settings;
    settings.bands = {3};
    settings.transparency = 0.6F;
    m_window->GetDocument().SetSettings(Current().id, settings);
    ASSERT_TRUE(Settle(*m_window));
    EXPECT_EQ(Map().Shown().image.pixelColor(Middle()).alpha(), 102);
}
