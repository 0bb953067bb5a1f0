#ifndef TEXT_TABLE_H
#define TEXT_TABLE_H

#include <string>
#include <vector>

/// Cells in aligned columns, two blanks between them.
class TEXT_TABLE
{
public:
    explicit TEXT_TABLE(std::vector<std::string> header) { add_row(std::move(header)); }
    void add_row(std::vector<std::string> cells);
    std::string text() const;

private:
    std::vector<std::vector<std::string>> m_rows;
    std::vector<std::size_t> m_widths;
};

#endif
