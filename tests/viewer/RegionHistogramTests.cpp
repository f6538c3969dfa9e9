#include "zelto/Zelto.h"

#include "tests/support/TestData.h"
#include "tests/viewer/SceneWindow.h"
#include "viewer/views/TablePanel.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QTabWidget>
#include <QTest>
#include <QToolButton>
#include <array>
#include <cmath>

using namespace zelto;
using namespace zelto::test;

namespace {

class RegionHistogram : public SceneWindow {
  protected:
    view::TablePanel& Panel() { return *m_window->findChild<view::TablePanel*>("histograms"); }

    /// How often each byte occurs in a band at the pixels whose centres the drawn rectangle holds.
    std::array<int, 256> CountByHand(int band) {
        CRasterSource source;
        EXPECT_EQ(source.Open(CommonFun::M2U(SampleScene()).c_str(), GIS_READONLY, false),
                  GIS_SUCCESS);
        const CBoundingBox box = m_window->GetAreas().All().front().shape->m_extent;
        std::array<int, 256> counts{};
        std::vector<double> values(static_cast<std::size_t>(source.GetBandCount()));
        for (int row = 0; row < source.GetHeight(); ++row)
            for (int column = 0; column < source.GetWidth(); ++column) {
                const double x = source.GetLeft() + (column + 0.5) * source.GetXResolution();
                const double y = source.GetTop() - (row + 0.5) * std::fabs(source.GetYResolution());
                if (x <= box.GetLeft() || x >= box.GetRight() || y >= box.GetTop() ||
                    y <= box.GetBottom())
                    continue;
                source.GetPixel(values.data(), column, row, PDT_Float64);
                ++counts[static_cast<std::size_t>(values[static_cast<std::size_t>(band)])];
            }
        return counts;
    }
};

} // namespace

TEST_F(RegionHistogram, CountsEveryPixelOfTheAreaInEveryBand) {
    DrawRectangle();
    Trigger("histograms");
    ASSERT_TRUE(Settle(*m_window));
    const auto& rows = Panel().Table().rows;
    ASSERT_FALSE(rows.empty());
    for (const int band : {0, 3}) {
        const std::array<int, 256> counts = CountByHand(band);
        int inTable = 0;
        for (const QStringList& row : rows) {
            if (row[0].toInt() != band + 1)
                continue;
            // A bucket holds one whole number, in the middle of it.
            const double value = (row[1].toDouble() + row[2].toDouble()) / 2.0;
            ASSERT_EQ(row[3].toInt(), counts[static_cast<std::size_t>(value)]) << value;
            inTable += row[3].toInt();
        }
        int all = 0;
        for (const int count : counts)
            all += count;
        EXPECT_GT(all, 100);
        EXPECT_EQ(inTable, all);
    }
}

TEST_F(RegionHistogram, ShowsOneBandAloneWhenItIsChosen) {
    DrawRectangle();
    Trigger("histograms");
    ASSERT_TRUE(Settle(*m_window));
    EXPECT_TRUE(Panel().isVisible());
    auto* band = m_window->findChild<QComboBox*>("histogramBand");
    ASSERT_EQ(band->count(), 7);
    QTest::keyClick(band, Qt::Key_Down);
    QTest::keyClick(band, Qt::Key_Down);
    for (const QStringList& row : Panel().Table().rows)
        EXPECT_EQ(row[0], "2");
    EXPECT_FALSE(Panel().Table().rows.empty());
}

TEST_F(RegionHistogram, CountsTheWholeImageWithoutAreas) {
    Trigger("histograms");
    ASSERT_TRUE(Settle(*m_window));
    qint64 counted = 0;
    for (const QStringList& row : Panel().Table().rows)
        if (row[0] == "1")
            counted += row[3].toInt();
    EXPECT_EQ(counted, qint64{Current().facts.width} * Current().facts.height);
}

TEST_F(RegionHistogram, CanBeCopiedAndSaved) {
    DrawRectangle();
    Trigger("histograms");
    ASSERT_TRUE(Settle(*m_window));
    QTest::mouseClick(Panel().findChild<QToolButton*>("copy"), Qt::LeftButton);
    const view::NumberTable& table = Panel().Table();
    EXPECT_EQ(QApplication::clipboard()->text(), table.ToText('\t'));
    const QString path = QString::fromStdString(m_folder.File("counts.csv"));
    ASSERT_TRUE(Panel().Save(path));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = file.readAll().trimmed().split('\n');
    EXPECT_EQ(lines.size(), static_cast<qsizetype>(table.rows.size()) + 1);
    EXPECT_EQ(lines.front(), "Band,From,To,Pixels");
}
