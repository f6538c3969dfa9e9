#include "tests/viewer/SceneWindow.h"
#include "viewer/views/AreaPainting.h"

#include <QPainter>

using namespace zelto;
using namespace zelto::test;

namespace {

/// What of the map is left when the areas alone are shown.
class MapFrame : public SceneWindow {
  protected:
    /// A frame as the screen gets it, without the shapes that are laid over it.
    QImage Frame() {
        Map().SetOverlay({});
        Map().SetTool(nullptr);
        return Map().grab().toImage().convertToFormat(QImage::Format_RGB32);
    }

    /// The picture laid over the empty map, and nothing else.
    QImage PictureAlone() {
        QImage alone(Map().View().Size(), QImage::Format_RGB32);
        alone.fill(Map().palette().color(QPalette::Dark));
        QPainter(&alone).drawImage(0, 0, Map().Shown().image);
        return alone;
    }
};

} // namespace

TEST_F(MapFrame, ShowsNothingButTheAreasWhereOnlyThoseAreWanted) {
    Trigger("zoom-in");
    DrawRectangle();
    Trigger("areas-mask");
    ASSERT_TRUE(Settle(*m_window));
    const QImage frame = Frame();
    EXPECT_EQ(frame, PictureAlone());
    EXPECT_EQ(frame.pixelColor(frame.width() / 2, 0), Map().palette().color(QPalette::Dark));
}

TEST_F(MapFrame, FillsWhatIsNotDrawnYetAgainOnceTheAreasAreNotAllThatIsShown) {
    Trigger("zoom-in");
    DrawRectangle();
    Trigger("areas-mask");
    Trigger("layer-visible");
    Trigger("layer-visible");
    ASSERT_TRUE(Settle(*m_window));
    Trigger("areas-mask");
    ASSERT_TRUE(Settle(*m_window));
    const QPoint edge(Map().width() / 2, Map().height() - 1);
    Map().PanBy({0.0, 0.1});
    // No answer of the worker is taken in between: what was below the edge comes from the overview.
    EXPECT_NE(Frame().pixelColor(edge), Map().palette().color(QPalette::Dark));
}

TEST(AreaPainting, MakesHandlesAsLargeOnAScreenOfFinePixelsAsElsewhere) {
    const auto countPainted = [](double pixels) {
        QImage image(60, 60, QImage::Format_ARGB32);
        image.setDevicePixelRatio(pixels);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.scale(1.0 / pixels, 1.0 / pixels);
        view::PaintHandle(painter, {30.0, 30.0});
        painter.end();
        int across = 0;
        for (int x = 0; x < image.width(); ++x)
            across += qAlpha(image.pixel(x, 30)) > 127 ? 1 : 0;
        return across;
    };
    EXPECT_NEAR(countPainted(1.0), 9, 1);
    EXPECT_NEAR(countPainted(2.0), 18, 1);
}

TEST_F(MapFrame, ShowsAPictureThatLetsThroughWithNothingBehindItUpToTheEdges) {
    view::DisplaySettings settings = Current().settings;
    settings.transparency = 0.5F;
    m_window->GetDocument().SetSettings(Current().id, settings);
    Trigger("zoom-in");
    ASSERT_TRUE(Settle(*m_window));
    EXPECT_EQ(Frame(), PictureAlone());
}
