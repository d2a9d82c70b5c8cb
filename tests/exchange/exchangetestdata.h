#pragma once

#include <QDir>
#include <QString>

namespace tarnwick::test {

/// A file of the exchange tests' data folder.
inline QString dataFile(const QString &name)
{
    return QDir(QStringLiteral(TARNWICK_TEST_DATA)).filePath(name);
}

} // namespace tarnwick::test
