#include "tests/support/TestData.h"
#include "tests/viewer/SceneWindow.h"
#include "viewer/views/MessageBar.h"

#include <QDialog>
#include <QLabel>
#include <QTabWidget>
#include <QTableView>
#include <filesystem>

using namespace zelto;
using namespace zelto::test;

namespace {

class Properties : public SceneWindow {
  protected:
    QDialog& Show() {
        Trigger("properties");
        EXPECT_TRUE(Settle(*m_window));
        auto* dialog = m_window->findChild<QDialog*>("properties");
        EXPECT_NE(dialog, nullptr);
        return *dialog;
    }

    static QStringList RowOf(const QTableView& table, int row) {
        QStringList cells;
        for (int column = 0; column < table.model()->columnCount(); ++column)
            cells += table.model()->index(row, column).data().toString();
        return cells;
    }
};

} // namespace

TEST_F(Properties, TellFormatSizeAndBandsAsTheCommandLineDoes) {
    const QDialog& dialog = Show();
    EXPECT_EQ(dialog.findChild<QLabel*>("format")->text(), "GTiff, GeoTIFF");
    const view::LayerFacts& facts = Current().facts;
    EXPECT_EQ(dialog.findChild<QLabel*>("size")->text(),
              QString("%1 x %2 pixels").arg(facts.width).arg(facts.height));
    EXPECT_EQ(dialog.findChild<QLabel*>("bands")->text(), "6 of Byte");
    EXPECT_EQ(dialog.findChild<QLabel*>("units")->text(), "metre");
    const auto* bands = dialog.findChild<QTableView*>("bands");
    ASSERT_EQ(bands->model()->rowCount(), 6);
    EXPECT_EQ(RowOf(*bands, 0).first(4).join('|').left(7), "1|Byte|");
    EXPECT_EQ(bands->model()->headerData(2, Qt::Horizontal).toString(), "Block");
}

TEST_F(Properties, TellControlPointsWhereThereAreSuch) {
    ZELTO_REQUIRE_TEST_DATA();
    ASSERT_TRUE(OpenAndSettle(
        *m_window, {QString::fromStdString(TestDataFile("raster/georef/l7_gcp4_affine.tif"))}));
    const QDialog& dialog = Show();
    const auto* points = dialog.findChild<QTableView*>("controlPoints");
    ASSERT_NE(points, nullptr);
    EXPECT_GT(points->model()->rowCount(), 2);
}

TEST_F(Properties, SayWhyNotWhereTheFileIsGone) {
    const QString path = QString::fromStdString(m_folder.File("gone.tif"));
    std::filesystem::copy_file(SampleScene(), path.toStdString());
    ASSERT_TRUE(OpenAndSettle(*m_window, {path}));
    std::filesystem::remove(path.toStdString());
    Trigger("properties");
    ASSERT_TRUE(Settle(*m_window));
    EXPECT_EQ(m_window->findChild<QDialog*>("properties"), nullptr);
    EXPECT_TRUE(m_window->GetMessages().Text().contains("gone.tif"));
}
