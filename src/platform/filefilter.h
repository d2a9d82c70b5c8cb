#pragma once

#include <QString>
#include <QStringList>

namespace tarnwick {

/// Turns a filter written as "Name (*.x)|*.x|All Files (*.*)|*.*" into the list of name
/// filters a Qt file dialog takes ("Name (*.x)", "All Files (*)"): each description keeps its
/// text, and its patterns (";"-separated, "*.*" meaning any file) are put in parentheses when
/// the description does not already show them.
QStringList toQtNameFilters(const QString &filter);
/// The descriptions of the filter's pairs, as written, one per entry of toQtNameFilters.
QStringList filterDescriptions(const QString &filter);

/// The path of a file saved with a name typed without an extension: the type's suffix (without
/// its dot) added, as a save dialog with that default suffix adds it. A name with a dot, an
/// empty name and an empty suffix leave path as it is.
QString withDefaultSuffix(const QString &path, const QString &suffix);

} // namespace tarnwick
