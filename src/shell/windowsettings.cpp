#include "shell/windowsettings.h"

#include "core/conversions.h"
#include "core/storednumber.h"
#include "platform/isettingsstore.h"
#include "shell/settingskeys.h"

#include <QDir>

#include <algorithm>
#include <utility>

namespace tarnwick {

namespace {

QString readText(const ISettingsStore &store, QLatin1String key, const QString &defaultValue)
{
    return store.get(SettingsKeys::Application, SettingsKeys::Section, key, defaultValue);
}

} // namespace

MainWindowSettingsRead readMainWindowSettings(const ISettingsStore &store, const QLocale &locale)
{
    MainWindowSettingsRead result;
    MainWindowSettings &v = result.values;
    const auto single = [&](QLatin1String key, float fallback) {
        return conv::toSingle(
            stored::numberCell(readText(store, key, stored::numberText(fallback)), locale), locale);
    };
    const auto int16 = [&](QLatin1String key, qint16 fallback) {
        return conv::toInt16(
            stored::numberCell(readText(store, key, QString::number(fallback)), locale), locale);
    };
    // A placement that stops at a damaged value is no stored size: the window then opens as on
    // a first run, not at the defaults' 600 × 433 pixels.
    bool placementRead = false;
    try {
        v.left = single(SettingsKeys::MainLeft, v.left);
        v.top = single(SettingsKeys::MainTop, v.top);
        v.width = single(SettingsKeys::MainWidth, v.width);
        v.height = single(SettingsKeys::MainHeight, v.height);
        placementRead = true;
        v.screenSplit = int16(SettingsKeys::ScreenSplit, v.screenSplit);
        v.colwidth = int16(SettingsKeys::Colwidth, v.colwidth);
    } catch (const VbError &error) {
        result.error = error;
    }
    result.sizeStored = placementRead
        && (!readText(store, SettingsKeys::MainWidth, QString()).isEmpty()
            || !readText(store, SettingsKeys::MainHeight, QString()).isEmpty());
    return result;
}

QRect fitFrameOnScreen(const QRect &inner, const QMargins &frame, const QRect &available)
{
    const QSize extra(frame.left() + frame.right(), frame.top() + frame.bottom());
    const QSize size = inner.size().boundedTo(available.size() - extra).expandedTo(QSize(1, 1));
    const QSize outer = size + extra;
    const int left = std::clamp(inner.left() - frame.left(), available.left(),
        std::max(available.left(), available.left() + available.width() - outer.width()));
    const int top = std::clamp(inner.top() - frame.top(), available.top(),
        std::max(available.top(), available.top() + available.height() - outer.height()));
    return QRect(QPoint(left + frame.left(), top + frame.top()), size);
}

void followFittedPlacement(
    MainWindowSettings &stored, MainWindowSettings &applied, const MainWindowSettings &fitted)
{
    const auto follow = [](float &storedValue, float &appliedValue, float value) {
        if (storedValue == appliedValue)
            storedValue = value;
        appliedValue = value;
    };
    follow(stored.left, applied.left, fitted.left);
    follow(stored.top, applied.top, fitted.top);
    follow(stored.width, applied.width, fitted.width);
    follow(stored.height, applied.height, fitted.height);
}

QRect placeMainWindow(
    const QRect &stored, bool sizeStored, const QRect &available, const QSize &minimum)
{
    if (!sizeStored) {
        const QSize share(qRound(available.width() * FirstRunScreenShare),
            qRound(available.height() * FirstRunScreenShare));
        QRect frame(QPoint(0, 0), share.expandedTo(FirstRunLeastSize).boundedTo(available.size()));
        frame.moveCenter(available.center());
        return frame;
    }
    const QSize least = minimum.boundedTo(available.size());
    const QSize size = stored.size().expandedTo(least).boundedTo(available.size());
    const int left = std::clamp(
        stored.left(), available.left(), available.left() + available.width() - size.width());
    const int top = std::clamp(
        stored.top(), available.top(), available.top() + available.height() - size.height());
    return QRect(QPoint(left, top), size);
}

qint16 usableScreenSplit(qint16 stored, qint16 minimumTabShare)
{
    if (stored <= 0 || stored > 100)
        return 50;
    return std::min<qint16>(stored, qint16(100 - minimumTabShare));
}

MainWindowSettings settingsToSave(const MainWindowSettings &stored,
    const MainWindowSettings &applied, const MainWindowSettings &now)
{
    MainWindowSettings result = now;
    const auto keep = [](auto &out, auto storedValue, auto appliedValue, auto nowValue) {
        if (nowValue == appliedValue)
            out = storedValue;
    };
    keep(result.left, stored.left, applied.left, now.left);
    keep(result.top, stored.top, applied.top, now.top);
    keep(result.width, stored.width, applied.width, now.width);
    keep(result.height, stored.height, applied.height, now.height);
    keep(result.screenSplit, stored.screenSplit, applied.screenSplit, now.screenSplit);
    keep(result.colwidth, stored.colwidth, applied.colwidth, now.colwidth);
    return result;
}

QString saveMainWindowSettings(
    ISettingsStore &store, const MainWindowSettings &settings, const QLocale & /*locale*/)
{
    const QList<std::pair<QString, QString>> values {
        { SettingsKeys::MainLeft, stored::numberText(settings.left) },
        { SettingsKeys::MainTop, stored::numberText(settings.top) },
        { SettingsKeys::MainWidth, stored::numberText(settings.width) },
        { SettingsKeys::MainHeight, stored::numberText(settings.height) },
        { SettingsKeys::ScreenSplit, QString::number(settings.screenSplit) },
        { SettingsKeys::Colwidth, QString::number(settings.colwidth) },
    };
    if (!store.saveAll(SettingsKeys::Application, SettingsKeys::Section, values))
        return store.writeError();
    return {};
}

QString settingsNotSavedMessage(const QString &reason)
{
    return QStringLiteral("The window's position and size could not be saved: %1. The window "
                          "will open as before at the next start.")
        .arg(reason);
}

QString readUserPassword(const ISettingsStore &store)
{
    return readText(store, SettingsKeys::UserPassword, QString());
}

QString setAsideDamagedSettings(ISettingsStore &store, const QDateTime &now)
{
    const QString problem = store.readProblem(SettingsKeys::Application);
    if (problem.isEmpty())
        return QString();
    // The damaged file may still hold the password: the start cannot ask for it, and must not
    // let the lock go without a word.
    const QString aside = store.setAsideDamaged(SettingsKeys::Application, now);
    const QString kept = aside.isEmpty()
        ? QString()
        : QStringLiteral(" It is kept as \"%1\".").arg(QDir::toNativeSeparators(aside));
    return QStringLiteral("Tarnwick's settings could not be read: %1.%2\n\nTarnwick starts "
                          "with its default settings: the window's place and size and the quote "
                          "document's choices are as on a first start, and a start-up password "
                          "set before is not asked for. Set it again under Settings \u2192 "
                          "Password.")
        .arg(problem, kept);
}

} // namespace tarnwick
