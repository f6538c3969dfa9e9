#include "viewer/views/StatusLine.h"

#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QTimer>
#include <cmath>
#include <unistd.h>

namespace zelto::view {

namespace {

constexpr int MEMORY_MILLISECONDS = 2000;
constexpr int MOST_VALUES = 12;

QLabel* AddLabel(QHBoxLayout& layout, int stretch, const QString& name, const QString& tip) {
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setToolTip(tip);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout.addWidget(label, stretch);
    return label;
}

/// Resident memory of the process in bytes; 0 where the system does not tell.
qint64 ResidentMemory() {
    QFile file("/proc/self/statm");
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

QString Coordinates(const Reading& reading, bool geographic) {
    const int decimals = geographic ? 6 : 2;
    return QString("%1, %2")
        .arg(reading.ground.x(), 0, 'f', decimals)
        .arg(reading.ground.y(), 0, 'f', decimals);
}

} // namespace

QString ReadableNumber(double value) {
    if (std::isnan(value))
        return "NaN";
    if (value == std::trunc(value) && std::fabs(value) < 1e15)
        return QString::number(static_cast<qint64>(value));
    return QString::number(value, 'g', 6);
}

QString ReadableAngle(double degrees, bool isLatitude) {
    // In tenths of a second, so that no part rounds up to sixty.
    const auto tenths = static_cast<qint64>(std::llround(std::fabs(degrees) * 36000.0));
    const char* side = isLatitude ? (degrees < 0 ? "S" : "N") : (degrees < 0 ? "W" : "E");
    return QString("%1°%2′%3″ %4")
        .arg(tenths / 36000)
        .arg(tenths / 600 % 60, 2, 10, QChar('0'))
        .arg(static_cast<double>(tenths % 600) / 10.0, 4, 'f', 1, QChar('0'))
        .arg(side);
}

StatusLine::StatusLine(QWidget* parent) : QWidget(parent) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 0, 8, 0);
    layout->setSpacing(18);
    m_position = AddLabel(*layout, 0, "position", tr("Column and row under the pointer"));
    m_place = AddLabel(*layout, 0, "place", tr("Ground coordinates, latitude and longitude"));
    m_values = AddLabel(*layout, 1, "values", tr("Value of each band, and the class"));
    m_zoom = AddLabel(*layout, 0, "zoom", tr("Size of a pixel of the image on the screen"));
    m_memory = AddLabel(*layout, 0, "memory", tr("Memory that the program uses"));
    m_values->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &StatusLine::ShowMemory);
    timer->start(MEMORY_MILLISECONDS);
    ShowMemory();
}

void StatusLine::ShowReading(const Reading& reading, const LayerFacts& facts) {
    m_position->setText(reading.isInside ? QString("%1, %2").arg(reading.column).arg(reading.row)
                                         : QString("–"));
    QString place = Coordinates(reading, facts.geographic);
    if (reading.lonLat)
        place += "   " + ReadableAngle(reading.lonLat->y(), true) + "  " +
                 ReadableAngle(reading.lonLat->x(), false);
    m_place->setText(place);
    QStringList values;
    for (std::size_t i = 0; i < reading.values.size() && i < MOST_VALUES; ++i)
        values += QString("%1: %2").arg(i + 1).arg(ReadableNumber(reading.values[i]));
    if (reading.values.size() > MOST_VALUES)
        values += QString("… (%1)").arg(reading.values.size());
    if (!reading.className.isEmpty())
        values += reading.className;
    m_values->setText(values.join("   "));
}

void StatusLine::ClearReading() {
    for (QLabel* label : {m_position, m_place, m_values})
        label->clear();
}

void StatusLine::ShowZoom(double ratio) {
    if (!(ratio > 0.0))
        m_zoom->clear();
    else if (ratio >= 1.0)
        m_zoom->setText(QString("%1 : 1").arg(ReadableNumber(std::round(ratio * 100.0) / 100.0)));
    else
        m_zoom->setText(QString("1 : %1").arg(ReadableNumber(std::round(100.0 / ratio) / 100.0)));
}

void StatusLine::ShowMemory() {
    m_memory->setText(QLocale().formattedDataSize(ResidentMemory(), 0));
}

} // namespace zelto::view
