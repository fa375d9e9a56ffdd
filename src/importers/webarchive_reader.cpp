#include "importers/webarchive_reader.h"

#include "foundation/plist.h"

#include <QVariantList>
#include <QVariantMap>

namespace tl::importers {

namespace {

constexpr char kMainResource[] = "WebMainResource";
constexpr char kSubresources[] = "WebSubresources";
constexpr char kData[] = "WebResourceData";
constexpr char kURL[] = "WebResourceURL";
constexpr char kMIMEType[] = "WebResourceMIMEType";

// A value of the wrong type counts as absent: the file comes from elsewhere.
QString stringFor(const QVariantMap &map, const char *key)
{
    const QVariant value = map.value(QLatin1String(key));
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

std::optional<WebResource> resourceOf(const QVariant &value)
{
    if (value.typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    const QVariantMap map = value.toMap();
    const QVariant data = map.value(QLatin1String(kData));
    if (data.typeId() != QMetaType::QByteArray)
        return std::nullopt;
    return WebResource{data.toByteArray(), stringFor(map, kURL), stringFor(map, kMIMEType)};
}

} // namespace

std::optional<WebArchive> parseWebArchive(const QByteArray &bytes)
{
    const std::optional<QVariant> root = plist::parse(bytes);
    if (!root || root->typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    const QVariantMap archive = root->toMap();
    std::optional<WebResource> main = resourceOf(archive.value(QLatin1String(kMainResource)));
    if (!main)
        return std::nullopt;
    WebArchive result{std::move(*main), {}};
    const QVariant subresources = archive.value(QLatin1String(kSubresources));
    if (subresources.typeId() == QMetaType::QVariantList) {
        for (const QVariant &entry : subresources.toList())
            if (std::optional<WebResource> resource = resourceOf(entry))
                result.subresources.append(std::move(*resource));
    }
    return result;
}

} // namespace tl::importers
