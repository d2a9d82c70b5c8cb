#include "shell/loadnumberedcaptions.h"

#include <QAbstractButton>
#include <QAction>
#include <QGroupBox>
#include <QLabel>
#include <QTabWidget>
#include <QTreeWidget>
#include <QVariant>
#include <QWidget>

namespace tarnwick {

namespace {

template <typename Get, typename Set> void replace(const CaptionLookup &lookup, Get get, Set set)
{
    if (const auto text = numberedCaption(get(), lookup))
        set(*text);
}

void replaceControls(QWidget *form, const CaptionLookup &lookup)
{
    for (QLabel *label : form->findChildren<QLabel *>())
        replace(
            lookup, [&] { return label->text(); }, [&](const QString &t) { label->setText(t); });
    for (QAbstractButton *button : form->findChildren<QAbstractButton *>()) {
        replace(
            lookup, [&] { return button->text(); }, [&](const QString &t) { button->setText(t); });
    }
    for (QGroupBox *box : form->findChildren<QGroupBox *>())
        replace(
            lookup, [&] { return box->title(); }, [&](const QString &t) { box->setTitle(t); });
}

// Menus, menu items and toolbar buttons are actions: a numeric text is replaced first, then
// a numeric tool tip (a tool tip taken from the text follows the new text by itself).
void replaceActions(QWidget *form, const CaptionLookup &lookup)
{
    for (QAction *action : form->findChildren<QAction *>()) {
        replace(
            lookup, [&] { return action->text(); }, [&](const QString &t) { action->setText(t); });
        replace(
            lookup, [&] { return action->toolTip(); },
            [&](const QString &t) { action->setToolTip(t); });
    }
}

void replaceTabsAndHeaders(QWidget *form, const CaptionLookup &lookup)
{
    for (QTabWidget *tabs : form->findChildren<QTabWidget *>()) {
        for (int i = 0; i < tabs->count(); ++i) {
            replace(
                lookup, [&] { return tabs->tabText(i); },
                [&](const QString &t) { tabs->setTabText(i, t); });
            replace(
                lookup, [&] { return tabs->tabToolTip(i); },
                [&](const QString &t) { tabs->setTabToolTip(i, t); });
        }
    }
    for (QTreeWidget *list : form->findChildren<QTreeWidget *>()) {
        QTreeWidgetItem *header = list->headerItem();
        for (int column = 0; header && column < header->columnCount(); ++column) {
            replace(
                lookup, [&] { return header->text(column); },
                [&](const QString &t) { header->setText(column, t); });
        }
    }
}

} // namespace

void LoadNumberedCaptions(QWidget *form, const CaptionLookup &lookup)
{
    replace(
        lookup, [&] { return form->property("Tag").toString(); },
        [&](const QString &t) { form->setWindowTitle(t); });
    replaceControls(form, lookup);
    replaceActions(form, lookup);
    replaceTabsAndHeaders(form, lookup);
}

} // namespace tarnwick
