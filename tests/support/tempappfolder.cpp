#include "support/tempappfolder.h"

#include <QDir>
#include <QFile>
#include <QSettings>

#include <gtest/gtest.h>

namespace tarnwick::test {

TempAppFolder::TempAppFolder()
{
    EXPECT_TRUE(m_dir.isValid());
    QSettings::setPath(
        QSettings::IniFormat, QSettings::UserScope, m_dir.filePath(QStringLiteral("settings")));
    QSettings::setPath(
        QSettings::NativeFormat, QSettings::UserScope, m_dir.filePath(QStringLiteral("settings")));
}

AppEnvironment TempAppFolder::environment(const QString &commandLine) const
{
    return AppEnvironment(m_dir.path(), commandLine);
}

void TempAppFolder::writeFile(const QString &name, const QByteArray &bytes) const
{
    QFile file(m_dir.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
    file.write(bytes);
}

QByteArray TempAppFolder::readFile(const QString &name) const
{
    QFile file(m_dir.filePath(name));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

bool TempAppFolder::exists(const QString &name) const
{
    return QFile::exists(m_dir.filePath(name));
}

QStringList TempAppFolder::fileNames() const
{
    return QDir(m_dir.path()).entryList(QDir::Files, QDir::Name);
}

} // namespace tarnwick::test
