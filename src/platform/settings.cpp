#include "platform/settings.h"

#include "foundation/plist.h"
#include "platform/folders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <spdlog/spdlog.h>
#include <sys/stat.h>

namespace tl::platform {

namespace {

// Leading integer of a text, as the defaults store reads "12abc" as 12.
qint64 leadingInteger(const QString &text)
{
    const QString t = text.trimmed();
    qsizetype i = 0;
    if (i < t.size() && (t[i] == u'-' || t[i] == u'+'))
        ++i;
    while (i < t.size() && t[i].isDigit())
        ++i;
    bool ok = false;
    const qint64 n = t.left(i).toLongLong(&ok);
    if (ok)
        return n;
    return qint64(t.toDouble());
}

} // namespace

bool boolFromValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::QString: {
        const QString t = value.toString().trimmed();
        if (t.compare(u"YES", Qt::CaseInsensitive) == 0 ||
            t.compare(u"true", Qt::CaseInsensitive) == 0)
            return true;
        return leadingInteger(t) != 0;
    }
    case QMetaType::Double:
    case QMetaType::Float:
        return value.toDouble() != 0.0;
    default:
        return value.canConvert<qint64>() && value.toLongLong() != 0;
    }
}

qint64 integerFromValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return leadingInteger(value.toString());
    case QMetaType::Double:
    case QMetaType::Float:
        return qint64(value.toDouble());
    case QMetaType::Bool:
        return value.toBool() ? 1 : 0;
    default:
        return value.canConvert<qint64>() ? value.toLongLong() : 0;
    }
}

double realFromValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString().trimmed().toDouble();
    case QMetaType::Bool:
        return value.toBool() ? 1.0 : 0.0;
    default:
        return value.canConvert<double>() ? value.toDouble() : 0.0;
    }
}

QString stringFromValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString();
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
        return value.toString();
    default:
        return {};
    }
}

Settings::Settings(QString filePath) : m_path(std::move(filePath))
{
}

Settings::FileIdentity Settings::currentIdentity() const
{
    struct stat st
    {
    };
    if (::stat(QFile::encodeName(m_path).constData(), &st) != 0)
        return {};
    return {st.st_ino, qint64(st.st_size),
            qint64(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec};
}

void Settings::reloadIfChanged()
{
    const FileIdentity now = currentIdentity();
    if (m_everLoaded && now == m_loaded)
        return;
    m_everLoaded = true;
    m_loaded = now;
    m_values.clear();
    if (now.size < 0)
        return;
    QFile f(m_path);
    if (!f.open(QIODevice::ReadOnly))
        return;
    const std::optional<QVariant> parsed = plist::parse(f.readAll());
    if (parsed && parsed->typeId() == QMetaType::QVariantMap)
        m_values = parsed->toMap();
    else
        spdlog::warn("settings: {} is not a dictionary; reading as empty", m_path.toStdString());
}

void Settings::write()
{
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    QSaveFile f(m_path);
    if (!f.open(QIODevice::WriteOnly) || f.write(plist::toXml(m_values)) < 0 || !f.commit()) {
        spdlog::warn("settings: cannot write {}", m_path.toStdString());
        return;
    }
    m_loaded = currentIdentity();
}

bool Settings::contains(const QString &key)
{
    std::lock_guard lock(m_mutex);
    reloadIfChanged();
    return m_values.contains(key);
}

QVariant Settings::object(const QString &key)
{
    std::lock_guard lock(m_mutex);
    reloadIfChanged();
    return m_values.value(key);
}

bool Settings::boolValue(const QString &key)
{
    return boolFromValue(object(key));
}
qint64 Settings::integer(const QString &key)
{
    return integerFromValue(object(key));
}
double Settings::real(const QString &key)
{
    return realFromValue(object(key));
}
QString Settings::string(const QString &key)
{
    return stringFromValue(object(key));
}

QVariantList Settings::array(const QString &key)
{
    const QVariant v = object(key);
    return v.typeId() == QMetaType::QVariantList ? v.toList() : QVariantList{};
}

QVariantMap Settings::dictionary(const QString &key)
{
    const QVariant v = object(key);
    return v.typeId() == QMetaType::QVariantMap ? v.toMap() : QVariantMap{};
}

QVariantMap Settings::all()
{
    std::lock_guard lock(m_mutex);
    reloadIfChanged();
    return m_values;
}

void Settings::set(const QString &key, const QVariant &value)
{
    if (!value.isValid()) {
        remove(key);
        return;
    }
    std::lock_guard lock(m_mutex);
    reloadIfChanged();
    if (m_values.contains(key) && m_values.value(key) == value &&
        m_values.value(key).typeId() == value.typeId())
        return;
    m_values.insert(key, value);
    write();
}

void Settings::remove(const QString &key)
{
    std::lock_guard lock(m_mutex);
    reloadIfChanged();
    if (m_values.remove(key) > 0)
        write();
}

void Settings::synchronize()
{
    std::lock_guard lock(m_mutex);
    m_everLoaded = false;
    reloadIfChanged();
}

Settings &settings()
{
    static Settings store(configFolder() + QStringLiteral("/com.tavelle.app.plist"));
    return store;
}

} // namespace tl::platform
