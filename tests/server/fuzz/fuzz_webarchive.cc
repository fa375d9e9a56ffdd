// libFuzzer target: saved web pages, read by the binary property-list reader.
// Whatever an archive yields must come back the same through the writer,
// as far as the writer carries text.
#include "foundation/plist.h"
#include "importers/webarchive_reader.h"

#include <QStringDecoder>
#include <QVariantList>
#include <QVariantMap>
#include <cstddef>
#include <cstdint>

namespace {

QVariantMap written(const tl::importers::WebResource &resource)
{
    return {{"WebResourceData", resource.data},
            {"WebResourceURL", resource.url},
            {"WebResourceMIMEType", resource.mimeType}};
}

// Text as the writer carries it: through UTF-8 C strings, so it ends at a
// NUL character and a lone surrogate does not survive; a leading byte order
// mark stays the character it is.
QString carried(const QString &text)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return decoder.decode(QByteArray(text.toUtf8().constData()));
}

// `again` read back from what was written of `first`.
bool same(const tl::importers::WebResource &again, const tl::importers::WebResource &first)
{
    return again.data == first.data && again.url == carried(first.url) &&
           again.mimeType == carried(first.mimeType);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    // The XML format has a reader of its own.
    if (!bytes.startsWith("bplist"))
        return 0;
    const auto archive = tl::importers::parseWebArchive(bytes);
    if (!archive)
        return 0;
    QVariantList subresources;
    for (const auto &resource : archive->subresources)
        subresources << written(resource);
    const QByteArray again = tl::plist::toBinary(QVariantMap{
        {"WebMainResource", written(archive->mainResource)}, {"WebSubresources", subresources}});
    const auto reread = tl::importers::parseWebArchive(again);
    if (!reread || !same(reread->mainResource, archive->mainResource) ||
        reread->subresources.size() != archive->subresources.size())
        __builtin_trap();
    for (qsizetype i = 0; i < archive->subresources.size(); ++i)
        if (!same(reread->subresources[i], archive->subresources[i]))
            __builtin_trap();
    return 0;
}
