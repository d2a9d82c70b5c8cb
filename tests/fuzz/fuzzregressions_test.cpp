// Every input a fuzz target found, kept in fuzz/regressions/<target>/, goes through the same
// entry point as in the fuzz target, and must come to one of the target's documented outcomes
// with every rule kept: a file that is no workbook gives the "not a workbook" result, a damaged
// catalogue the reading's error, and nothing crashes, leaks or overflows on the way.
#include "fuzzentries.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

namespace tarnwick::fuzzing {
namespace {

const QString RegressionsFolder = QStringLiteral(TARNWICK_FUZZ_REGRESSIONS);

struct KeptInput
{
    QString target;
    QString path;
};

std::vector<KeptInput> keptInputs()
{
    std::vector<KeptInput> inputs;
    for (const Target &target : targets()) {
        const QDir folder(RegressionsFolder + QLatin1Char('/') + target.name);
        for (const QString &name : folder.entryList(QDir::Files, QDir::Name)) {
            inputs.push_back({ target.name, folder.filePath(name) });
        }
    }
    return inputs;
}

std::string testName(const testing::TestParamInfo<KeptInput> &info)
{
    std::string name =
        (info.param.target + QLatin1Char('_') + QDir(info.param.path).dirName()).toStdString();
    for (char &c : name) {
        if (!std::isalnum(static_cast<unsigned char>(c))) {
            c = '_';
        }
    }
    return name;
}

class FuzzRegression : public testing::TestWithParam<KeptInput>
{
};

TEST_P(FuzzRegression, ComesToADocumentedOutcome)
{
    const Target *target = findTarget(QLatin1StringView(GetParam().target.toLatin1()));
    ASSERT_NE(target, nullptr);
    QFile file(GetParam().path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << GetParam().path.toStdString();
    const Verdict verdict = target->entry(file.readAll());
    EXPECT_TRUE(target->outcomes.contains(verdict.outcome)) << verdict.outcome.toStdString();
    EXPECT_EQ(brokenRules(*target, verdict).join(QLatin1Char('\n')).toStdString(), "");
}

INSTANTIATE_TEST_SUITE_P(Kept, FuzzRegression, testing::ValuesIn(keptInputs()), testName);

TEST(FuzzRegressions, EveryFolderBelongsToATarget)
{
    const QDir folder(RegressionsFolder);
    ASSERT_TRUE(folder.exists());
    for (const QString &name : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        EXPECT_NE(findTarget(QLatin1StringView(name.toLatin1())), nullptr)
            << "fuzz/regressions/" << name.toStdString() << " is no fuzz target's folder";
    }
}

} // namespace
} // namespace tarnwick::fuzzing
