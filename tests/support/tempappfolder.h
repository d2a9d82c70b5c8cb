#pragma once

#include "platform/appenvironment.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

namespace tarnwick::test {

/// A temporary application folder for one test, removed afterwards. It also points QSettings
/// (user scope, INI format) into the folder, so no test reads or writes the real settings.
class TempAppFolder
{
public:
    TempAppFolder();

    QString path() const { return m_dir.path(); }
    QString filePath(const QString &name) const { return m_dir.filePath(name); }
    AppEnvironment environment(const QString &commandLine = QString()) const;

    void writeFile(const QString &name, const QByteArray &bytes) const;
    QByteArray readFile(const QString &name) const;
    bool exists(const QString &name) const;
    /// Names of the files in the folder, sorted.
    QStringList fileNames() const;

private:
    QTemporaryDir m_dir;
};

} // namespace tarnwick::test
