#pragma once

#include <QIcon>
#include <QString>

namespace zelto::view {

/// The program's own line icons, drawn in the colour of the palette's text: sharp at every scale
/// factor and right on light and dark. A name without a drawing gives an empty icon.
QIcon MakeIcon(const QString& name);
/// The emblem of the program.
QIcon MakeProgramIcon();

} // namespace zelto::view
