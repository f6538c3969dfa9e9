#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;

namespace zelto::view {

class TaskRunner;

/// How far the work in the background is, how long it will take, and a button that ends it.
class TaskLine : public QWidget {
    Q_OBJECT

  public:
    TaskLine(TaskRunner& tasks, QWidget* parent = nullptr);

  private:
    void ShowProgress(int percent, int secondsLeft);

    QLabel* m_title;
    QProgressBar* m_bar;
    QLabel* m_left;
};

} // namespace zelto::view
