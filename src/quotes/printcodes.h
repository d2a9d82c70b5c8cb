#pragma once

#include <QString>

namespace tarnwick {

/// The three sections of a page header or footer.
struct PageText
{
    QString left;
    QString centre;
    QString right;

    bool operator==(const PageText &) const = default;
};

/// Expands the print codes of a page header or footer: "\t" moves on to the next section
/// (left → centre → right; further ones stay in the right section), "\p" is the page number,
/// "\P" the number of pages, "\\" one backslash. A backslash before any other character is
/// kept as it stands.
PageText expandPrintCodes(const QString &pattern, int page, int pageCount);

} // namespace tarnwick
