#pragma once

#include "exchange/workbook.h"

#include <QByteArray>
#include <QStringList>

#include <vector>

namespace tarnwick {

/// Tab-separated text as one worksheet: lines end in CR LF or LF, cells are separated by one
/// tab, nothing is quoted. Characters are read as the catalogue file's are.
class TextWorkbook : public IWorkbook
{
public:
    explicit TextWorkbook(const QByteArray &bytes);
    QString cellText(int column, int row) const override;

private:
    std::vector<QStringList> m_rows;
};

} // namespace tarnwick
