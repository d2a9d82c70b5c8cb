#include "platform/appfolder.h"

#include "platform/appenvironment.h"
#include "platform/iprompts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#if defined(Q_OS_LINUX)
#include <climits>
#include <unistd.h>
#endif

namespace tarnwick {

AppFolderChoice AppFolderRule::choose(const QString &overrideFolder,
    const QString &executableFolder, const QString &perUserFolder, const WritableCheck &isWritable)
{
    if (!overrideFolder.isEmpty())
        return { QDir(overrideFolder).absolutePath(), false };
    if (isWritable(executableFolder))
        return { QDir(executableFolder).absolutePath(), false };
    return { QDir(perUserFolder).absolutePath(), true };
}

bool AppFolderRule::isWritableFolder(const QString &folder)
{
    const QFileInfo info(folder);
    if (!info.isDir() || !info.isWritable())
        return false;
#if defined(Q_OS_WIN)
    // Windows calls a folder such as Program Files writable when only an administrator may
    // write there: a file made there and removed again is the real test.
    QTemporaryFile probe(QDir(folder).filePath(QStringLiteral("tarnwick-XXXXXX.tmp")));
    if (!probe.open())
        return false;
#endif
    return !QFileInfo(QDir(folder).filePath(QStringLiteral("../share/tarnwick"))).isDir();
}

QString AppFolderRule::installedSampleCatalogue(const QString &executableFolder)
{
    return QDir::cleanPath(
        QDir(executableFolder).filePath(QStringLiteral("../share/tarnwick/twdata.dat")));
}

namespace {

bool survivesDecoding(const QByteArray &name)
{
    return QFile::encodeName(QFile::decodeName(name)) == name;
}

} // namespace

QString unreadableAppFolder(const QByteArray &namedFolder, const QByteArray &executableFolder,
    const QByteArray &perUserBase, const std::function<bool(const QByteArray &folder)> &usedAsIs)
{
    QByteArray folder = perUserBase;
    if (!namedFolder.isEmpty())
        folder = namedFolder;
    else if (!executableFolder.isEmpty() && usedAsIs(executableFolder))
        folder = executableFolder;
    return survivesDecoding(folder) ? QString() : QFile::decodeName(folder);
}

QString unreadableAppFolderOfThisProgram()
{
#if defined(Q_OS_LINUX)
    QByteArray executable(PATH_MAX, Qt::Uninitialized);
    const ssize_t size = ::readlink("/proc/self/exe", executable.data(), executable.size());
    executable.resize(size > 0 ? size : 0);
    const qsizetype slash = executable.lastIndexOf('/');
    // As AppFolderRule decides: writable, and not an installed copy's.
    const auto usedAsIs = [](const QByteArray &folder) {
        return ::access(folder.constData(), W_OK) == 0
            && ::access((folder + "/../share/tarnwick").constData(), F_OK) != 0;
    };
    const QByteArray dataHome = qgetenv("XDG_DATA_HOME");
    return unreadableAppFolder(qgetenv(AppEnvironment::AppFolderVariable),
        slash > 0 ? executable.left(slash) : QByteArray(),
        dataHome.startsWith('/') ? dataHome : qgetenv("HOME"), usedAsIs);
#else
    return {};
#endif
}

namespace {

void sayUnusable(const QString &folder, const QString &why, IPrompts &prompts)
{
    prompts.msgBox(
        QString::fromLatin1(FolderUnusableMessage).arg(QDir::toNativeSeparators(folder), why),
        MsgStyle::Exclamation);
}

} // namespace

bool findNamedFolder(const QString &folder, IPrompts &prompts)
{
    const QString question =
        QString::fromLatin1(FolderMissingQuestion).arg(QDir::toNativeSeparators(folder));
    while (!QFileInfo(folder).isDir()) {
        const int answer = prompts.msgBox(question,
            MsgStyle::AbortRetryIgnore | MsgStyle::Exclamation | MsgStyle::DefaultButton2);
        if (answer == MsgResult::Abort)
            return false;
        if (answer == MsgResult::Ignore) {
            if (!QDir().mkpath(folder))
                sayUnusable(folder, QStringLiteral("the folder cannot be created"), prompts);
            return true;
        }
    }
    return true;
}

bool offerSampleCatalogue(const QString &folder, const QString &sampleCatalogue, IPrompts &prompts)
{
    // Without a folder to write to, a whole session's work would be lost at its close: say so
    // at the start.
    const bool made = QDir().mkpath(folder);
    if (!made || !QFileInfo(folder).isWritable()) {
        sayUnusable(folder,
            made ? QStringLiteral("the folder may not be written to")
                 : QStringLiteral("the folder cannot be created"),
            prompts);
        return false;
    }
    const QDir dir(folder);
    // The lock of the running copy ("tarnwick.lock") is there already; it does not count.
    QStringList entries =
        dir.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
    entries.removeAll(QStringLiteral("tarnwick.lock"));
    if (!entries.isEmpty())
        return false;
    const QString question =
        QString::fromLatin1(FirstStartQuestion).arg(QDir::toNativeSeparators(folder));
    const QString target = dir.filePath(QStringLiteral("twdata.dat"));
    const bool sample =
        prompts.msgBox(question, MsgStyle::YesNo | MsgStyle::Question) == MsgResult::Yes;
    if (sample && QFile::copy(sampleCatalogue, target)) {
        QFile::setPermissions(
            target, QFile::permissions(target) | QFile::WriteOwner | QFile::ReadOwner);
        return true;
    }
    if (sample) {
        prompts.msgBox(QString::fromLatin1(SampleMissingMessage)
                           .arg(QDir::toNativeSeparators(sampleCatalogue)),
            MsgStyle::Exclamation);
    }
    // An empty catalogue file reads as no products; if it cannot be made, the start-up read
    // reports the missing file.
    QFile empty(target);
    static_cast<void>(empty.open(QIODevice::WriteOnly));
    return false;
}

} // namespace tarnwick
