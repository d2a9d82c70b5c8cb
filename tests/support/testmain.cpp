// The main() of every test executable: a QApplication on the offscreen platform (also for
// the listing run, which gets no test environment) and GoogleTest/GoogleMock.
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

#include <gmock/gmock.h>

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    // A home of the tests' own: Qt's file dialogs, settings and caches never read or write the
    // user's, and no result depends on what the user's folders hold.
    QTemporaryDir home(QDir::temp().filePath(QStringLiteral("tarnwick-test-home-XXXXXX")));
    if (home.isValid()) {
        qputenv("HOME", QFile::encodeName(home.path()));
        for (const char *variable : { "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME" })
            qputenv(variable, QFile::encodeName(home.filePath(QString::fromLatin1(variable))));
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tarnwick"));
    ::testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
