#include "cli/table.h"

#include <algorithm>
#include <cstdio>

namespace cli {

void PrintTable(const std::vector<TableRow>& rows) {
    if (rows.empty()) return;
    std::vector<std::size_t> widths(rows.front().size());
    for (const TableRow& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
    for (const TableRow& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) line += row[i] + std::string(widths[i] - row[i].size() + 2, ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        std::printf("%s\n", line.c_str());
    }
}

}  // namespace cli
