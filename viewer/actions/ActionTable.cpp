#include "viewer/actions/ActionTable.h"

#include "viewer/views/Icons.h"

namespace zelto::view {

QAction* ActionTable::Make(const ActionText& text) {
    auto* action = new QAction(text.text, this);
    action->setObjectName(text.id);
    action->setShortcut(text.shortcut);
    QString tip = text.tip;
    if (!text.shortcut.isEmpty())
        tip += QString(" (%1)").arg(text.shortcut.toString(QKeySequence::NativeText));
    action->setToolTip(tip);
    action->setStatusTip(text.tip);
    if (!text.icon.isEmpty())
        action->setIcon(MakeIcon(text.icon));
    m_actions[text.id] = action;
    m_inOrder.append(action);
    return action;
}

QAction* ActionTable::Add(const ActionText& text, const std::function<void()>& run) {
    QAction* action = Make(text);
    connect(action, &QAction::triggered, this, [run] { run(); });
    return action;
}

QAction* ActionTable::AddSwitch(const ActionText& text, const std::function<void(bool)>& run) {
    QAction* action = Make(text);
    action->setCheckable(true);
    connect(action, &QAction::toggled, this, run);
    return action;
}

QList<QAction*> ActionTable::All() const {
    return m_inOrder;
}

} // namespace zelto::view
