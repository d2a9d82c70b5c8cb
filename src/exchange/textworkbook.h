#pragma once

#include "exchange/workbook.h"

#include <QByteArray>
#include <QStringList>

#include <vector>

namespace tarnwick {

/// Tab-separated text as one worksheet: lines end in CR LF or LF, cells are separated by one
/// tab, nothing is quoted. Characters are read as the catalogue file's are.
///
/// The export writes a line break inside a field as it stands, so a product with a note of two
/// lines spans two lines of the file. A line that holds fewer cells than the first line (the
/// header) is therefore joined with the lines after it, line break included, as long as the
/// joined row still has no more cells than the header. A line without any tab (a blank line, or
/// a part number alone) is never joined, so it stays a row of its own.
class TextWorkbook : public IWorkbook
{
public:
    explicit TextWorkbook(const QByteArray &bytes);
    QString cellText(int column, int row) const override;

private:
    std::vector<QStringList> m_rows;
};

} // namespace tarnwick
