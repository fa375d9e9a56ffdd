#include "platform/attributes.h"

#include "platform/detail/sys.h"
#include "platform/detail/xattr_copy.h"

#include <cerrno>
#include <spdlog/spdlog.h>
#include <sys/xattr.h>

namespace tl::platform {

namespace {

using detail::nativePath;
using detail::systemError;
using detail::utf8;

constexpr char kUserPrefix[] = "user.";
constexpr char kNamePrefix[] = "com.tavelle.app.";
// Keys whose attributes must survive synchronisation carry this marker.
constexpr char kSyncSuffix[] = "#S";
constexpr const char *kSyncedKeys[] = {"CharacterOffset", "CurrentPDFPage"};

QByteArray diskName(const QString &name)
{
    return kUserPrefix + name.toUtf8();
}

// Reads a value whose size may change between asking and reading.
template <typename Read> std::optional<QByteArray> readSized(Read read)
{
    for (int attempt = 0; attempt < 3; ++attempt) {
        const ssize_t size = read(nullptr, 0);
        if (size < 0)
            return std::nullopt;
        QByteArray value(size, Qt::Uninitialized);
        const ssize_t got = read(value.data(), size_t(size));
        if (got >= 0) {
            value.truncate(got);
            return value;
        }
        if (errno != ERANGE)
            return std::nullopt;
    }
    return std::nullopt;
}

// The names in the user namespace, "user." included, or nothing on failure.
template <typename List> std::optional<QList<QByteArray>> userNames(List list)
{
    const std::optional<QByteArray> raw = readSized(list);
    if (!raw)
        return std::nullopt;
    QList<QByteArray> names;
    for (const QByteArray &name : raw->split('\0')) {
        if (name.startsWith(kUserPrefix))
            names.append(name);
    }
    return names;
}

bool unsupported(int error)
{
    return error == ENOTSUP || error == EOPNOTSUPP;
}

} // namespace

namespace detail {

bool copyUserAttributes(const QByteArray &from, const QByteArray &to, bool tolerateUnsupported)
{
    const auto names = userNames(
        [&](char *buffer, size_t size) { return ::llistxattr(from.constData(), buffer, size); });
    if (!names) {
        // A source without attribute support has nothing to copy.
        if (unsupported(errno))
            return true;
        spdlog::warn("Cannot list attributes of {}: {}", utf8(from), systemError(errno));
        return false;
    }
    for (const QByteArray &name : *names) {
        const auto value = readSized([&](char *buffer, size_t size) {
            return ::lgetxattr(from.constData(), name.constData(), buffer, size);
        });
        if (!value) {
            if (errno == ENODATA)
                continue; // removed meanwhile
            spdlog::warn("Cannot read attribute {} of {}: {}", utf8(name), utf8(from),
                         systemError(errno));
            return false;
        }
        if (::lsetxattr(to.constData(), name.constData(), value->constData(), size_t(value->size()),
                        0) != 0) {
            if (tolerateUnsupported && unsupported(errno)) {
                spdlog::warn("Attributes of {} dropped: {} takes none", utf8(from), utf8(to));
                return true;
            }
            spdlog::warn("Cannot copy attribute {} to {}: {}", utf8(name), utf8(to),
                         systemError(errno));
            return false;
        }
    }
    return true;
}

} // namespace detail

QString attributeName(const QString &key)
{
    QString name = kNamePrefix + key;
    for (const char *synced : kSyncedKeys) {
        if (key == QLatin1String(synced))
            name += kSyncSuffix;
    }
    return name;
}

std::optional<QByteArray> readAttribute(const QString &path, const QString &name)
{
    const QByteArray native = nativePath(path);
    const QByteArray attribute = diskName(name);
    auto value = readSized([&](char *buffer, size_t size) {
        return ::getxattr(native.constData(), attribute.constData(), buffer, size);
    });
    // An absent attribute is the normal case and not worth a line.
    if (!value && errno != ENODATA)
        spdlog::warn("Cannot read attribute {} of {}: {}", utf8(name), utf8(path),
                     systemError(errno));
    return value;
}

bool writeAttribute(const QString &path, const QString &name, const QByteArray &value)
{
    if (::setxattr(nativePath(path).constData(), diskName(name).constData(), value.constData(),
                   size_t(value.size()), 0) != 0) {
        spdlog::warn("Cannot write attribute {} of {}: {}", utf8(name), utf8(path),
                     systemError(errno));
        return false;
    }
    return true;
}

bool removeAttribute(const QString &path, const QString &name)
{
    if (::removexattr(nativePath(path).constData(), diskName(name).constData()) != 0 &&
        errno != ENODATA) {
        spdlog::warn("Cannot remove attribute {} of {}: {}", utf8(name), utf8(path),
                     systemError(errno));
        return false;
    }
    return true;
}

QMap<QString, QByteArray> attributes(const QString &path)
{
    const QByteArray native = nativePath(path);
    QMap<QString, QByteArray> result;
    const auto names = userNames(
        [&](char *buffer, size_t size) { return ::listxattr(native.constData(), buffer, size); });
    if (!names) {
        if (!unsupported(errno))
            spdlog::warn("Cannot list attributes of {}: {}", utf8(path), systemError(errno));
        return result;
    }
    for (const QByteArray &name : *names) {
        const QString key = QString::fromUtf8(name.mid(qsizetype(sizeof kUserPrefix) - 1));
        if (const auto value = readAttribute(path, key))
            result.insert(key, *value);
    }
    return result;
}

int labelNumber(const QString &path)
{
    const auto value = readAttribute(path, kLabelAttribute);
    bool ok = false;
    const int label = value ? value->toInt(&ok) : 0;
    return ok && label >= 1 && label <= 7 ? label : 0;
}

bool setLabelNumber(const QString &path, int label)
{
    if (label < 0 || label > 7) {
        spdlog::warn("Not a label number: {}", label);
        return false;
    }
    if (label == 0)
        return removeAttribute(path, kLabelAttribute);
    return writeAttribute(path, kLabelAttribute, QByteArray::number(label));
}

bool isHidden(const QString &path)
{
    return readAttribute(path, kHiddenAttribute) == "1";
}

bool setHidden(const QString &path, bool hidden)
{
    return hidden ? writeAttribute(path, kHiddenAttribute, "1")
                  : removeAttribute(path, kHiddenAttribute);
}

} // namespace tl::platform
