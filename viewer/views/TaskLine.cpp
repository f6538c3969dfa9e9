#include "viewer/views/TaskLine.h"

#include "viewer/views/Icons.h"
#include "viewer/worker/TaskRunner.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QToolButton>

namespace zelto::view {

namespace {

constexpr int BAR_WIDTH = 160;

} // namespace

TaskLine::TaskLine(TaskRunner& tasks, QWidget* parent)
    : QWidget(parent), m_title(new QLabel), m_bar(new QProgressBar), m_left(new QLabel) {
    setObjectName("taskLine");
    m_bar->setFixedWidth(BAR_WIDTH);
    m_bar->setMaximumHeight(14);
    auto* cancel = new QToolButton;
    cancel->setObjectName("cancelTask");
    cancel->setIcon(MakeIcon("close"));
    cancel->setToolTip(tr("Cancel the work"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 0, 4, 0);
    layout->addWidget(m_title);
    layout->addWidget(m_bar);
    layout->addWidget(m_left);
    layout->addWidget(cancel);
    hide();
    connect(cancel, &QToolButton::clicked, &tasks, &TaskRunner::CancelAll);
    connect(&tasks, &TaskRunner::Began, this, [this](const QString& title) {
        m_title->setText(title);
        ShowProgress(0, -1);
        show();
    });
    connect(&tasks, &TaskRunner::Progressed, this, &TaskLine::ShowProgress);
    connect(&tasks, &TaskRunner::Ended, this, [this, &tasks] { setVisible(tasks.IsBusy()); });
}

void TaskLine::ShowProgress(int percent, int secondsLeft) {
    m_bar->setValue(percent);
    if (secondsLeft < 0)
        m_left->clear();
    else if (secondsLeft < 90)
        m_left->setText(tr("%n second(s) left", nullptr, secondsLeft));
    else
        m_left->setText(tr("%n minute(s) left", nullptr, (secondsLeft + 30) / 60));
}

} // namespace zelto::view
