// libFuzzer target: property files in XML, as the program's own fast reader
// takes them. What it reads must survive being written and read again.
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
    const QByteArray written = tl::plist::toXml(*value);
    const auto reread = tl::plist::detail::parseXmlDirectly(written);
    if (!written.isEmpty() && (!reread || tl::plist::toXml(*reread) != written))
        __builtin_trap();
    return 0;
}
