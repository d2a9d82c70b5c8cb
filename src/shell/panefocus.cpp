#include "shell/panefocus.h"

#include "quotes/quotelist.h"
#include "shell/gridview.h"
#include "shell/mainwindowui.h"

#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QShortcut>
#include <QShortcutEvent>
#include <QTabBar>
#include <QTabWidget>

#include <utility>
#include <vector>

namespace tarnwick {

namespace {
constexpr int ProductTab = 0;
constexpr int QuoteTab = 1;
} // namespace

PaneFocus::PaneFocus(MainWindowUi &ui, QWidget *window) : QObject(window), m_ui(ui)
{
    auto *forward = new QShortcut(QKeySequence(Qt::Key_F6), window);
    forward->setObjectName(QStringLiteral("keyNextPane"));
    auto *backward = new QShortcut(QKeySequence(Qt::SHIFT | Qt::Key_F6), window);
    backward->setObjectName(QStringLiteral("keyPreviousPane"));
    connect(forward, &QShortcut::activated, this, [this] { move(true); });
    connect(backward, &QShortcut::activated, this, [this] { move(false); });
    m_ui.SSTabmain->tabBar()->installEventFilter(this);
    addProductTabLetters(window);
    // A tab brought forward by its letter (Alt+Q, Alt+O) or a click takes the keyboard with
    // it: typing meant for the quote must not go into the product grid's current cell.
    connect(m_ui.SSTabmain, &QTabWidget::currentChanged, this, [this, window](int index) {
        for (QShortcut *key : m_productTabLetters)
            key->setEnabled(index == QuoteTab);
        QWidget *focus = QApplication::focusWidget();
        const QWidget *page = m_ui.SSTabmain->widget(index);
        if (!focus || !window->isAncestorOf(focus) || !page || page->isAncestorOf(focus))
            return;
        focusPane(index == QuoteTab ? Pane::Quote : Pane::Details);
    });
}

void PaneFocus::addProductTabLetters(QWidget *window)
{
    // The product tab's letters (List pri&ce, &Includes, &Notes) belong to controls Qt does
    // not answer for while the quote is in front; typing meant for the box then went into the
    // product grid's cell. With the quote in front, the same letters bring the product tab
    // forward with the keyboard in the box (only then: two keys of one letter would cancel
    // each other out).
    std::vector<std::pair<QString, QWidget *>> letters;
    for (const QLabel *label : m_ui.FraPrice->findChildren<QLabel *>()) {
        if (label->buddy())
            letters.emplace_back(label->text(), label->buddy());
    }
    letters.emplace_back(m_ui.FraMain->title(), m_ui.Txtincludes);
    letters.emplace_back(m_ui.FraNotes->title(), m_ui.Txtnotes);
    for (const auto &[text, box] : letters) {
        const QKeySequence letter = QKeySequence::mnemonic(text);
        if (letter.isEmpty())
            continue;
        auto *key = new QShortcut(letter, window);
        key->setEnabled(m_ui.SSTabmain->currentIndex() == QuoteTab);
        connect(key, &QShortcut::activated, this, [this, target = box] {
            leaveTabPageFor(Pane::Details);
            m_ui.SSTabmain->setCurrentIndex(ProductTab);
            target->setFocus(Qt::ShortcutFocusReason);
            // As a label's letter does: what is typed next replaces the list price.
            if (auto *line = qobject_cast<QLineEdit *>(target))
                line->selectAll();
        });
        m_productTabLetters.push_back(key);
    }
}

bool PaneFocus::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Shortcut || watched != m_ui.SSTabmain->tabBar())
        return QObject::eventFilter(watched, event);
    const QKeySequence key = static_cast<QShortcutEvent *>(event)->key();
    for (int tab = 0; tab < m_ui.SSTabmain->count(); ++tab) {
        if (QKeySequence::mnemonic(m_ui.SSTabmain->tabText(tab)) == key) {
            focusPane(tab == QuoteTab ? Pane::Quote : Pane::Details);
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

PaneFocus::Pane PaneFocus::next(Pane from, bool forward)
{
    constexpr int Count = 3;
    return Pane((int(from) + (forward ? 1 : Count - 1)) % Count);
}

PaneFocus::Pane PaneFocus::paneOf(const QWidget *widget) const
{
    const auto within = [widget](const QWidget *pane) {
        return widget && pane && (widget == pane || pane->isAncestorOf(widget));
    };
    if (!within(m_ui.SSTabmain))
        return Pane::Products;
    return m_ui.SSTabmain->currentIndex() == QuoteTab ? Pane::Quote : Pane::Details;
}

void PaneFocus::leaveTabPageFor(Pane pane)
{
    // A tab page that goes while it has the keyboard hands it to the next control first (the
    // product grid), which a screen reader announces before the pane asked for: the keyboard
    // leaves the page before the page goes.
    QWidget *had = QApplication::focusWidget();
    if (had && m_ui.SSTabmain->isAncestorOf(had) && paneOf(had) != pane)
        had->clearFocus();
}

void PaneFocus::move(bool forward)
{
    focusPane(next(paneOf(QApplication::focusWidget()), forward));
}

void PaneFocus::focusPane(Pane pane)
{
    if (pane != Pane::Products)
        leaveTabPageFor(pane);
    switch (pane) {
    case Pane::Products:
        m_ui.GrdMain->setFocus(Qt::ShortcutFocusReason);
        break;
    case Pane::Details:
        m_ui.SSTabmain->setCurrentIndex(ProductTab);
        m_ui.TxtPrice->setFocus(Qt::ShortcutFocusReason);
        break;
    case Pane::Quote: {
        m_ui.SSTabmain->setCurrentIndex(QuoteTab);
        // The keyboard comes to the quantity, what is typed into a quote most: typing meant
        // for it must not rename a line's part number or product.
        GridView *quote = m_ui.GrdQuote;
        const QModelIndex current = quote->currentIndex();
        if (quote->model() && quote->model()->rowCount() > 0
            && (!current.isValid() || current.column() < QuoteGridColumn::Price)) {
            quote->setCurrentIndex(quote->model()->index(
                current.isValid() ? current.row() : 0, QuoteGridColumn::Quantity));
        }
        quote->setFocus(Qt::ShortcutFocusReason);
        break;
    }
    }
}

} // namespace tarnwick
