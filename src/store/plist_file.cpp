#include "store/plist_file.h"

#include "foundation/path_string.h"
#include "foundation/plist.h"
#include "platform/file_ops.h"
#include "store/item_path.h"
#include "store/keys.h"

#include <QFileInfo>
#include <spdlog/spdlog.h>

namespace tl::store {

std::optional<QVariant> readPlistFile(const QString &path)
{
    const std::optional<QByteArray> bytes = platform::readFile(path);
    if (!bytes)
        return std::nullopt;
    return plist::parse(*bytes);
}

QVariantMap readPlistDictionary(const QString &path)
{
    const std::optional<QVariant> value = readPlistFile(path);
    return value && value->typeId() == QMetaType::QVariantMap ? value->toMap() : QVariantMap{};
}

QVariantList readPlistArray(const QString &path)
{
    const std::optional<QVariant> value = readPlistFile(path);
    return value && value->typeId() == QMetaType::QVariantList ? value->toList() : QVariantList{};
}

bool writePlistFile(const QString &path, const QVariant &value, bool atomically)
{
    const QByteArray bytes = plist::toXml(value);
    const bool ok = atomically ? platform::writeFileAtomically(path, bytes)
                               : platform::writeFileInPlace(path, bytes);
    if (!ok)
        spdlog::warn("cannot write property list {}", path.toStdString());
    return ok;
}

namespace {
bool isNumber(const QVariant &v)
{
    switch (v.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Bool:
        return true;
    default:
        return false;
    }
}
} // namespace

bool plistValuesEqual(const QVariant &a, const QVariant &b)
{
    // A string list is written as an array and reads back as one.
    const auto asArray = [](const QVariant &v) {
        return v.typeId() == QMetaType::QStringList ? QVariant(v.toList()) : v;
    };
    if (a.typeId() == QMetaType::QStringList || b.typeId() == QMetaType::QStringList)
        return plistValuesEqual(asArray(a), asArray(b));
    if (isNumber(a) || isNumber(b)) {
        if (!isNumber(a) || !isNumber(b))
            return false;
        return a.toDouble() == b.toDouble();
    }
    if (a.typeId() != b.typeId())
        return false;
    if (a.typeId() == QMetaType::QVariantList) {
        const QVariantList la = a.toList(), lb = b.toList();
        if (la.size() != lb.size())
            return false;
        for (qsizetype i = 0; i < la.size(); ++i)
            if (!plistValuesEqual(la[i], lb[i]))
                return false;
        return true;
    }
    if (a.typeId() == QMetaType::QVariantMap) {
        const QVariantMap ma = a.toMap(), mb = b.toMap();
        if (ma.keys() != mb.keys())
            return false;
        for (auto it = ma.cbegin(); it != ma.cend(); ++it)
            if (!plistValuesEqual(it.value(), mb.value(it.key())))
                return false;
        return true;
    }
    return a == b;
}

QString propertiesFilePath(const QString &itemPath)
{
    if (QFileInfo(itemPath).isDir())
        return path::appendingComponent(itemPath, QLatin1String(names::BookProperties));
    return tl_plistPath(itemPath);
}

} // namespace tl::store
