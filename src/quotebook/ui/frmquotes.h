#pragma once

#include <QDialog>
#include <QLocale>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace tarnwick {

class IPrompts;
class QuoteBook;
class QuoteListModel;

/// The "Quotes" window: the saved quotes, newest first (GrdQuotes), a search box (TxtFind) that
/// narrows them to the quotes whose number, customer, company or a part number holds every
/// word typed, the status of the chosen quote (CmbStatus), and CmdOpen, which closes the window
/// with the chosen quote (a double-click or Enter does the same); CmdCancel closes it without.
class FrmQuotes : public QDialog
{
    Q_OBJECT

public:
    FrmQuotes(QuoteBook &book, IPrompts &prompts, const QLocale &locale, QWidget *parent = nullptr);

    /// The quote chosen with CmdOpen; 0 when none was.
    qint64 chosenQuote() const { return m_chosen; }
    QuoteListModel *model() const { return m_model; }
    /// Lists the quotes that match the search box (called as it changes).
    void refresh();

private Q_SLOTS:
    void TxtFind_Change();
    void CmdOpen_Click();
    void CmdCancel_Click();
    void CmbStatus_Click(int index);

private:
    void layOut(QLabel *findLabel, QLabel *statusLabel);
    /// Columns as wide as their contents, the window as wide as the columns.
    void fitColumns();
    void connectHandlers();
    void showCurrentStatus();
    int currentRow() const;

    bool eventFilter(QObject *watched, QEvent *event) override;

    QuoteBook &m_book;
    IPrompts &m_prompts;
    QLocale m_locale;
    QuoteListModel *m_model;
    QLineEdit *m_txtFind;
    QTableView *m_grdQuotes;
    QLabel *m_count;
    QComboBox *m_cmbStatus;
    QPushButton *m_cmdOpen;
    QPushButton *m_cmdCancel;
    qint64 m_chosen = 0;
};

} // namespace tarnwick
