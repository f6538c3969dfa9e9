#include "viewer/views/Icons.h"

#include <QGuiApplication>
#include <QHash>
#include <QIconEngine>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmap>
#include <QStringList>

namespace zelto::view {

namespace {

/// On a field of 24 × 24: M x y moves, L x y draws a line, C with six numbers a curve, Z closes,
/// O x y r draws a circle, R x y w h a rectangle with round corners.
const QHash<QString, QString>& Drawings() {
    static const QHash<QString, QString> drawings = {
        {"open", "M 3 19 L 3 5 L 9 5 L 11 8 L 20 8 L 20 11 M 3 19 L 6.5 11 L 22 11 L 18.5 19 Z"},
        {"compose", "O 9 9 5.5 O 15 9 5.5 O 12 14.5 5.5"},
        {"export", "M 12 15 L 12 3 M 7.5 7.5 L 12 3 L 16.5 7.5 M 4 14 L 4 20 L 20 20 L 20 14"},
        {"save", "M 4 4 L 17 4 L 20 7 L 20 20 L 4 20 Z M 8 4 L 8 9 L 15 9 L 15 4 R 7.5 13 9 7"},
        {"fit", "M 4 9 L 4 4 L 9 4 M 15 4 L 20 4 L 20 9 M 20 15 L 20 20 L 15 20 M 9 20 L 4 20 L 4 "
                "15 R 8 8 8 8"},
        {"one", "M 5 8 L 7.5 6 L 7.5 18 M 16 8 L 18.5 6 L 18.5 18 O 12.5 9.5 0.7 O 12.5 14.5 0.7"},
        {"zoom-in",
         "O 10.5 10.5 6.5 M 15.5 15.5 L 21 21 M 7.5 10.5 L 13.5 10.5 M 10.5 7.5 L 10.5 13.5"},
        {"zoom-out", "O 10.5 10.5 6.5 M 15.5 15.5 L 21 21 M 7.5 10.5 L 13.5 10.5"},
        {"pan", "M 12 3 L 12 21 M 3 12 L 21 12 M 9.5 5.5 L 12 3 L 14.5 5.5 M 9.5 18.5 L 12 21 L "
                "14.5 18.5 M 5.5 9.5 L 3 12 L 5.5 14.5 M 18.5 9.5 L 21 12 L 18.5 14.5"},
        {"select", "M 5 3 L 19 12 L 12.5 13.5 L 9.5 20 Z"},
        {"point", "M 12 21 C 7 15 6 12.5 6 9.5 C 6 6 8.5 3.5 12 3.5 C 15.5 3.5 18 6 18 9.5 C 18 "
                  "12.5 17 15 12 21 Z O 12 9.5 2.2"},
        {"line", "M 6.3 17.7 L 17.7 6.3 O 4.8 19.2 2 O 19.2 4.8 2"},
        {"polygon", "M 12 3.5 L 20.5 10 L 17 20 L 6.5 19 L 3.5 8.5 Z"},
        {"rectangle", "R 3.5 6 17 12"},
        {"ellipse", "M 3 12 C 3 3.5 21 3.5 21 12 C 21 20.5 3 20.5 3 12 Z"},
        {"undo", "M 8 5 L 4 9 L 8 13 M 4 9 L 14 9 C 21 9 21 19 14 19 L 9 19"},
        {"redo", "M 16 5 L 20 9 L 16 13 M 20 9 L 10 9 C 3 9 3 19 10 19 L 15 19"},
        {"delete", "M 4 6.5 L 20 6.5 M 9 6.5 L 9 4 L 15 4 L 15 6.5 M 6 6.5 L 7 20 L 17 20 L 18 6.5 "
                   "M 10 10.5 L 10.3 16.5 M 14 10.5 L 13.7 16.5"},
        {"statistics", "M 3 20.5 L 21 20.5 R 5 12 3 8 R 10.5 5 3 15 R 16 9 3 11"},
        {"training", "O 6.5 7 3 O 16.5 6 2.5 O 17 16.5 3.5 O 7.5 17 2.5 M 11.5 3 L 12.5 21"},
        {"layers", "M 12 3.5 L 21 8.5 L 12 13.5 L 3 8.5 Z M 3 12.5 L 12 17.5 L 21 12.5 M 3 16.5 L "
                   "12 21.5 L 21 16.5"},
        {"display", "M 4 7 L 20 7 M 4 12 L 20 12 M 4 17 L 20 17 O 9 7 2 O 15 12 2 O 8 17 2"},
        {"mask", "R 3.5 3.5 17 17 O 12 12 5.5 M 3.5 8 L 8 3.5 M 16 20.5 L 20.5 16"},
        {"pyramid", "M 12 3.5 L 21 20 L 3 20 Z M 9.2 9 L 14.8 9 M 6.4 14.5 L 17.6 14.5"},
        {"polygonize", "M 3 9 L 9 9 L 9 3 M 21 13 L 14 13 L 14 21 M 9 9 L 14 13 R 3 3 18 18"},
        {"copy", "R 8 8 12 12 M 16 8 L 16 4 L 4 4 L 4 16 L 8 16"},
        {"georef", "O 12 12 8.5 M 3.5 12 L 20.5 12 M 12 3.5 C 6.5 8 6.5 16 12 20.5 M 12 3.5 C 17.5 "
                   "8 17.5 16 12 20.5"},
        {"info", "O 12 12 8.5 M 12 11 L 12 16.5 M 12 7.3 L 12 7.8"},
        {"up", "M 12 19 L 12 5 M 6 11 L 12 5 L 18 11"},
        {"down", "M 12 5 L 12 19 M 6 13 L 12 19 L 18 13"},
        {"add", "M 12 5 L 12 19 M 5 12 L 19 12"},
        {"close", "M 6 6 L 18 18 M 18 6 L 6 18"},
        {"reset", "M 5 4 L 5 9.5 L 10.5 9.5 M 5.5 9 C 8 4.5 14 3.5 17.5 7 C 21 10.5 20.5 16 16.5 "
                  "18.7 C 12.5 21.2 8 20 5.5 16.5"},
        {"warning", "M 12 4 L 21 20 L 3 20 Z M 12 10 L 12 15 M 12 17.3 L 12 17.8"},
    };
    return drawings;
}

QPainterPath PathOf(const QString& drawing) {
    QPainterPath path;
    const QStringList words = drawing.split(' ', Qt::SkipEmptyParts);
    qsizetype next = 0;
    const auto number = [&] { return next < words.size() ? words[next++].toDouble() : 0.0; };
    const auto point = [&] {
        const double x = number();
        return QPointF(x, number());
    };
    while (next < words.size()) {
        const QChar command = words[next++].front();
        if (command == 'M') {
            path.moveTo(point());
        } else if (command == 'L') {
            path.lineTo(point());
        } else if (command == 'C') {
            const QPointF first = point();
            const QPointF second = point();
            path.cubicTo(first, second, point());
        } else if (command == 'Z') {
            path.closeSubpath();
        } else if (command == 'O') {
            const QPointF center = point();
            const double radius = number();
            path.addEllipse(center, radius, radius);
        } else if (command == 'R') {
            const QPointF corner = point();
            const QPointF size = point();
            path.addRoundedRect(QRectF(corner, QSizeF(size.x(), size.y())), 1.5, 1.5);
        }
    }
    return path;
}

class LineIcon : public QIconEngine {
  public:
    explicit LineIcon(const QPainterPath& path) : m_path(path) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const auto role =
            mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::WindowText;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / 24.0, rect.height() / 24.0);
        painter->setPen(QPen(QGuiApplication::palette().color(group, role), 1.6, Qt::SolidLine,
                             Qt::RoundCap, Qt::RoundJoin));
        painter->drawPath(m_path);
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }

    QIconEngine* clone() const override { return new LineIcon(m_path); }

  private:
    QPainterPath m_path;
};

} // namespace

QIcon MakeIcon(const QString& name) {
    const QString drawing = Drawings().value(name);
    return drawing.isEmpty() ? QIcon() : QIcon(new LineIcon(PathOf(drawing)));
}

QIcon MakeProgramIcon() {
    QIcon icon;
    for (const int side : {16, 32, 48, 64, 128, 256}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(side / 24.0, side / 24.0);
        QLinearGradient ground(0, 0, 24, 24);
        ground.setColorAt(0.0, QColor(24, 120, 140));
        ground.setColorAt(1.0, QColor(48, 150, 84));
        painter.setBrush(ground);
        painter.setPen(Qt::NoPen);
        painter.drawRoundedRect(QRectF(1, 1, 22, 22), 5, 5);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(Qt::white, 2.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPath(PathOf("M 7 7 L 17 7 L 7 17 L 17 17"));
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace zelto::view
