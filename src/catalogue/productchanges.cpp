#include "catalogue/productchanges.h"

#include <algorithm>

namespace tarnwick {

int ProductChanges::changedProducts() const
{
    std::vector<int> rows;
    rows.reserve(updated.size());
    for (const CellUpdate &update : updated)
        rows.push_back(update.row);
    std::sort(rows.begin(), rows.end());
    return int(std::unique(rows.begin(), rows.end()) - rows.begin());
}

} // namespace tarnwick
