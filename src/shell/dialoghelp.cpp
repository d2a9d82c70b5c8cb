#include "shell/dialoghelp.h"

#include "platform/appservices.h"
#include "platform/chelp.h"
#include "platform/helpcontexts.h"

#include <QCoreApplication>
#include <QHash>
#include <QKeyEvent>
#include <QMessageBox>
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

std::optional<qint32> DialogHelp::contextForMessage(const QString &text)
{
    // The messages' own words, as cataloguelifecycle.cpp and frmsplash1.cpp write them.
    static const std::pair<QLatin1String, qint32> pages[] = {
        { QLatin1String("could not be read completely"), HelpContext::CatalogueUnreadMessage },
        { QLatin1String("Some prices or price points in the catalogue are not numbers"),
            HelpContext::CatalogueUnreadMessage },
        { QLatin1String("The catalogue could not be saved"), HelpContext::CatalogueSaveMessage },
        { QLatin1String("Tarnwick was not closed properly"), HelpContext::RecoveryMessage },
        { QLatin1String("There was a problem opening the program"), HelpContext::StartupRemedies },
    };
    for (const auto &[words, context] : pages) {
        if (text.contains(words))
            return context;
    }
    return std::nullopt;
}

bool DialogHelp::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType())
        return false;
    const auto *key = static_cast<const QKeyEvent *>(event);
    if (key->key() != Qt::Key_F1 || key->modifiers() != Qt::NoModifier)
        return false;
    const QWidget *window = static_cast<QWidget *>(watched)->window();
    const auto *box = qobject_cast<const QMessageBox *>(window);
    const std::optional<qint32> context =
        box ? contextForMessage(box->text()) : contextFor(window->objectName());
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
