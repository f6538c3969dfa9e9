#include "zelto/display/internal/RowsBehind.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace zelto {

void RowsBehind::Start(int rows, Draw draw) {
    Finish();
    m_draw = std::move(draw);
    m_rows = rows;
    m_next = 0;
    try {
        m_thread = std::thread([this] { DrawTheRest(); });
    } catch (const std::system_error&) {
        // Finish() draws.
    }
}

void RowsBehind::Finish() {
    DrawTheRest();
    if (m_thread.joinable())
        m_thread.join();
}

void RowsBehind::DrawTheRest() {
    // Enough for the last rows to be shared; the first one of each is never a copy of that above.
    constexpr int ROWS_AT_ONCE = 32;
    for (int first = 0; (first = m_next.fetch_add(ROWS_AT_ONCE)) < m_rows;)
        m_draw(first, std::min(first + ROWS_AT_ONCE, m_rows));
}

} // namespace zelto
