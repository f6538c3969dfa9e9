#pragma once

#include "viewer/model/NumberTable.h"

#include <QWidget>

class QLabel;
class QTableView;

namespace zelto::view {

class MessageBar;
class Preferences;

/// A table of numbers, with buttons that copy it and save it as CSV.
class TablePanel : public QWidget {
    Q_OBJECT

  public:
    /// @param id the panel's name for those that look for it, and that of the file offered
    TablePanel(const QString& id, MessageBar& messages, Preferences& preferences,
               QWidget* parent = nullptr);

    void SetTable(const NumberTable& table);
    const NumberTable& Table() const { return m_shown; }
    bool Save(const QString& path);

  private:
    class Model;
    void ChooseFile();

    MessageBar& m_messages;
    Preferences& m_preferences;
    QLabel* m_title;
    Model* m_model;
    QTableView* m_view;
    NumberTable m_shown;
};

} // namespace zelto::view
