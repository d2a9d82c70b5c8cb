#include "support/modelcheck.h"

#include <QLoggingCategory>
#include <QMutex>

namespace tarnwick::test {

namespace {

QMutex failuresLock;
QStringList collectedFailures;
QtMessageHandler previousHandler = nullptr;
int watching = 0;

void collectFailures(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (context.category && qstrcmp(context.category, "qt.modeltest") == 0 && type != QtDebugMsg
        && type != QtInfoMsg) {
        const QMutexLocker lock(&failuresLock);
        collectedFailures.append(message);
        return;
    }
    if (previousHandler)
        previousHandler(type, context, message);
}

} // namespace

ModelCheck::ModelCheck(QAbstractItemModel *model)
{
    {
        const QMutexLocker lock(&failuresLock);
        if (watching++ == 0) {
            collectedFailures.clear();
            previousHandler = qInstallMessageHandler(collectFailures);
        }
    }
    m_tester = std::make_unique<QAbstractItemModelTester>(
        model, QAbstractItemModelTester::FailureReportingMode::Warning);
}

ModelCheck::~ModelCheck()
{
    m_tester.reset();
    const QMutexLocker lock(&failuresLock);
    if (--watching == 0)
        qInstallMessageHandler(previousHandler);
}

QStringList ModelCheck::failures() const
{
    const QMutexLocker lock(&failuresLock);
    return collectedFailures;
}

} // namespace tarnwick::test
