#include "shell/amountbox.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QToolTip>

namespace tarnwick {

namespace {

/// The blank a line edit leaves on each side of its text, inside its contents rectangle.
constexpr int TextMargin = 2;

} // namespace

QRect AmountBox::textArea() const
{
    QStyleOptionFrame panel;
    initStyleOption(&panel);
    const QRect contents = style()->subElementRect(QStyle::SE_LineEditContents, &panel, this);
    const QMargins margins = textMargins();
    return contents.adjusted(TextMargin + margins.left(), margins.top(),
        -(TextMargin + margins.right()), -margins.bottom());
}

bool AmountBox::isCut() const
{
    // A line edit draws a text a little wider than its text area into the blank beside it,
    // whole: only one wider than both is cut.
    return (!hasFocus() || isReadOnly()) && echoMode() == Normal
        && fontMetrics().horizontalAdvance(text()) > textArea().width() + 2 * TextMargin;
}

QString AmountBox::shownText() const
{
    if (!isCut())
        return text();
    return fontMetrics().elidedText(text(), Qt::ElideRight, qMax(0, textArea().width()));
}

bool AmountBox::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && isCut() && toolTip().isEmpty()) {
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), text(), this);
        return true;
    }
    return QLineEdit::event(event);
}

void AmountBox::paintEvent(QPaintEvent *event)
{
    if (!isCut()) {
        QLineEdit::paintEvent(event);
        return;
    }
    QPainter painter(this);
    QStyleOptionFrame panel;
    initStyleOption(&panel);
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &panel, &painter, this);
    painter.setPen(panel.palette.color(QPalette::Text));
    const Qt::Alignment horizontal =
        QStyle::visualAlignment(layoutDirection(), alignment()) & Qt::AlignHorizontal_Mask;
    painter.drawText(textArea(), int(horizontal | Qt::AlignVCenter), shownText());
}

} // namespace tarnwick
