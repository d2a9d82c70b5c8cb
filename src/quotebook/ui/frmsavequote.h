#pragma once

#include "quotebook/quoterecord.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace tarnwick {

/// The "Save Quote" window: who the quote is for (TxtCustomer, TxtCompany, TxtEmail) and the
/// customer's reference (TxtReference). CmdOK accepts details that can be saved and otherwise
/// says what is missing beside the buttons; CmdCancel closes it without saving.
class FrmSaveQuote : public QDialog
{
    Q_OBJECT

public:
    explicit FrmSaveQuote(QWidget *parent = nullptr);

    /// The line above the boxes, telling what saving does ("The quote gets the next number.").
    void setIntro(const QString &text);
    void setDetails(const CustomerDetails &details);
    /// The details as typed, without blanks at either end.
    CustomerDetails details() const;
    /// What CmdOK last found missing; empty when nothing was.
    QString problemText() const;

private Q_SLOTS:
    void CmdOK_Click();
    void CmdCancel_Click();

private:
    void connectHandlers();

    QLabel *m_intro;
    QLineEdit *m_txtCustomer;
    QLineEdit *m_txtCompany;
    QLineEdit *m_txtEmail;
    QLineEdit *m_txtReference;
    QLabel *m_problem;
    QString m_problemText; ///< the problem as said; the label shows it with places to wrap
    QPushButton *m_cmdOK;
    QPushButton *m_cmdCancel;
};

} // namespace tarnwick
