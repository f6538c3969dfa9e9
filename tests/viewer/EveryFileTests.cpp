#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"
#include "tests/viewer/WindowDriver.h"
#include "viewer/views/MessageBar.h"

#include <gtest/gtest.h>

#include <QDirIterator>
#include <QTest>
#include <iostream>

using namespace zelto;
using namespace zelto::test;

TEST(EveryFile, OpensOrSaysWhyNot) {
    ZELTO_REQUIRE_TEST_DATA();
    const TemporaryFolder folder;
    UseSettingsOfTest(QString::fromStdString(folder.File("settings")));
    view::MainWindow window;
    window.resize(700, 500);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    int opened = 0;
    int refused = 0;
    QDirIterator files(QString::fromStdString(TestDataFile("raster")), QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        SCOPED_TRACE(path.toStdString());
        const bool settled = OpenAndSettle(window, {path});
        EXPECT_TRUE(settled);
        if (window.GetDocument().Layers().empty()) {
            ++refused;
            EXPECT_FALSE(window.GetMessages().Text().isEmpty());
        } else {
            ++opened;
        }
        while (window.GetDocument().Current() != nullptr)
            window.FindAction("layer-remove")->trigger();
    }
    std::cout << opened << " opened, " << refused << " refused\n";
    EXPECT_GT(opened, 100);
}
