#pragma once

#include <QLineEdit>

namespace tarnwick {

/// A box that shows an amount (the list price, the quote's totals). Where the box is narrower
/// than its text (the splitter dragged far over), a line edit shows the part of the text by its
/// cursor: "50.00" of "$104,850.00", another amount. This box shows such an amount cut with
/// "…" at its end ("$104,…"), as the grids show a cell only partly in view, and its tool tip
/// shows it whole. While it has the keyboard and can be typed into (the list price in edit
/// mode), it shows what a line edit shows. Its text, what assistive tools read and what copies
/// take, stays whole.
class AmountBox : public QLineEdit
{
    Q_OBJECT

public:
    using QLineEdit::QLineEdit;

    /// The text as the box shows it now: whole, or cut with "…" where it does not fit.
    QString shownText() const;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QRect textArea() const;
    bool isCut() const;
};

} // namespace tarnwick
