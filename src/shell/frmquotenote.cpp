#include "shell/frmquotenote.h"

#include "platform/iprompts.h"
#include "platform/isettingsstore.h"
#include "platform/qt/windowsize.h"
#include "quotes/quotenote.h"
#include "shell/accessiblenames.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QSignalBlocker>
#include <QTextDocument>
#include <QTextEdit>
#include <QVBoxLayout>

namespace tarnwick {

namespace {

QTextEdit *textBox(const char *name, QWidget *parent)
{
    auto *box = new QTextEdit(parent);
    box->setObjectName(QString::fromLatin1(name));
    box->setAcceptRichText(false);
    box->setTabChangesFocus(true);
    return box;
}

} // namespace

FrmQuoteNote::FrmQuoteNote(
    ISettingsStore &settings, IPrompts &prompts, const QString &appFolder, QWidget *parent)
    : QDialog(parent), m_settings(settings), m_prompts(prompts), m_appFolder(appFolder)
{
    setObjectName(QStringLiteral("FrmQuoteNote"));
    setWindowTitle(tr("Quote Note"));
    setAttribute(Qt::WA_DeleteOnClose);
    m_txttop = textBox("txttop", this);
    m_txtbottom = textBox("txtbottom", this);
    m_chkincludes = new QCheckBox(tr("Do not show Includes information"), this);
    m_chkincludes->setObjectName(QStringLiteral("Chkincludes"));
    m_chkVolumePrices = new QCheckBox(tr("Show volume prices"), this);
    m_chkVolumePrices->setObjectName(QStringLiteral("ChkVolumePrices"));
    m_cmdOK = new QPushButton(tr("OK"), this);
    m_cmdOK->setObjectName(QStringLiteral("cmdOK"));
    m_cmdOK->setDefault(true);
    m_cmdNextTip = new QPushButton(tr("&Cancel"), this);
    m_cmdNextTip->setObjectName(QStringLiteral("cmdNextTip"));

    auto *top = new QLabel(tr("Quote Heading"), this);
    top->setBuddy(m_txttop);
    auto *bottom = new QLabel(tr("End of Quote"), this);
    bottom->setBuddy(m_txtbottom);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_chkincludes);
    buttons->addWidget(m_chkVolumePrices);
    buttons->addStretch();
    buttons->addWidget(m_cmdOK);
    buttons->addWidget(m_cmdNextTip);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(top);
    layout->addWidget(m_txttop);
    layout->addWidget(bottom);
    layout->addWidget(m_txtbottom);
    layout->addLayout(buttons);
    resize(WindowSize::forFont(*this, QSize(520, 420)));

    Form_Load();
    connectHandlers();
    exposeObjectNames(this);
}

void FrmQuoteNote::connectHandlers()
{
    // A box ticked from the keyboard, the mouse or an assistive tool's toggle is saved alike.
    connect(m_chkincludes, &QCheckBox::toggled, this, &FrmQuoteNote::Chkincludes_Click);
    connect(m_chkVolumePrices, &QCheckBox::toggled, this, &FrmQuoteNote::ChkVolumePrices_Click);
    connect(m_cmdOK, &QPushButton::clicked, this, &FrmQuoteNote::cmdOK_Click);
    connect(m_cmdNextTip, &QPushButton::clicked, this, &FrmQuoteNote::cmdNextTip_Click);
    // Escape cancels as Cancel does (a dialog's own Escape would only hide the window).
    auto *cancel = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(cancel, &QShortcut::activated, this, &FrmQuoteNote::cmdNextTip_Click);
}

void FrmQuoteNote::Form_Load()
{
    m_chkincludes->setChecked(QuoteNote::noIncludes(m_settings) == 1);
    m_chkVolumePrices->setChecked(QuoteNote::volumePrices(m_settings) == 1);
    showTexts();
}

void FrmQuoteNote::showTexts()
{
    m_txtbottom->setPlainText(QuoteNote::readEnding(m_appFolder));
    m_txttop->setPlainText(QuoteNote::readHeading(m_appFolder));
    // What the user types from here on is theirs, and a reload must not take it away.
    m_txtbottom->document()->setModified(false);
    m_txttop->document()->setModified(false);
}

bool FrmQuoteNote::hasTyping() const
{
    return m_txttop->document()->isModified() || m_txtbottom->document()->isModified();
}

QuoteTexts FrmQuoteNote::typedTexts() const
{
    return { m_txttop->toPlainText(), m_txtbottom->toPlainText() };
}

bool FrmQuoteNote::saveTexts(Report report)
{
    const FileWriteResult saved =
        QuoteNote::saveNotes(m_appFolder, m_txttop->toPlainText(), m_txtbottom->toPlainText());
    if (!saved) {
        // The window stays open, so the user's text is not lost.
        if (report == Report::Failure)
            m_prompts.msgBox(saveFailedText(saved.reason), MsgStyle::Exclamation, SaveFailedTitle);
        return false;
    }
    m_txttop->document()->setModified(false);
    m_txtbottom->document()->setModified(false);
    return true;
}

QString FrmQuoteNote::saveFailedText(const QString &reason)
{
    return QStringLiteral("The quote note could not be saved: %1. The heading and ending files "
                          "were left as they were.")
        .arg(reason);
}

QString FrmQuoteNote::settingFailedText(const QString &reason)
{
    return QStringLiteral("The setting could not be saved: %1.").arg(reason);
}

void FrmQuoteNote::Chkincludes_Click()
{
    const bool checked = m_chkincludes->isChecked();
    if (!QuoteNote::saveNoIncludes(m_settings, checked ? 1 : 0)) {
        const QSignalBlocker keep(m_chkincludes);
        m_chkincludes->setChecked(!checked);
        m_prompts.msgBox(
            settingFailedText(m_settings.writeError()), MsgStyle::Exclamation, SaveFailedTitle);
    }
}

void FrmQuoteNote::ChkVolumePrices_Click()
{
    const bool checked = m_chkVolumePrices->isChecked();
    if (!QuoteNote::saveVolumePrices(m_settings, checked ? 1 : 0)) {
        const QSignalBlocker keep(m_chkVolumePrices);
        m_chkVolumePrices->setChecked(!checked);
        m_prompts.msgBox(
            settingFailedText(m_settings.writeError()), MsgStyle::Exclamation, SaveFailedTitle);
    }
}

void FrmQuoteNote::cmdOK_Click()
{
    if (saveTexts())
        close();
}

void FrmQuoteNote::cmdNextTip_Click()
{
    close();
}

} // namespace tarnwick
