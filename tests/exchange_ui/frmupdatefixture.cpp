#include "frmupdatefixture.h"

#include "catalogue/productchanges.h"
#include "catalogue/productrecord.h"
#include "commands/catalogueedits.h"

#include <QDir>
#include <QPushButton>
#include <QTest>

namespace tarnwick::test {

WorkbookReaderOptions testReader()
{
    WorkbookReaderOptions options;
    options.program = QStringLiteral(TARNWICK_TEST_READER);
    options.arguments = QStringList { QStringLiteral("--read-workbook") };
    return options;
}

QString workbook(const QString &name)
{
    return QDir(QStringLiteral(TARNWICK_WORKBOOKS)).filePath(name);
}

FrmUpdateTest::FrmUpdateTest()
{
    catalogue.redim(1, ProductRecord::FieldCount);
    catalogue.put(1, ProductRecord::PartNumber, QStringLiteral("OLD-1"));
    catalogue.put(1, ProductRecord::ProductName, QStringLiteral("Old name"));
    products.setCount(1);
}

FrmUpdateTest::~FrmUpdateTest()
{
    delete window.data();
}

FrmUpdate &FrmUpdateTest::open(const QString &file)
{
    delete window.data();
    const auto apply = [this](ProductChanges changes) {
        CatalogueEdits::import(history, {}, std::move(changes));
    };
    window = new FrmUpdate(
        services, catalogue, apply, locale, WorkbookReaderProcess::read(file, testReader()));
    QObject::connect(window, &FrmUpdate::catalogueChanged, [this] { ++catalogueChanges; });
    QObject::connect(window, &FrmUpdate::unloaded, [this] { ++unloads; });
    window->show();
    window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    return *window;
}

QComboBox *FrmUpdateTest::list(int index) const
{
    return window->findChild<QComboBox *>(QStringLiteral("CmbField(%1)").arg(index));
}

void FrmUpdateTest::choose(int index, int position) const
{
    QComboBox *box = list(index);
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Home);
    for (int step = 0; step < position; ++step)
        QTest::keyClick(box, Qt::Key_Down);
    ASSERT_EQ(box->currentIndex(), position) << index;
}

void FrmUpdateTest::mapSample() const
{
    choose(0, 0);
    choose(1, 1);
    choose(3, 3); // "Skip Field" first: column C
    choose(7, 4);
    choose(6, 5);
    choose(2, 6);
    choose(4, 7);
}

void FrmUpdateTest::clickOk() const
{
    QTest::mouseClick(window->findChild<QPushButton *>(QStringLiteral("CmdOK")), Qt::LeftButton);
}

bool FrmUpdateTest::waitUntilClosed() const
{
    return QTest::qWaitFor([this] { return !window || !window->isVisible(); }, 20000);
}

} // namespace tarnwick::test
