#include "viewer/views/Theme.h"

#include <QApplication>
#include <QStyle>
#include <QStyleFactory>

namespace zelto::view {

namespace {

struct Colors {
    QColor window;
    QColor base;
    QColor alternate;
    QColor button;
    QColor text;
    QColor muted;
    QColor accent;
    QColor mapGround;
};

/// A share of `b` in `a`.
QColor Mixed(const QColor& a, const QColor& b, double share) {
    const auto mix = [share](int x, int y) { return qRound(x + (y - x) * share); };
    return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

QPalette PaletteOf(const Colors& colors) {
    QPalette palette(colors.button, colors.window);
    palette.setColor(QPalette::Window, colors.window);
    palette.setColor(QPalette::Base, colors.base);
    palette.setColor(QPalette::AlternateBase, colors.alternate);
    palette.setColor(QPalette::ToolTipBase, colors.base);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                            QPalette::ToolTipText, QPalette::BrightText})
        palette.setColor(role, colors.text);
    palette.setColor(QPalette::PlaceholderText, colors.muted);
    palette.setColor(QPalette::Highlight, colors.accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, colors.accent);
    palette.setColor(QPalette::Dark, colors.mapGround);
    palette.setColor(QPalette::Midlight, Mixed(colors.window, colors.text, 0.07));
    palette.setColor(QPalette::Mid, Mixed(colors.window, colors.accent, 0.28));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, colors.muted);
    return palette;
}

/// What the style alone does not give: quiet docks and bars, and tables without a frame.
constexpr const char* STYLE_SHEET =
    "QToolBar { border: none; padding: 3px; spacing: 2px; }"
    "QToolButton { border: none; border-radius: 5px; padding: 4px; }"
    "QToolButton:hover { background: palette(midlight); }"
    "QToolButton:checked, QToolButton:pressed { background: palette(mid); }"
    "QDockWidget::title { padding: 6px 8px; text-align: left; }"
    "QTableView, QTreeView, QListView { border: none; }"
    "QTableView::item { padding: 0px 6px; }"
    "QListView::item { padding: 4px 2px; }"
    "QHeaderView::section { border: none; padding: 4px 6px; background: palette(window); }"
    "QStatusBar::item { border: none; }"
    "QMainWindow::separator { width: 5px; height: 5px; }";

} // namespace

QPalette LightPalette() {
    return PaletteOf({QColor(243, 244, 246), QColor(255, 255, 255), QColor(247, 248, 250),
                      QColor(238, 240, 243), QColor(28, 33, 40), QColor(125, 133, 145),
                      QColor(22, 118, 138), QColor(222, 225, 230)});
}

QPalette DarkPalette() {
    return PaletteOf({QColor(36, 39, 44), QColor(45, 49, 55), QColor(50, 54, 61),
                      QColor(52, 56, 63), QColor(228, 231, 235), QColor(130, 138, 150),
                      QColor(38, 140, 160), QColor(20, 22, 25)});
}

void ApplyTheme(Theme theme) {
    qApp->setStyle(QStyleFactory::create("Fusion"));
    const bool systemIsDark =
        qApp->style()->standardPalette().color(QPalette::Window).lightness() < 128;
    const bool isDark = theme == Theme::Dark || (theme == Theme::System && systemIsDark);
    QApplication::setPalette(isDark ? DarkPalette() : LightPalette());
    qApp->setStyleSheet(STYLE_SHEET);
}

bool IsDark() {
    return QApplication::palette().color(QPalette::Window).lightness() < 128;
}

QColor ChannelColor(int k, bool single) {
    if (single)
        return IsDark() ? QColor(190, 196, 205) : QColor(90, 98, 110);
    static const QColor light[] = {QColor(208, 48, 48), QColor(36, 140, 62), QColor(44, 92, 210)};
    static const QColor dark[] = {QColor(240, 96, 92), QColor(92, 200, 112), QColor(104, 150, 255)};
    return (IsDark() ? dark : light)[k];
}

} // namespace zelto::view
