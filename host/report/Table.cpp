#include "host/report/Table.h"

#include "host/base/Interrupts.h"
#include "host/base/Printable.h"

#include <algorithm>
#include <cctype>
#include <iostream>

namespace zelto::host {

namespace {

/// Characters, not bytes: continuation bytes of UTF-8 do not count.
std::size_t DisplayWidth(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
    }));
}

bool LooksNumeric(const std::string& text) {
    return !text.empty() &&
           (std::isdigit(static_cast<unsigned char>(text.back())) != 0 || text == "NaN") &&
           (std::isdigit(static_cast<unsigned char>(text.front())) != 0 || text.front() == '-' ||
            text == "NaN");
}

} // namespace

Table::Table(std::vector<std::string> header) {
    for (std::string& cell : header)
        cell = Printable(cell);
    m_rows.push_back(std::move(header));
}

Table::Table(const TableContent& content) : Table(content.columns) {
    for (const auto& row : content.rows)
        AddRow(row);
}

void Table::AddRow(std::vector<std::string> cells) {
    cells.resize(m_rows.front().size());
    for (std::string& cell : cells)
        cell = Printable(cell);
    m_rows.push_back(std::move(cells));
}

void Table::Print(int indent) const {
    EndIfInterrupted();
    const std::size_t columns = m_rows.front().size();
    std::vector<std::size_t> widths(columns, 0);
    std::vector<bool> numeric(columns, m_rows.size() > 1);
    for (std::size_t r = 0; r < m_rows.size(); ++r) {
        for (std::size_t c = 0; c < columns; ++c) {
            widths[c] = std::max(widths[c], DisplayWidth(m_rows[r][c]));
            if (r > 0 && !m_rows[r][c].empty() && !LooksNumeric(m_rows[r][c]))
                numeric[c] = false;
        }
    }
    for (const auto& row : m_rows) {
        std::string line(static_cast<std::size_t>(indent), ' ');
        for (std::size_t c = 0; c < columns; ++c) {
            const std::string padding(widths[c] - DisplayWidth(row[c]), ' ');
            line += numeric[c] ? padding + row[c] : row[c] + padding;
            line += "  ";
        }
        line.erase(line.find_last_not_of(' ') + 1);
        std::cout << line << '\n';
    }
}

} // namespace zelto::host
