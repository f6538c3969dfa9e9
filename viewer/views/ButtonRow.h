#pragma once

#include <QAction>
#include <QHBoxLayout>
#include <QList>
#include <QToolButton>

namespace zelto::view {

/// A row of buttons for actions, as panels have at their lower edge.
inline QHBoxLayout* MakeButtonRow(const QList<QAction*>& actions) {
    auto* row = new QHBoxLayout;
    row->setContentsMargins(4, 2, 4, 4);
    row->setSpacing(2);
    for (QAction* action : actions) {
        auto* button = new QToolButton;
        button->setDefaultAction(action);
        row->addWidget(button);
    }
    row->addStretch(1);
    return row;
}

} // namespace zelto::view
