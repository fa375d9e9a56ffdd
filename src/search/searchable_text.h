#pragma once

#include <QSet>
#include <QString>
#include <optional>
#include <string>

// The text a search finds in a file, by its kind.
namespace tl::search {

// Plain-text kinds in the encoding they are found in, HTML as its plain
// text, property lists by their string values, PDF by the text of its pages.
// Nothing for other kinds and for files that cannot be read. The library's
// own plain-text extensions are read once, when the reader is made.
class SearchableText
{
public:
    SearchableText();
    bool hasText(const QString &path) const;
    std::optional<QString> textOf(const QString &path) const;
    // The distinct words of that text as the index keeps them, for a file
    // found with this size: a plain-text file all in ASCII, the common case,
    // is not decoded for it.
    std::optional<std::string> distinctWordsOf(const QString &path, qint64 size) const;
    // Whether the file is of a plain-text kind, read as it stands.
    bool isPlainText(const QString &path) const;
    // The distinct words of a plain-text file open as fd, found with this size.
    static std::optional<std::string> distinctWordsOfPlainText(int fd, qint64 size);

private:
    QSet<QString> m_customPlainTextExtensions;
};

} // namespace tl::search
