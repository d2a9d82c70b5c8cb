#pragma once

#include "products/pricechange.h"

#include <QDialog>
#include <QLocale>

#include <functional>
#include <optional>

class QComboBox;
class QDialogButtonBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QTimer;
class QRadioButton;

namespace tarnwick {

/// "Change Prices": raise or lower list and break prices by a percentage or an amount, with a
/// rounding, for the selected products or all products shown. The preview shows every price
/// old → new before anything changes; OK is enabled only for a change that can be applied.
class FrmChangePrices : public QDialog
{
    Q_OBJECT

public:
    static constexpr QLatin1String Caption { "Change Prices" };
    /// The preview lists at most this many prices, then how many more there are.
    static constexpr int PreviewLimit = 200;

    /// Plans the change of the chosen products (selected or all shown) by a rule, keeping at
    /// most keepEntries of its changes (all of them for the plan OK applies).
    using Planner = std::function<PriceChangePlan(
        const PriceChangeRule &rule, bool selectedOnly, std::size_t keepEntries)>;

    FrmChangePrices(Planner planner, int selectedCount, int shownCount, const QLocale &locale,
        QWidget *parent = nullptr);

    /// The rule as entered; none while the change is no number.
    std::optional<PriceChangeRule> rule() const;
    bool selectedOnly() const;
    /// The plan the preview shows; after OK, the whole plan to apply.
    const PriceChangePlan &plan() const { return m_plan; }
    /// A preview that took longer than this (a catalogue of hundreds of thousands of prices)
    /// is worked out again only once typing pauses; 0 makes every preview wait so.
    void setSlowPreviewMilliseconds(int milliseconds) { m_slowPreview = milliseconds; }

private Q_SLOTS:
    void updatePreview();
    /// The change typed: the preview follows at once, or after the pause when it is slow.
    void changeTyped();
    /// OK: the whole change is worked out (the preview holds only its first lines), then the
    /// window is accepted.
    void planAllAndAccept();

private:
    /// The change, its rounding and the products it applies to.
    QFormLayout *createChoices(int selectedCount, int shownCount);

    Planner m_planner;
    QLocale m_locale;
    PriceChangePlan m_plan;
    QRadioButton *m_percent = nullptr;
    QRadioButton *m_amount = nullptr;
    QLineEdit *m_change = nullptr;
    QComboBox *m_rounding = nullptr;
    QRadioButton *m_selected = nullptr;
    QRadioButton *m_all = nullptr;
    QPlainTextEdit *m_preview = nullptr;
    QLabel *m_summary = nullptr;
    QDialogButtonBox *m_buttons = nullptr;
    QTimer *m_typingPause = nullptr;
    int m_slowPreview = 100;
    bool m_previewIsSlow = false;
};

} // namespace tarnwick
