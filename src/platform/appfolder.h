#pragma once

#include <QString>

#include <functional>

namespace tarnwick {

class IPrompts;

/// The application folder the program uses and whether it is the per-user data folder.
struct AppFolderChoice
{
    QString folder;
    bool perUser = false;
};

/// Which folder holds the catalogue and the quote texts. The folder named by TARNWICK_APP_DIR
/// wins; otherwise a writable executable folder (a build folder, a portable copy) is used as
/// it is, and an executable folder the user cannot write (an installed copy) gives the per-user
/// data folder.
class AppFolderRule
{
public:
    using WritableCheck = std::function<bool(const QString &folder)>;

    static AppFolderChoice choose(const QString &overrideFolder, const QString &executableFolder,
        const QString &perUserFolder, const WritableCheck &isWritable);

    /// The check of a running program: the folder is writable for this user and is not part of
    /// an installed copy (one with the shared data folder "../share/tarnwick" beside it), so
    /// that even an administrator's start of an installed copy keeps its data per user.
    static bool isWritableFolder(const QString &folder);

    /// The sample catalogue shipped with an installed copy of the executable in executableFolder.
    static QString installedSampleCatalogue(const QString &executableFolder);
};

/// The first start in an empty per-user folder: asks whether to begin with the sample catalogue
/// (copied from sampleCatalogue as "twdata.dat") or an empty one (an empty "twdata.dat"). Does
/// nothing when the folder already holds anything but the running copy's lock file. Returns true
/// when the sample was copied. A folder that cannot be made or written to is said at once,
/// instead of the question.
bool offerSampleCatalogue(const QString &folder, const QString &sampleCatalogue, IPrompts &prompts);

/// The folder named by TARNWICK_APP_DIR, looked for before anything is read from it. A folder
/// that is not there (a network drive or a USB stick not connected, a mistyped name) is said
/// at once instead of starting with an empty catalogue: the user connects it and looks again
/// (Retry), has it made and starts empty (Ignore), or closes the program (Abort). Returns false
/// for Abort. A folder that cannot be made is said as for the per-user folder.
bool findNamedFolder(const QString &folder, IPrompts &prompts);

/// Qt reads the system's names of files as UTF-8, so a folder named in another encoding (on an
/// older system, or a stick copied from one) comes through as another name, which is not there:
/// the program would start empty elsewhere while its catalogue lies in that folder. Returns
/// the name as Qt reads it when the application folder lies in such a folder: the one named by
/// TARNWICK_APP_DIR (namedFolder, the variable's bytes), else the executable's folder
/// (executableFolder, the system's bytes) when it is used (usedAsIs: writable and not an
/// installed copy's), else the per-user data folder's base (perUserBase: XDG_DATA_HOME, or the
/// home folder); the empty text otherwise.
QString unreadableAppFolder(const QByteArray &namedFolder, const QByteArray &executableFolder,
    const QByteArray &perUserBase, const std::function<bool(const QByteArray &folder)> &usedAsIs);
/// The same for the running program, from its environment and its executable's path as the
/// system gives them (Linux; elsewhere names are text already and nothing is found).
QString unreadableAppFolderOfThisProgram();

/// Said, and the program ends, when the application folder's name cannot be read.
inline constexpr const char *FolderNameUnreadableMessage =
    "The name of Tarnwick's folder holds characters this system cannot read as text:\n%1\n\n"
    "Tarnwick keeps the catalogue and the quotes in that folder and would not find them under "
    "that name. Rename the folder (or the folder above it) so that its name holds no such "
    "characters, then start Tarnwick again.";

/// The question of the first start.
inline constexpr const char *FirstStartQuestion =
    "This is the first start of Tarnwick in this folder:\n%1\n\nStart with the sample catalogue "
    "of plumbing supplies?\n\nYes: start with the sample catalogue.\nNo: start with an empty "
    "catalogue.";
/// Shown when the per-user folder cannot be made or written to.
inline constexpr const char *FolderUnusableMessage =
    "Tarnwick cannot keep its files in its folder:\n%1\n(%2)\n\nThe catalogue and the quotes "
    "cannot be saved in this session. Ask your administrator for the right to write there or "
    "for another folder (see \"Where your data lives\" in the help).";
/// Asked when the folder named by TARNWICK_APP_DIR is not there.
inline constexpr const char *FolderMissingQuestion =
    "Tarnwick's folder cannot be found:\n%1\n\nIt holds the catalogue and the quotes. If it is "
    "on a drive that is not connected now (a network drive, a USB stick), connect it and press "
    "Retry.\n\nRetry: look for the folder again.\nIgnore: create the folder and start with an "
    "empty catalogue.\nAbort: close Tarnwick.";
/// Shown when the sample catalogue cannot be copied.
inline constexpr const char *SampleMissingMessage =
    "The sample catalogue could not be copied from\n%1\nTarnwick starts with an empty catalogue.";

} // namespace tarnwick
