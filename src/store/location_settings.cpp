#include "store/location_settings.h"

#include "foundation/compare.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/plist.h"
#include "platform/settings.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/plist_file.h"

namespace tl::store::TLStaticFunctions {

namespace S = keys::setting;

namespace {
const char *const kBooleanKeys[] = {S::ManageLinks, S::ContextsEnabled,
                                    S::ExtractContextsAutomatically};
const char *const kTextKeys[] = {S::DefaultInbox, S::ContextMarkers};

QString onOff(bool on)
{
    return on ? QStringLiteral("on") : QStringLiteral("off");
}
} // namespace

QString settingsFilePath()
{
    const QString root = libraryRoot();
    return root.isEmpty() ? QString() : root + u'/' + QLatin1String(names::SettingsFile);
}

QVariant tl_locationSpecificSettingForKey(const QString &key)
{
    return readPlistDictionary(settingsFilePath()).value(key);
}

void tl_setLocationSpecificSetting(const QVariant &value, const QString &key)
{
    const QString file = settingsFilePath();
    if (file.isEmpty())
        return;
    QVariantMap table = readPlistDictionary(file);
    if (value.isValid())
        table.insert(key, value);
    else
        table.remove(key);
    writePlistFile(file, table, true);
}

void tl_writeLocationSpecificSettings()
{
    const QString file = settingsFilePath();
    if (file.isEmpty())
        return;
    const QVariantMap before = readPlistDictionary(file);
    QVariantMap table = before;
    platform::Settings &settings = platform::settings();
    settings.synchronize();
    for (const char *key : kTextKeys)
        table.insert(key, settings.string(key));
    for (const char *key : kBooleanKeys)
        table.insert(key, qint64(settings.boolValue(key) ? 1 : 0));
    const QString printedBefore = QString::fromUtf8(plist::toXml(before));
    const QString printedAfter = QString::fromUtf8(plist::toXml(table));
    if (localizedCompare(printedBefore, printedAfter) != 0)
        writePlistFile(file, table, true);
}

void tl_readLocationSpecificSettings()
{
    const QVariantMap table = readPlistDictionary(settingsFilePath());
    platform::Settings &settings = platform::settings();
    const QString inboxBefore = settings.string(S::DefaultInbox);
    const bool contextsBefore = settings.boolValue(S::ContextsEnabled);
    const bool linksBefore = settings.boolValue(S::ManageLinks);

    for (const char *key : kTextKeys) {
        const QString value = platform::stringFromValue(table.value(key));
        if (value.isEmpty())
            settings.remove(key);
        else
            settings.set(key, value);
    }
    for (const char *key : kBooleanKeys)
        settings.set(key, platform::boolFromValue(table.value(key)));
    settings.synchronize();

    const QString inboxAfter = settings.string(S::DefaultInbox);
    if (inboxAfter != inboxBefore)
        NotificationCenter::defaultCenter().post(events::UpdateDefaultInbox);
    if (settings.boolValue(S::ContextsEnabled) != contextsBefore)
        NotificationCenter::defaultCenter().post(events::ReloadContextSmartBook);
    logLine(QStringLiteral("> set Link Management from %1 to: %2")
                .arg(onOff(linksBefore), onOff(settings.boolValue(S::ManageLinks))));
    logLine(QStringLiteral("> set Default Inbox from %1 to: %2").arg(inboxBefore, inboxAfter));
}

} // namespace tl::store::TLStaticFunctions
