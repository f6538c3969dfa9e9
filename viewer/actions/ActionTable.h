#pragma once

#include <QAction>
#include <QHash>
#include <QKeySequence>
#include <QList>
#include <QObject>
#include <functional>

namespace zelto::view {

/// What an action is called and how it is reached.
struct ActionText {
    QString id; ///< never shown; the name under which tests and menus find it
    QString text;
    QString tip;
    QKeySequence shortcut;
    QString icon; ///< empty: none
};

/// Every action of the program, so that each has a menu entry, a shortcut and a tooltip.
class ActionTable : public QObject {
    Q_OBJECT

  public:
    using QObject::QObject;

    QAction* Add(const ActionText& text, const std::function<void()>& run);
    /// One that is on or off.
    QAction* AddSwitch(const ActionText& text, const std::function<void(bool)>& run);
    /// Null for an id that is none.
    QAction* Find(const QString& id) const { return m_actions.value(id); }
    QList<QAction*> All() const;

  private:
    QAction* Make(const ActionText& text);

    QHash<QString, QAction*> m_actions;
    QList<QAction*> m_inOrder;
};

} // namespace zelto::view
