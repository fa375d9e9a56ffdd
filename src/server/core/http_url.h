#pragma once

#include <QString>

#include <optional>

namespace server {

// The parts of a URL reference, split as the generic syntax does
// (scheme ":" "//" authority path "?" query "#" fragment). Absent parts are null.
struct URLParts
{
    QString scheme;
    QString authority;
    QString path;
    QString query;
    QString fragment;
};
URLParts splitURL(const QString &url);

// Decodes %XX escapes and reads the bytes as UTF-8. Nothing on a broken
// escape, on bytes that are no UTF-8, or on a NUL.
std::optional<QString> percentDecode(const QString &text);

// The decoded path of a URL reference without a final "/" (except for "/"
// itself): the relative path of the URL. Nothing when it does not decode.
std::optional<QString> urlRelativePath(const QString &url);

// Joins a path component to a path with one "/" between them.
QString appendPathComponent(const QString &path, const QString &component);

// Lexical standardisation: empty and "." components go, ".." removes the
// component before it (never above the root of an absolute path), and a
// final "/" goes unless the path is "/".
QString standardizePath(const QString &path);

} // namespace server
