#include "shell/frmproperties.h"

#include "catalogue/catalogueproperties.h"
#include "catalogue/module1.h"
#include "platform/appenvironment.h"
#include "platform/appservices.h"
#include "platform/idesktopservices.h"
#include "platform/iprompts.h"
#include "shell/accessiblenames.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace tarnwick {

const QString FrmProperties::Title = QStringLiteral("Catalogue Properties");
const QString FrmProperties::FolderNotOpenedMessage =
    QStringLiteral("No file manager could show the application folder. It is:\n");

FrmProperties::FrmProperties(const AppServices &services, Module1 &module, QWidget *parent)
    : QDialog(parent), m_services(services), m_module(module)
{
    setObjectName(QStringLiteral("frmProperties"));
    setWindowTitle(Title);
    auto *layout = new QVBoxLayout(this);
    m_form = new QFormLayout;
    layout->addLayout(m_form);
    auto *folderRow = new QHBoxLayout;
    m_appFolder = addRow("TxtAppFolder", tr("Application &folder:"), folderRow);
    // Made after the folder's box: Tab goes from the folder to the button beside it.
    m_openFolder = new QPushButton(tr("&Open Folder"), this);
    m_openFolder->setObjectName(QStringLiteral("CmdOpenFolder"));
    m_openFolder->setToolTip(tr("Show the application folder in the file manager"));
    folderRow->addWidget(m_openFolder);
    m_dataFile = addRow("TxtDataFile", tr("&Catalogue file:"));
    m_fileSize = addRow("TxtFileSize", tr("&Size:"));
    m_productCount = addRow("TxtProductCount", tr("&Products:"));
    m_lastSaved = addRow("TxtLastSaved", tr("&Last saved:"));
    m_backup = addRow("TxtBackup", tr("&Backup (twdata.bak):"));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    m_close = buttons->button(QDialogButtonBox::Close);
    m_close->setObjectName(QStringLiteral("CmdClose"));
    // Enter closes the window, also while Open Folder has the keyboard; Space opens the folder.
    m_close->setDefault(true);
    m_openFolder->setAutoDefault(false);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_openFolder, &QPushButton::clicked, this, &FrmProperties::CmdOpenFolder_Click);
    setMinimumWidth(fontMetrics().averageCharWidth() * 72);
    Form_Load();
    exposeObjectNames(this);
}

QLineEdit *FrmProperties::addRow(const char *name, const QString &caption, QHBoxLayout *row)
{
    auto *box = new QLineEdit(this);
    box->setObjectName(QString::fromLatin1(name));
    box->setReadOnly(true);
    auto *label = new QLabel(caption, this);
    label->setBuddy(box);
    if (!row) {
        m_form->addRow(label, box);
        return box;
    }
    row->addWidget(box, 1);
    m_form->addRow(label, row);
    return box;
}

void FrmProperties::Form_Load()
{
    const CatalogueProperties properties = CatalogueProperties::read(
        m_services.environment.appFolder(), m_module.DataFile, m_module.AllProducts().Count());
    const QLocale &locale = m_module.locale();
    m_appFolder->setText(properties.appFolder);
    m_dataFile->setText(properties.dataFile);
    m_fileSize->setText(properties.sizeText(locale));
    m_productCount->setText(properties.productCountText(locale));
    m_lastSaved->setText(properties.lastSavedText(locale));
    m_backup->setText(properties.backupText(locale));
    fitBoxes();
}

void FrmProperties::fitBoxes()
{
    // Every figure readable at once, as far as the screen goes: the boxes are as wide as the
    // longest of them (a path, the backup's date and time).
    const QList<QLineEdit *> boxes = findChildren<QLineEdit *>();
    int widest = 0;
    for (QLineEdit *box : boxes) {
        box->setCursorPosition(0);
        widest = std::max(widest, box->fontMetrics().horizontalAdvance(box->text()));
    }
    constexpr int FrameAndMargins = 16;
    // The labels and the button keep their room: a long path (a company's synced folder) is
    // scrolled in its box rather than pushing the labels out of a window the screen holds.
    int labels = 0;
    for (const QLabel *label : findChildren<QLabel *>())
        labels = std::max(labels, label->sizeHint().width());
    const QMargins margins = layout()->contentsMargins();
    constexpr int LeastSpacing = 6;
    const int spacing = std::max(m_form->horizontalSpacing(), LeastSpacing);
    const int besideBoxes = labels + 2 * spacing + m_openFolder->sizeHint().width() + margins.left()
        + margins.right() + FrameAndMargins;
    const QScreen *on = screen();
    constexpr int LeastBox = 120;
    const int most = on ? std::max(on->availableGeometry().width() * 9 / 10 - besideBoxes, LeastBox)
                        : widest + FrameAndMargins;
    for (QLineEdit *box : boxes)
        box->setMinimumWidth(std::min(widest + FrameAndMargins, most));
    // Not adjustSize(), which holds a window to two thirds of the screen and squeezed the
    // labels to nothing.
    layout()->activate();
    resize(on ? sizeHint().boundedTo(on->availableGeometry().size()) : sizeHint());
}

void FrmProperties::CmdOpenFolder_Click()
{
    const QString folder = m_services.environment.appFolder();
    if (!m_services.desktop.openUrl(QUrl::fromLocalFile(folder)))
        m_services.prompts.msgBox(FolderNotOpenedMessage + QDir::toNativeSeparators(folder),
            MsgStyle::OkOnly | MsgStyle::Exclamation, Title);
}

} // namespace tarnwick
