#pragma once

#include "browser/document_kinds.h"
#include "browser/document_view_controller.h"

#include <QDateTime>
#include <QString>

// The formatted view's page for each kind of document.
namespace tl::browser {

struct PageRequest
{
    QString path;
    FormattedSource source = FormattedSource::None;
    // The file's text in its encoding, where the kind reads it.
    QString text;
};

// What showing the page did besides building it: the Plain Text
// Representation may rewrite a stale file.
struct BuiltPage
{
    FormattedPage page;
    // The file was written back; its new modification date.
    std::optional<QDateTime> rewritten;
};

BuiltPage buildFormattedPage(const PageRequest &request);

// The Markdown document kept as HTML, as the file should hold it: the
// source in the head comment, then its rendering.
QString plainTextRepresentationFile(const QString &path, const QString &markdown);

// The Markdown source a formatted document carries: tl_htmlToPlainText of
// the head comment alone, as the page behind it has comments of its own.
QString markdownOfRepresentation(const QString &fileText);

// The eml page's font markers filled in for the document's font.
QString withMailFontMarkers(const QString &html, const QString &face, int size);

// The page an Evernote export shows instead of its content.
QString evernoteExportPage(const QString &path);

// The link of the Evernote export page that asks for the import: the
// file's URL with this fragment.
inline constexpr char kExtractEvernoteFragment[] = "tl-extract-and-import";

} // namespace tl::browser
