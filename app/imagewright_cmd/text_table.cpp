#include "text_table.h"

#include <algorithm>

void TEXT_TABLE::add_row(std::vector<std::string> cells)
{
    m_widths.resize(std::max(m_widths.size(), cells.size()));
    for (std::size_t column = 0; column < cells.size(); ++column) {
        m_widths[column] = std::max(m_widths[column], cells[column].size());
    }
    m_rows.push_back(std::move(cells));
}

std::string TEXT_TABLE::text() const
{
    std::string text;
    for (const std::vector<std::string>& row : m_rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            text += row[column];
            if (column + 1 < row.size()) {
                text.append(m_widths[column] - row[column].size() + 2, ' ');
            }
        }
        text += '\n';
    }
    return text;
}
