// A catalogue file changed outside Tarnwick while it runs (another copy of it on a shared
// folder, a program that keeps the folder in step with another computer) is never lost to a
// save or a close: an unchanged catalogue leaves it as it is, a changed one keeps it as a copy.
#include "cataloguefixture.h"

#include "catalogue/cataloguefile.h"

#include <QFile>

namespace tarnwick::test {
namespace {

const QByteArray OursOnDisk = productLine({ "A-1", "Anchor", "12.5" });
const QByteArray TheirsOnDisk =
    productLine({ "A-1", "Anchor", "12.5" }) + productLine({ "L-9", "Laptop's product", "9" });

class ChangedOutsideTest : public CatalogueFixture
{
protected:
    void SetUp() override
    {
        writeDataFile(OursOnDisk);
        ASSERT_EQ(products.ReadProds(dataFile()).status, CatalogueReadResult::Status::Ok);
        products.markAsFile();
    }
    /// The other computer's catalogue put in place as such programs do: written beside it,
    /// then renamed over it.
    void replaceFromOutside(const QByteArray &bytes)
    {
        const QString incoming = folder.filePath(QStringLiteral(".twdata.dat.incoming"));
        QFile file(incoming);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        ASSERT_TRUE(QFile::remove(dataFile()));
        ASSERT_TRUE(QFile::rename(incoming, dataFile()));
    }
    QStringList changedCopies() const
    {
        return folder.fileNames().filter(QStringLiteral("twdata-changed-"));
    }
};

TEST_F(ChangedOutsideTest, AnUnchangedCatalogueLeavesTheirFileAsItIs)
{
    replaceFromOutside(TheirsOnDisk);
    const CatalogueWriteResult saved = products.WriteProds(dataFile());
    EXPECT_TRUE(saved.ok);
    EXPECT_TRUE(saved.leftChangedFile);
    EXPECT_EQ(dataFileBytes(), TheirsOnDisk) << "their product stays on disk";
    EXPECT_TRUE(changedCopies().isEmpty());
}

TEST_F(ChangedOutsideTest, AChangedCatalogueKeepsTheirFileAsACopyBeforeItIsSaved)
{
    catalogue.put(1, 2, Cell("Anchor, galvanised"));
    replaceFromOutside(TheirsOnDisk);
    const CatalogueWriteResult saved = products.WriteProds(dataFile());
    ASSERT_TRUE(saved.ok) << saved.detail.toStdString();
    EXPECT_FALSE(saved.leftChangedFile);
    ASSERT_EQ(changedCopies().size(), 1);
    EXPECT_EQ(
        saved.keptChangedCopy, QDir::toNativeSeparators(folder.filePath(changedCopies().first())));
    EXPECT_EQ(folder.readFile(changedCopies().first()), TheirsOnDisk);
    EXPECT_TRUE(dataFileBytes().contains("Anchor, galvanised"));

    // The file is now the one this save wrote: the next save makes no copy.
    catalogue.put(1, 2, Cell("Anchor"));
    const CatalogueWriteResult again = products.WriteProds(dataFile());
    ASSERT_TRUE(again.ok);
    EXPECT_TRUE(again.keptChangedCopy.isEmpty());
    EXPECT_EQ(changedCopies().size(), 1);
}

TEST_F(ChangedOutsideTest, AFileWrittenInPlaceToAnotherSizeCountsAsChanged)
{
    QFile file(dataFile());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(TheirsOnDisk);
    file.close();
    EXPECT_TRUE(products.WriteProds(dataFile()).leftChangedFile);
    EXPECT_EQ(dataFileBytes(), TheirsOnDisk);
}

TEST_F(ChangedOutsideTest, AFileNobodyElseTouchedIsSavedAsEver)
{
    const CatalogueWriteResult unchanged = products.WriteProds(dataFile());
    EXPECT_TRUE(unchanged.ok);
    EXPECT_FALSE(unchanged.leftChangedFile);
    catalogue.put(1, 3, Cell(13.5f));
    const CatalogueWriteResult saved = products.WriteProds(dataFile());
    EXPECT_TRUE(saved.ok);
    EXPECT_TRUE(saved.keptChangedCopy.isEmpty());
    EXPECT_TRUE(changedCopies().isEmpty());
}

} // namespace
} // namespace tarnwick::test
