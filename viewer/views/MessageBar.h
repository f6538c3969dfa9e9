#pragma once

#include <QFrame>
#include <QString>
#include <functional>

class QLabel;
class QPushButton;
class QTimer;

namespace zelto::view {

/// A line above the map that tells what went wrong or offers something, and never blocks: the
/// work goes on, and the bar goes with a click.
class MessageBar : public QFrame {
    Q_OBJECT

  public:
    explicit MessageBar(QWidget* parent = nullptr);

    /// Stays until it is closed or replaced.
    void TellError(const QString& text);
    /// Goes by itself after a while.
    void Tell(const QString& text);
    /// With a button that calls `action`.
    void Offer(const QString& text, const QString& button, const std::function<void()>& action);
    QString Text() const;

  private:
    void Show(const QString& text, bool isError);

    QLabel* m_icon;
    QLabel* m_text;
    QPushButton* m_button;
    QTimer* m_timer;
    std::function<void()> m_action;
};

} // namespace zelto::view
