#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace zelto {

/// Draws rows of an image on a second thread, while the caller reads what is to be drawn next. Who
/// waits for them draws along, so that nothing is lost where reading takes no time.
class RowsBehind {
  public:
    /// Draws rows from `first` up to, but not including, `end`. Throws nothing.
    using Draw = std::function<void(int first, int end)>;

    RowsBehind() = default;
    ~RowsBehind() { Finish(); }
    RowsBehind(const RowsBehind&) = delete;
    RowsBehind& operator=(const RowsBehind&) = delete;

    /// Begins with `rows` rows, those before being finished. Where no thread can be had they are
    /// drawn by Finish().
    void Start(int rows, Draw draw);
    /// Returns when all rows are drawn.
    void Finish();

  private:
    void DrawTheRest();

    Draw m_draw;
    int m_rows = 0;
    std::atomic<int> m_next = 0; ///< the first row that nobody draws yet
    std::thread m_thread;
};

} // namespace zelto
