#include "cataloguefixture.h"

namespace tarnwick::test {

QByteArray productLine(const QList<QByteArray> &fields)
{
    QByteArray line;
    for (int field = 0; field < 15; ++field) {
        if (field < fields.size())
            line += fields[field];
        line += FE;
    }
    return line + "\r\n";
}

QByteArray generatedCatalogue(int products)
{
    QByteArray bytes;
    for (int i = 1; i <= products; ++i) {
        const QByteArray n = QByteArray::number(i);
        bytes += productLine({ "P" + n, "Product " + n, n + ".5", "Notes of " + n });
    }
    return bytes;
}

CatalogueFixture::CatalogueFixture(const QString &commandLine)
    : environment(folder.environment(commandLine))
{
}

void CatalogueFixture::writeDataFile(const QByteArray &bytes) const
{
    folder.writeFile(QStringLiteral("twdata.dat"), bytes);
}

QByteArray CatalogueFixture::dataFileBytes() const
{
    return folder.readFile(QStringLiteral("twdata.dat"));
}

CatalogueReadResult CatalogueFixture::readBack(Table &into)
{
    into.redim(1000, 15);
    Products reader(into, prompts, environment, locale);
    return reader.ReadProds(dataFile());
}

} // namespace tarnwick::test
