#pragma once

#include <QList>
#include <QString>
#include <utility>

// The second converter, "MultiMarkdown": its dialect (metadata, header and
// footer files, transclusion, CriticMarkup, inline notes, contents markers,
// smart punctuation) as the program's own layer over Discount. The source
// stage is shared by every output format; HTML is made here, LaTeX by the
// same source stage later.
namespace tl::convert {

enum class MultiMarkdownFormat {
    HTML = 0,
    LaTeX = 2,
};

// The metadata block at the start of a text: "Key: value" lines up to the
// first empty line. Keys are compared in lower case without blanks.
struct MultiMarkdownMetadata
{
    QString value(const QString &key) const;
    QList<std::pair<QString, QString>> entries;
    // Where the text after the block begins.
    qsizetype bodyStart = 0;
};
MultiMarkdownMetadata multiMarkdownMetadata(const QString &text);

// The text of the file named by "MMD Header" put in front of the body.
QString mmd_prepend_mmd_header(const QString &text, const QString &folder);
// The text of the file named by "MMD Footer" put behind the text.
QString mmd_append_mmd_header(const QString &text, const QString &folder);
// "{{file}}" replaced by the file's text (without its metadata), relative
// to `folder`; "{{file.*}}" takes the variant for the format. The source
// and every file being transcluded already are left as their markers, so
// cycles end.
QString mmd_transclude_source(const QString &text, const QString &folder, const QString &sourcePath,
                              MultiMarkdownFormat format);
// Every change accepted: additions kept, deletions and comments dropped.
QString mmd_critic_markup_accept(const QString &text);
// Changes shown as HTML marks.
QString criticMarkupAsHTML(const QString &text);

// The whole road to an HTML body, for a prepared text of the document at
// path (empty path: a bare text, nothing is transcluded).
QString tl_multiMarkdownWithPath(const QString &markdown, const QString &path);

} // namespace tl::convert
