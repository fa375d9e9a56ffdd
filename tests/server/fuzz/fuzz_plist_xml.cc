// libFuzzer target: property files in XML, as the program's own fast reader
// takes them. What it reads must survive being written and read again by the
// program's reader, which hands forms the fast one declines (a real in
// exponent form, as the writer puts large ones) to libplist.
#include "foundation/plist.h"
#include "foundation/plist_codecs.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto value = tl::plist::detail::parseXmlDirectly(bytes);
    if (!value)
        return 0;
    // Compared as written text: a NaN is never equal to itself as a value.
    // The first writing may leave out characters XML cannot hold, and so
    // order keys anew; from then on the text must come back unchanged.
    const QByteArray written = tl::plist::toXml(*value);
    if (written.isEmpty())
        return 0;
    const auto reread = tl::plist::detail::parseXml(written);
    if (!reread)
        __builtin_trap();
    const QByteArray settled = tl::plist::toXml(*reread);
    const auto again = tl::plist::detail::parseXml(settled);
    if (!again || tl::plist::toXml(*again) != settled)
        __builtin_trap();
    return 0;
}
