#pragma once

#include <QList>
#include <QString>
#include <utility>

// The second converter, "MultiMarkdown": the program's own layer over
// Discount that reads MultiMarkdown's dialect. It is not libMultiMarkdown
// and differs from MultiMarkdown 6 where Discount decides or where the
// layer reads less:
// - the HTML is Discount's (its paragraphs, lists, tables, code and note
//   forms), with heading ids made as MultiMarkdown makes them (lower case,
//   letters, digits and ".:-_", or the text of a closing "[anchor]");
// - metadata is read for "MMD Header" and "MMD Footer" only and never
//   written into the page; there are no citations, glossary entries,
//   abbreviations, table captions or math spans;
// - inline notes are "[^ text]" as the preparation writes them, running to
//   the balancing bracket; reference notes are Discount's;
// - transclusion takes "{{file}}" and "{{file.*}}" relative to the
//   including file's folder, at most 20 deep, a file already open left as
//   its marker; no "Transclude Base" metadata and no manifest;
// - CriticMarkup is accepted as a whole or shown as marks, never rejected;
// - smart punctuation is Discount's, in English only;
// - "{{TOC}}" and "{{TOC:a-b}}" come from Discount's contents list.
// The source stage is shared by every output format; HTML is made here.
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
QString withMetadataHeader(const QString &text, const QString &folder);
// The text of the file named by "MMD Footer" put behind the text.
QString withMetadataFooter(const QString &text, const QString &folder);
// "{{file}}" replaced by the file's text (without its metadata), relative
// to `folder`; "{{file.*}}" takes the variant for the format. The source
// and every file being transcluded already are left as their markers, so
// cycles end.
QString withTranscludedFiles(const QString &text, const QString &folder, const QString &sourcePath,
                             MultiMarkdownFormat format);
// Every change accepted: additions kept, deletions and comments dropped.
QString criticMarkupAccepted(const QString &text);
// Changes shown as HTML marks.
QString criticMarkupAsHTML(const QString &text);

// The whole road to an HTML body, for a prepared text of the document at
// path (empty path: a bare text, nothing is transcluded).
QString tl_multiMarkdownWithPath(const QString &markdown, const QString &path);

} // namespace tl::convert
