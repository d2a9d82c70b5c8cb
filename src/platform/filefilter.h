#pragma once

#include <QString>
#include <QStringList>

namespace tarnwick {

/// Turns a filter written as "Name (*.x)|*.x|All Files (*.*)|*.*" into the list of name
/// filters a Qt file dialog takes ("Name (*.x)", "All Files (*)"): each description keeps its
/// text, and its patterns (";"-separated, "*.*" meaning any file) are put in parentheses when
/// the description does not already show them.
QStringList toQtNameFilters(const QString &filter);

} // namespace tarnwick
