#pragma once

#include <QMetaType>
#include <QStringList>
#include <QWidget>
#include <vector>

class QTableWidget;
class QLabel;

namespace zelto::view {

class MessageBar;
class Preferences;

/// Numbers to be shown, copied and saved as they stand.
struct StatisticsTable {
    QString title;
    QStringList columns;
    std::vector<QStringList> rows;
};

/// The table of statistics.
class StatisticsPanel : public QWidget {
    Q_OBJECT

  public:
    StatisticsPanel(MessageBar& messages, Preferences& preferences, QWidget* parent = nullptr);

    void SetTable(const StatisticsTable& table);
    const StatisticsTable& Table() const { return m_shown; }
    /// The whole table, cells parted by `separator`.
    QString ToText(QChar separator) const;
    bool Save(const QString& path);

  private:
    void ChooseFile();

    MessageBar& m_messages;
    Preferences& m_preferences;
    QLabel* m_title;
    QTableWidget* m_table;
    StatisticsTable m_shown;
};

} // namespace zelto::view

Q_DECLARE_METATYPE(zelto::view::StatisticsTable)
