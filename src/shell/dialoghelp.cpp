#include "shell/dialoghelp.h"

#include "platform/appservices.h"
#include "platform/chelp.h"
#include "platform/helpcontexts.h"

#include <QCoreApplication>
#include <QHash>
#include <QKeyEvent>
#include <QWidget>

namespace tarnwick {

DialogHelp::DialogHelp(const AppServices &services, QObject *parent)
    : QObject(parent), m_services(services)
{
    QCoreApplication::instance()->installEventFilter(this);
}

std::optional<qint32> DialogHelp::contextFor(const QString &windowName)
{
    static const QHash<QString, qint32> contexts {
        { QStringLiteral("FrmChangePrices"), HelpContext::ChangePricesWindow },
        { QStringLiteral("FrmCheckPrices"), HelpContext::CheckPricesWindow },
        { QStringLiteral("FrmQuantities"), HelpContext::QuantitiesWindow },
        { QStringLiteral("FrmDiscount"), HelpContext::DiscountWindow },
        { QStringLiteral("FrmDiscountprod"), HelpContext::DiscountWindow },
        { QStringLiteral("FrmSaveQuote"), HelpContext::SaveQuoteWindow },
        { QStringLiteral("FrmQuotes"), HelpContext::QuotesWindow },
        { QStringLiteral("FrmQuoteNote"), HelpContext::QuoteNoteWindow },
        { QStringLiteral("frmProperties"), HelpContext::PropertiesWindow },
        { QStringLiteral("frmAbout"), HelpContext::AboutWindow },
        { QStringLiteral("PrintPreview"), HelpContext::PrintPreviewWindow },
        { QStringLiteral("frmHelp"), HelpContext::HelpWindow },
    };
    const auto found = contexts.constFind(windowName);
    if (found == contexts.cend())
        return std::nullopt;
    return *found;
}

bool DialogHelp::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType())
        return false;
    const auto *key = static_cast<const QKeyEvent *>(event);
    if (key->key() != Qt::Key_F1 || key->modifiers() != Qt::NoModifier)
        return false;
    const std::optional<qint32> context =
        contextFor(static_cast<QWidget *>(watched)->window()->objectName());
    if (!context)
        return false;
    // A held key repeats: the page is opened once.
    if (!key->isAutoRepeat()) {
        CHelp(m_services.help)
            .Show(CHelp::helpFilePath(m_services.environment), QString(), *context);
    }
    return true;
}

} // namespace tarnwick
