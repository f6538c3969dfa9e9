#pragma once

#include <QPalette>

namespace zelto::view {

/// Which colours the program has.
enum class Theme { System, Light, Dark };

/// Sets the application's style and palette.
void ApplyTheme(Theme theme);
QPalette LightPalette();
QPalette DarkPalette();
/// Whether what is drawn now stands on a dark ground.
bool IsDark();
/// The colours of the red, green and blue band's histograms, and of a single one.
QColor ChannelColor(int k, bool single);

} // namespace zelto::view
