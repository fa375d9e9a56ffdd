// libFuzzer target: the line-fed request parser, fed line by line as the
// connection does and also in one piece; both must agree.
#include "server/core/http_message.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));

    server::HTTPMessage byLines;
    bool linesOk = true;
    qsizetype from = 0;
    while (from < input.size() && linesOk && !byLines.isHeaderComplete()) {
        qsizetype end = input.indexOf("\r\n", from);
        end = end < 0 ? input.size() : end + 2;
        linesOk = byLines.appendData(input.mid(from, end - from));
        from = end;
    }

    server::HTTPMessage whole;
    const bool wholeOk = whole.appendData(input);

    if (byLines.isHeaderComplete()) {
        if (byLines.method().isEmpty() || byLines.url().isEmpty() || !byLines.version().startsWith("HTTP/"))
            __builtin_trap();
        for (const auto &field : byLines.allHeaderFields())
            (void)byLines.headerField(field.first);
        (void)byLines.messageData();
    }
    if (wholeOk && linesOk && whole.isHeaderComplete() && byLines.isHeaderComplete()) {
        if (whole.method() != byLines.method() || whole.url() != byLines.url() ||
            whole.allHeaderFields() != byLines.allHeaderFields())
            __builtin_trap();
    }
    return 0;
}
