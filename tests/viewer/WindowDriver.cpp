#include "tests/viewer/WindowDriver.h"

#include "viewer/views/MapPictures.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QMouseEvent>
#include <QSettings>
#include <QTest>
#include <algorithm>

namespace zelto::test {

namespace {

constexpr int DRAG_STEPS = 6;

bool IsOpening(view::MainWindow& window) {
    const auto& layers = window.GetDocument().Layers();
    return std::any_of(layers.begin(), layers.end(),
                       [](const view::Layer& layer) { return !layer.isOpen; });
}

} // namespace

bool WaitUntil(const std::function<bool()>& condition, int milliseconds) {
    const QDeadlineTimer deadline(milliseconds);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QTest::qWait(1);
    }
    return true;
}

bool Settle(view::MainWindow& window) {
    if (!WaitUntil([&] { return !IsOpening(window) && !window.GetTasks().IsBusy(); }))
        return false;
    // Twice: what the first answers lead to is asked for only when they arrive.
    for (int i = 0; i < 2; ++i) {
        bool rested = false;
        const auto connection = QObject::connect(&window.GetEngine(), &view::Engine::Rested,
                                                 &window, [&] { rested = true; });
        QCoreApplication::processEvents();
        window.GetEngine().Rest();
        const bool done = WaitUntil([&] { return rested; });
        QObject::disconnect(connection);
        if (!done)
            return false;
    }
    return WaitUntil(
        [&] { return window.GetPictures().IsUpToDate() || !window.GetDocument().HasPicture(); });
}

bool OpenAndSettle(view::MainWindow& window, const QStringList& paths) {
    window.OpenFiles(paths);
    return Settle(window);
}

void Drag(QWidget& widget, QPoint from, QPoint to, Qt::KeyboardModifiers modifiers) {
    QTest::mousePress(&widget, Qt::LeftButton, modifiers, from);
    for (int i = 1; i <= DRAG_STEPS; ++i) {
        const QPoint at = from + (to - from) * i / DRAG_STEPS;
        QMouseEvent move(QEvent::MouseMove, QPointF(at), QPointF(widget.mapToGlobal(at)),
                         Qt::NoButton, Qt::LeftButton, modifiers);
        QApplication::sendEvent(&widget, &move);
    }
    QTest::mouseRelease(&widget, Qt::LeftButton, modifiers, to);
}

void UseSettingsOfTest(const QString& folder) {
    QCoreApplication::setOrganizationName("zelto");
    QCoreApplication::setApplicationName("zelto-view-test");
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder);
}

} // namespace zelto::test
