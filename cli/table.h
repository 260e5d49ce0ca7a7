#pragma once

#include <string>
#include <vector>

namespace cli {

using TableRow = std::vector<std::string>;

// Writes rows to standard output: columns as wide as their widest cell, two spaces apart, nothing after the last cell
// of a line. No row has more cells than the first. Writes nothing without rows.
void PrintTable(const std::vector<TableRow>& rows);

}  // namespace cli
