#include "fuzzentries.h"
#include "fuzzone.h"

#include <QByteArray>

#include <array>
#include <cstdio>
#include <cstdlib>

namespace tarnwick::fuzzing {

namespace {

const std::array<Target, 6> AllTargets {
    Target { QLatin1StringView("catalogue_reader"), catalogueReader,
        { QStringLiteral("read"), QStringLiteral("failed") } },
    Target { QLatin1StringView("xlsx_reader"), xlsxReader,
        { QStringLiteral("read"), QStringLiteral("not a workbook") } },
    Target { QLatin1StringView("ods_reader"), odsReader,
        { QStringLiteral("read"), QStringLiteral("not a workbook") } },
    Target { QLatin1StringView("text_reader"), textReader, { QStringLiteral("read") } },
    Target { QLatin1StringView("wire_decoder"), wireDecoder,
        { QStringLiteral("read"), QStringLiteral("failed"), QStringLiteral("malformed") } },
    Target { QLatin1StringView("workbook_import"), workbookImport,
        { QStringLiteral("added"), QStringLiteral("nothing added") } },
};

} // namespace

std::span<const Target> targets()
{
    return AllTargets;
}

const Target *findTarget(QLatin1StringView name)
{
    for (const Target &target : AllTargets) {
        if (target.name == name) {
            return &target;
        }
    }
    return nullptr;
}

QStringList brokenRules(const Target &target, const Verdict &verdict)
{
    QStringList broken = verdict.broken;
    if (!target.outcomes.contains(verdict.outcome)) {
        broken << QStringLiteral("the outcome \"%1\" is none of the target's").arg(verdict.outcome);
    }
    return broken;
}

int fuzzOne(const char *targetName, const std::uint8_t *data, std::size_t size)
{
    const Target *target = findTarget(QLatin1StringView(targetName));
    if (target == nullptr) {
        std::fprintf(stderr, "no fuzz target %s\n", targetName);
        std::abort();
    }
    const QByteArrayView input(data, qsizetype(size));
    const QStringList broken = brokenRules(*target, target->entry(input));
    if (!broken.isEmpty()) {
        for (const QString &rule : broken) {
            std::fprintf(stderr, "%s: %s\n", targetName, rule.toLocal8Bit().constData());
        }
        std::abort();
    }
    return 0;
}

} // namespace tarnwick::fuzzing
