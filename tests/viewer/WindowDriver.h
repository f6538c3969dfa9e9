#pragma once

#include "viewer/MainWindow.h"

#include <QString>
#include <functional>

namespace zelto::test {

/// Lets events happen until a condition holds.
/// @return false when it does not within the time
bool WaitUntil(const std::function<bool()>& condition, int milliseconds = 60000);

/// Waits until nothing is being opened, drawn, counted or worked on.
bool Settle(view::MainWindow& window);

/// Opens files and waits for the picture.
bool OpenAndSettle(view::MainWindow& window, const QStringList& paths);

/// Drags from one point of a widget to another with the left button, in a few steps.
void Drag(QWidget& widget, QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = {});

/// Keeps the settings of a test in a folder of its own.
void UseSettingsOfTest(const QString& folder);

} // namespace zelto::test
