#pragma once

#include "quotebook/quotesession.h"

#include <QDialog>

class QCheckBox;
class QPushButton;
class QTextEdit;

namespace tarnwick {

class IPrompts;
class ISettingsStore;

/// "Quote Note": edits the heading (txttop) and the ending (txtbottom) of the quote document
/// and the "Do not show Includes information" box (Chkincludes). OK (cmdOK) saves both texts
/// as plain text in the application folder and closes; "&Cancel" (cmdNextTip) closes without
/// saving them. The check box is saved the moment it is clicked. A dialog that does not wait
/// for its answer: it opens over the main window and stays above it while the quote is
/// worked on.
class FrmQuoteNote : public QDialog
{
    Q_OBJECT

public:
    static constexpr QLatin1String SaveFailedTitle { "Quote Note" };
    /// "The quote note could not be saved: <reason>. …": the texts stay in the window.
    static QString saveFailedText(const QString &reason);
    /// "The setting could not be saved: <reason>.": the check box goes back to what is stored.
    static QString settingFailedText(const QString &reason);

    FrmQuoteNote(ISettingsStore &settings, IPrompts &prompts, const QString &appFolder,
        QWidget *parent = nullptr);

    /// Shows the texts of the files again, after they were written from elsewhere, unless the
    /// user has typed into the window since it showed them: that typing stays.

    /// Whether the heading or the ending was typed into since the window showed them.
    bool hasTyping() const;
    /// Saves the texts as OK does, leaving the window open; false (and said why) when they
    /// could not be saved.
    enum class Report { Failure, Quietly };
    /// Saves the heading and ending typed; a failure is reported in a box unless Quietly.
    bool saveTexts(Report report = Report::Failure);
    /// Shows the texts of the files again, what was typed since thrown away.
    void dropTyping() { showTexts(); }
    /// The heading and ending as the window shows them, typing included.
    QuoteTexts typedTexts() const;

private Q_SLOTS:
    void Chkincludes_Click();
    /// "Show volume prices": saved at once as "VolumePrices", as Chkincludes is.
    void ChkVolumePrices_Click();
    void cmdOK_Click();
    void cmdNextTip_Click();

private:
    void Form_Load();
    void showTexts();
    void connectHandlers();

    ISettingsStore &m_settings;
    IPrompts &m_prompts;
    QString m_appFolder;
    QTextEdit *m_txttop = nullptr;
    QTextEdit *m_txtbottom = nullptr;
    QCheckBox *m_chkincludes = nullptr;
    QCheckBox *m_chkVolumePrices = nullptr;
    QPushButton *m_cmdOK = nullptr;
    QPushButton *m_cmdNextTip = nullptr;
};

} // namespace tarnwick
