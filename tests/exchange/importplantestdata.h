#pragma once

// What the import plan's tests share: the mapping of a supplier's sheet and the skipped rows of
// a plan with their reasons.
#include "exchange/columnmapping.h"
#include "exchange/importplan.h"

#include <QString>

#include <array>
#include <utility>
#include <vector>

namespace tarnwick::test {

/// Part number A, name B, list price C, notes D, first price E (lists 0, 1, 3, 7, 4).
inline QString supplierLetters(bool withName = true)
{
    std::array<int, ColumnMapping::ListCount> positions;
    positions.fill(0);
    positions[0] = 0;
    positions[1] = withName ? 1 : -1;
    positions[3] = 3;
    positions[7] = 4;
    positions[4] = 5;
    return ColumnMapping::columnLetters(positions);
}

/// The sheet rows the plan skipped, each with its reason.
inline std::vector<std::pair<int, SkipReason>> skippedRows(const ImportPlan &plan)
{
    std::vector<std::pair<int, SkipReason>> rows;
    for (const ImportPlan::SkippedRow &row : plan.skipped)
        rows.emplace_back(row.sheetRow, row.reason);
    return rows;
}

} // namespace tarnwick::test
