#include "viewer/model/NumberTable.h"

namespace zelto::view {

namespace {

/// A cell as CSV has it: in quotes where it holds a separator or a quote, which is then doubled.
QString Quoted(const QString& cell, QChar separator) {
    if (!cell.contains(separator) && !cell.contains('"') && !cell.contains('\n'))
        return cell;
    return '"' + QString(cell).replace("\"", "\"\"") + '"';
}

} // namespace

QString NumberTable::ToText(QChar separator) const {
    QString text;
    const auto add = [&](const QStringList& cells) {
        QStringList quoted;
        for (const QString& cell : cells)
            quoted += Quoted(cell, separator);
        text += quoted.join(separator) + '\n';
    };
    add(columns);
    for (const QStringList& row : rows)
        add(row);
    return text;
}

QString TableNumber(double value) {
    return QString::number(value, 'g', 10);
}

} // namespace zelto::view
