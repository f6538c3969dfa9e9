#include "zelto/display/internal/SamplePositions.h"

#include "zelto/baselib/internal/Truncate.h"

#include <algorithm>

namespace zelto {

std::ptrdiff_t SamplePositions::Axis::Index(double position) const {
    if (position < 0.0 || position > bandSize)
        return outside;
    // Truncated toward zero: up to one sample before the window still shows its first one.
    const std::int32_t index = TruncateToInt32((position - offset) * bufferSize / size);
    return index < 0 || index >= bufferSize ? outside : index;
}

SamplePositions::SamplePositions(const OutputGrid& output, const ReadWindow& window, int bandWidth,
                                 int bandHeight)
    : m_output(output),
      m_columnAxis{bandWidth, window.xOff, window.xSize, window.bufWidth},
      m_rowAxis{bandHeight, window.yOff, window.ySize, window.bufHeight} {
    if (!output.IsAxisParallel())
        return;
    // The terms that do not count are multiplied by zero but kept, so that every column is the
    // same to the last bit as the pixel's own.
    const double y = output.GroundY(0);
    m_columns.reserve(static_cast<std::size_t>(output.width));
    for (int column = 0; column < output.width; ++column)
        m_columns.push_back(m_columnAxis.Index(output.SourceColumn(output.GroundX(column), y)));
    const auto begin = std::find_if(m_columns.begin(), m_columns.end(),
                                    [](std::ptrdiff_t index) { return index != outside; });
    m_insideBegin = static_cast<int>(begin - m_columns.begin());
    m_insideEnd = static_cast<int>(std::find(begin, m_columns.end(), outside) - m_columns.begin());
    const auto gap = std::adjacent_find(begin, m_columns.end(),
                                        [](auto index, auto next) { return next != index + 1; });
    m_consecutiveEnd =
        gap == m_columns.end() ? m_insideEnd : static_cast<int>(gap + 1 - m_columns.begin());
}

std::ptrdiff_t SamplePositions::LineOf(int row) const {
    const std::ptrdiff_t line =
        m_rowAxis.Index(m_output.SourceRow(m_output.GroundX(0), m_output.GroundY(row)));
    return line == outside ? outside : line * m_columnAxis.bufferSize;
}

SamplePositions::Run SamplePositions::RunOf(int row, int firstColumn, int count,
                                            Scratch& scratch) const {
    if (m_output.IsAxisParallel())
        return {LineOf(row), m_columns.data() + firstColumn, count,
                firstColumn >= m_insideBegin && firstColumn + count <= m_insideEnd,
                firstColumn >= m_insideBegin && firstColumn + count <= m_consecutiveEnd};
    const double y = m_output.GroundY(row);
    for (int i = 0; i < count; ++i) {
        const double x = m_output.GroundX(firstColumn + i);
        const std::ptrdiff_t column = m_columnAxis.Index(m_output.SourceColumn(x, y));
        const std::ptrdiff_t line = m_rowAxis.Index(m_output.SourceRow(x, y));
        scratch[i] = column == outside || line == outside ? outside
                                                          : line * m_columnAxis.bufferSize + column;
    }
    return {0, scratch.data(), count};
}

} // namespace zelto
