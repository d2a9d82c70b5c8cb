#include "shell/windowsettings.h"

#include "core/conversions.h"
#include "core/storednumber.h"
#include "platform/isettingsstore.h"
#include "shell/settingskeys.h"

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
    try {
        v.left = single(SettingsKeys::MainLeft, v.left);
        v.top = single(SettingsKeys::MainTop, v.top);
        v.width = single(SettingsKeys::MainWidth, v.width);
        v.height = single(SettingsKeys::MainHeight, v.height);
        v.screenSplit = int16(SettingsKeys::ScreenSplit, v.screenSplit);
        v.colwidth = int16(SettingsKeys::Colwidth, v.colwidth);
    } catch (const VbError &error) {
        result.error = error;
    }
    return result;
}

void saveMainWindowSettings(
    ISettingsStore &store, const MainWindowSettings &settings, const QLocale & /*locale*/)
{
    const auto save = [&](QLatin1String key, const QString &value) {
        store.save(SettingsKeys::Application, SettingsKeys::Section, key, value);
    };
    save(SettingsKeys::MainLeft, stored::numberText(settings.left));
    save(SettingsKeys::MainTop, stored::numberText(settings.top));
    save(SettingsKeys::MainWidth, stored::numberText(settings.width));
    save(SettingsKeys::MainHeight, stored::numberText(settings.height));
    save(SettingsKeys::ScreenSplit, QString::number(settings.screenSplit));
    save(SettingsKeys::Colwidth, QString::number(settings.colwidth));
}

QString readUserPassword(const ISettingsStore &store)
{
    return readText(store, SettingsKeys::UserPassword, QString());
}

} // namespace tarnwick
