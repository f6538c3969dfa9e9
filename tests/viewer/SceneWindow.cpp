#include "tests/viewer/SceneWindow.h"

#include "zelto/Zelto.h"

#include "tests/support/TestData.h"

#include <QPainter>
#include <QTest>

namespace zelto::test {

void SceneWindow::SetUp() {
    UseSettingsOfTest(QString::fromStdString(m_folder.File("settings")));
    m_window = std::make_unique<view::MainWindow>();
    m_window->resize(1100, 700);
    m_window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_window.get()));
    ASSERT_TRUE(OpenAndSettle(*m_window, {QString::fromStdString(SampleScene())}));
}

void SceneWindow::DrawRectangle() {
    Trigger("tool-rectangle");
    Drag(Map(), Middle() - QPoint(60, 60), Middle() + QPoint(60, 40));
}

QImage SceneWindow::DrawByEngine(const std::function<void(CRasterSource&)>& prepare) {
    CRasterSource source;
    source.SetForDisplay(true);
    EXPECT_EQ(source.Open(CommonFun::M2U(SampleScene()).c_str(), GIS_READONLY, true), GIS_SUCCESS);
    int bands[] = {2, 1, 0}; // as an image of many bands that nothing names is first shown
    source.SetShowBandNum(3, bands);
    prepare(source);
    const view::ViewTransform& shown = Map().View();
    QImage image(shown.Size(), QImage::Format_ARGB32);
    CBoundingBox box = shown.Box();
    EXPECT_TRUE(source.GetShowData(&box, image.width(), image.height(), image.bits(), true));
    source.m_hue = source.m_intensity = source.m_saturation = source.m_contrast = 0.0F;
    source.ApplyShowDataHISC(image.width(), image.height(), image.bits());
    QImage map(image.size(), QImage::Format_ARGB32_Premultiplied);
    map.fill(Qt::transparent);
    QPainter(&map).drawImage(0, 0, image);
    return map;
}

} // namespace zelto::test
