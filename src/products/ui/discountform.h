#pragma once

#include <QDialog>
#include <QLocale>

#include <functional>

class QComboBox;
class QLabel;
class QPushButton;

namespace tarnwick {

class Table;

/// The body shared by the two discount windows: caption "Discount", the label "Apply
/// Discount", the list CmboDisc with the discount choices (the first one selected), the apply
/// button Command1 and the close button Command2. Applying changes the quote table, emits
/// discountApplied() (the owner then recomputes the totals and refreshes the quote grid) and
/// closes the window; Command2 only closes it.
class DiscountForm : public QDialog
{
    Q_OBJECT

public:
    ~DiscountForm() override;

    /// Applies a discount (the multiplier of the choice, and the choice's text) in place of the
    /// window's own change of the quote table: the owner makes it a step of its history.
    using Apply = std::function<void(float multiplier, const QString &choice)>;
    void setApply(Apply apply) { m_apply = std::move(apply); }

Q_SIGNALS:
    void discountApplied();

protected:
    DiscountForm(Table &quote, const QLocale &locale, const QString &objectName, QWidget *parent);

    /// Applies the chosen multiplier to the quote lines the window is for.
    virtual void applyDiscount(float multiplier) = 0;

    /// Says under the label which lines the discount is for: the two windows look alike
    /// otherwise, to the eye and to a screen reader.
    void setScope(const QString &text);

    Table &quote() const { return m_quote; }
    const QLocale &locale() const { return m_locale; }

private Q_SLOTS:
    void Command1_Click();
    void Command2_Click();

private:
    void Form_Load();
    void connectHandlers();

    Table &m_quote;
    QLocale m_locale;
    Apply m_apply;
    QLabel *m_label1 = nullptr;
    QLabel *m_scope = nullptr;
    QComboBox *m_cmboDisc = nullptr;
    QPushButton *m_command1 = nullptr;
    QPushButton *m_command2 = nullptr;
};

} // namespace tarnwick
