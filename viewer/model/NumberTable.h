#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <vector>

namespace zelto::view {

/// Numbers to be shown, copied and saved as they stand.
struct NumberTable {
    QString title;
    QStringList columns;
    std::vector<QStringList> rows;

    /// The whole table with its heading, cells parted by `separator`.
    QString ToText(QChar separator) const;
};

/// As many digits as tell, with a point whatever the locale, as tables are copied.
QString TableNumber(double value);

} // namespace zelto::view

Q_DECLARE_METATYPE(zelto::view::NumberTable)
