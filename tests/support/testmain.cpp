// The main() of every test executable: a QApplication on the offscreen platform (also for
// the listing run, which gets no test environment) and GoogleTest/GoogleMock.
#include <QApplication>
#include <QLocale>

#include <gmock/gmock.h>

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tarnwick"));
    ::testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
