#include "viewer/views/MessageBar.h"

#include "viewer/views/Icons.h"
#include "viewer/views/Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>
#include <utility>

namespace zelto::view {

namespace {

constexpr int NOTICE_MILLISECONDS = 8000;
constexpr int ICON_SIDE = 18;

} // namespace

MessageBar::MessageBar(QWidget* parent)
    : QFrame(parent),
      m_icon(new QLabel),
      m_text(new QLabel),
      m_button(new QPushButton),
      m_timer(new QTimer(this)) {
    setObjectName("messageBar");
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    auto* close = new QToolButton;
    close->setIcon(MakeIcon("close"));
    close->setToolTip(tr("Close this message"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(10, 6, 6, 6);
    layout->addWidget(m_icon);
    layout->addWidget(m_text, 1);
    layout->addWidget(m_button);
    layout->addWidget(close);
    m_timer->setSingleShot(true);
    connect(m_timer, &QTimer::timeout, this, &QWidget::hide);
    connect(close, &QToolButton::clicked, this, &QWidget::hide);
    connect(m_button, &QPushButton::clicked, this, [this] {
        hide();
        if (const auto action = std::exchange(m_action, nullptr))
            action();
    });
    hide();
}

void MessageBar::Show(const QString& text, bool isError) {
    m_action = nullptr;
    m_button->hide();
    m_timer->stop();
    m_text->setText(text);
    m_icon->setPixmap(MakeIcon(isError ? "warning" : "info").pixmap(ICON_SIDE, ICON_SIDE));
    const QString color =
        isError ? (IsDark() ? "#5a2e2c" : "#fbe3e1") : (IsDark() ? "#23434b" : "#dff0f3");
    setStyleSheet(QString("#messageBar { background: %1; border-radius: 6px; }").arg(color));
    show();
}

void MessageBar::TellError(const QString& text) {
    Show(text, true);
}

void MessageBar::Tell(const QString& text) {
    Show(text, false);
    m_timer->start(NOTICE_MILLISECONDS);
}

void MessageBar::Offer(const QString& text, const QString& button,
                       const std::function<void()>& action) {
    Show(text, false);
    m_action = action;
    m_button->setText(button);
    m_button->show();
}

QString MessageBar::Text() const {
    return isVisible() ? m_text->text() : QString();
}

} // namespace zelto::view
