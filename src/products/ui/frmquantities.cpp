#include "products/ui/frmquantities.h"

#include "core/cell.h"
#include "core/formats.h"
#include "platform/qt/windowsize.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <utility>

namespace tarnwick {

FrmQuantities::FrmQuantities(const QString &lineName, const std::vector<qint32> &quantities,
    Pricer pricer, const QLocale &locale, QWidget *parent)
    : QDialog(parent), m_pricer(std::move(pricer)), m_locale(locale)
{
    setObjectName(QStringLiteral("FrmQuantities"));
    setWindowTitle(Caption);
    auto *heading = new QLabel(tr("Quantities for %1:").arg(lineName), this);
    heading->setObjectName(QStringLiteral("LblQuantities"));
    heading->setTextFormat(Qt::PlainText); // the line's part number and name
    heading->setWordWrap(true); // a long name must not widen the window past the screen
    auto *boxes = new QGridLayout;
    for (int i = 0; i < QuoteAids::MaxQuantities; ++i) {
        auto *box = new QLineEdit(this);
        box->setObjectName(QStringLiteral("TxtQuantity%1").arg(i + 1));
        box->setAccessibleName(tr("Quantity %1").arg(i + 1));
        if (i < int(quantities.size()))
            box->setText(QString::number(quantities.at(std::size_t(i))));
        auto *label = new QLabel(tr("Quantity &%1:").arg(i + 1), this);
        label->setBuddy(box);
        boxes->addWidget(label, i, 0);
        boxes->addWidget(box, i, 1);
        m_boxes.at(std::size_t(i)) = box;
        connect(box, &QLineEdit::textChanged, this, &FrmQuantities::updatePrices);
    }
    m_prices = new QTableWidget(0, 3, this);
    m_prices->setObjectName(QStringLiteral("GrdQuantityPrices"));
    m_prices->setAccessibleName(tr("Prices at the quantities"));
    m_prices->setHorizontalHeaderLabels({ tr("Quantity"), tr("Unit Price"), tr("Ext. Price") });
    m_prices->setEditTriggers(QAbstractItemView::NoEditTriggers);
    // A table to read: Tab goes on to the next control.
    m_prices->setTabKeyNavigation(false);
    m_prices->verticalHeader()->setVisible(false);
    // The prices share the width the quantities leave, so no amount is cut while the window
    // has room for it.
    m_prices->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_prices->horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    // Room for a row per quantity without scrolling.
    m_prices->setMinimumHeight(m_prices->horizontalHeader()->sizeHint().height()
        + QuoteAids::MaxQuantities * m_prices->verticalHeader()->defaultSectionSize()
        + 2 * m_prices->frameWidth());
    m_message = new QLabel(this);
    m_message->setObjectName(QStringLiteral("LblMessage"));
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    for (const auto &[button, name] : { std::pair { QDialogButtonBox::Ok, "CmdOK" },
             std::pair { QDialogButtonBox::Cancel, "CmdCancel" } }) {
        m_buttons->button(button)->setObjectName(QString::fromLatin1(name));
        m_buttons->button(button)->setAccessibleDescription(QString::fromLatin1(name));
    }
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addLayout(boxes);
    layout->addWidget(m_prices, 1);
    layout->addWidget(m_message);
    layout->addWidget(m_buttons);
    resize(WindowSize::forFont(*this, QSize(420, 380)));
    updatePrices();
}

void FrmQuantities::updatePrices()
{
    QStringList entries;
    for (const QLineEdit *box : m_boxes)
        entries << box->text();
    m_entry = QuoteAids::readQuantities(entries, m_locale);
    const auto prices =
        m_entry.error.isEmpty() ? m_pricer(m_entry.quantities) : std::vector<QuantityPrice> {};
    m_prices->setRowCount(int(prices.size()));
    const QString currency = QStringLiteral("Currency");
    for (int i = 0; i < int(prices.size()); ++i) {
        const QuantityPrice &price = prices.at(std::size_t(i));
        // A quantity the catalogue gives no price for shows no amount at all.
        const QString none = tr("no price");
        const QString texts[] = { format(Cell(price.quantity), QStringLiteral("#,###"), m_locale),
            price.priced ? format(Cell(price.unitPrice), currency, m_locale) : none,
            price.priced ? format(Cell(price.extended), currency, m_locale) : none };
        for (int column = 0; column < 3; ++column) {
            auto *item = new QTableWidgetItem(texts[column]);
            item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            m_prices->setItem(i, column, item);
        }
    }
    // A quantity the catalogue has no price for cannot be kept: the customer's document would
    // offer it at nothing.
    const QString problem =
        m_entry.error.isEmpty() ? QuoteAids::unpricedQuantity(prices, m_locale) : m_entry.error;
    m_message->setText(problem);
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(problem.isEmpty());
}

} // namespace tarnwick
