#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"
#include "tests/viewer/WindowDriver.h"
#include "viewer/views/MapView.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QDialog>
#include <QPointer>
#include <QSlider>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>

using namespace zelto;
using namespace zelto::test;

namespace {

/// Actions that ask for files or end the program: a robot has no answer to what they ask.
const QSet<QString> LEFT_OUT = {"quit",         "open",       "compose",    "export",
                                "georef",       "areas-open", "areas-save", "samples-open",
                                "samples-save", "polygonize", "copy-to",    "classes-save"};

/// Does to the window, step by step, what a hasty person might.
class Robot {
  public:
    Robot(view::MainWindow& window, unsigned seed, const QStringList& files)
        : m_window(window), m_random(seed), m_files(files) {
        for (QAction* action : window.Actions().All())
            if (!LEFT_OUT.contains(action->objectName()))
                m_actions += action;
    }

    void Step() {
        switch (Number(0, 9)) {
        case 0:
        case 1:
            Drag(Map(), Anywhere(), Anywhere(),
                 Number(0, 3) == 0 ? Qt::ShiftModifier : Qt::NoModifier);
            break;
        case 2:
            Wheel();
            break;
        case 3:
            QTest::mouseClick(&Map(), Qt::LeftButton, {}, Anywhere());
            break;
        case 4:
            QTest::mouseDClick(&Map(), Qt::LeftButton, {}, Anywhere());
            break;
        case 5:
            PressKey();
            break;
        case 6:
            MoveSlider();
            break;
        case 7:
            ChooseInBox();
            break;
        default:
            TriggerAction();
        }
        if (Number(0, 40) == 0)
            OpenFile();
        if (Number(0, 40) == 0)
            m_window.GetEngine().SetMemoryBound(qint64{1} << Number(0, 28));
        QCoreApplication::processEvents();
        CloseDialogs();
    }

  private:
    view::MapView& Map() { return m_window.GetMap(); }
    int Number(int least, int most) {
        return std::uniform_int_distribution<int>(least, most)(m_random);
    }
    QPoint Anywhere() { return {Number(0, Map().width() - 1), Number(0, Map().height() - 1)}; }

    void Wheel() {
        const QPointF at(Anywhere());
        QWheelEvent event(at, Map().mapToGlobal(at), {}, {0, Number(-4, 4) * 120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&Map(), &event);
    }

    void PressKey() {
        static constexpr Qt::Key KEYS[] = {Qt::Key_Left,   Qt::Key_Right,  Qt::Key_Up,
                                           Qt::Key_Down,   Qt::Key_Return, Qt::Key_Escape,
                                           Qt::Key_Delete, Qt::Key_Space,  Qt::Key_Backspace};
        QTest::keyClick(&Map(), KEYS[Number(0, 8)]);
    }

    template <typename Kind>
    Kind* OneOf() {
        const QList<Kind*> all = m_window.findChildren<Kind*>();
        return all.isEmpty() ? nullptr : all[Number(0, static_cast<int>(all.size()) - 1)];
    }

    void MoveSlider() {
        if (auto* slider = OneOf<QSlider>(); slider && slider->isEnabled())
            slider->setValue(Number(slider->minimum(), slider->maximum()));
    }

    void ChooseInBox() {
        if (auto* box = OneOf<QComboBox>(); box && box->isEnabled() && box->count() > 0)
            box->setCurrentIndex(Number(0, box->count() - 1));
    }

    void TriggerAction() {
        QAction* action = m_actions[Number(0, static_cast<int>(m_actions.size()) - 1)];
        action->trigger(); // nothing happens to one that is not enabled
    }

    void OpenFile() {
        if (m_window.GetDocument().Layers().size() < 4)
            m_window.OpenFiles({m_files[Number(0, static_cast<int>(m_files.size()) - 1)]});
    }

    void CloseDialogs() {
        for (QDialog* dialog : m_window.findChildren<QDialog*>())
            dialog->close();
    }

    view::MainWindow& m_window;
    std::mt19937 m_random;
    QStringList m_files;
    QList<QAction*> m_actions;
};

int Steps() {
    const char* steps = std::getenv("ZELTO_ROBOT_STEPS");
    return steps != nullptr ? std::atoi(steps) : 300;
}

} // namespace

TEST(Robot, DoesWhatItWillAndTheWindowStaysUsable) {
    const TemporaryFolder folder;
    UseSettingsOfTest(QString::fromStdString(folder.File("settings")));
    const std::string copy = folder.File("scene.tif"); // a pyramid may be built for it
    std::filesystem::copy_file(SampleScene(), copy);
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::cout << "seed " << seed << '\n';
    view::MainWindow window;
    window.resize(1000, 650);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    ASSERT_TRUE(OpenAndSettle(window, {QString::fromStdString(copy)}));
    Robot robot(window, seed, {QString::fromStdString(copy)});
    for (int i = 0; i < Steps(); ++i)
        robot.Step();
    ASSERT_TRUE(Settle(window)) << "something is never done";
    while (window.GetDocument().Current() != nullptr)
        window.FindAction("layer-remove")->trigger();
    ASSERT_TRUE(OpenAndSettle(window, {QString::fromStdString(copy)}));
    EXPECT_TRUE(window.GetDocument().HasPicture());
}
