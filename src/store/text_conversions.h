#pragma once

#include <QString>
#include <functional>

// The conversions the duplicates in another kind are made with. The
// subsystems that own them sit above the store and register them at start;
// an unregistered one answers an empty text, and an empty result writes
// nothing.
namespace tl::store {

struct TextConversions
{
    // Markdown text of the document at a path to a formatted HTML document.
    std::function<QString(const QString &markdown, const QString &path)> markdownToHTML;
    // Markdown text of the document at a path to LaTeX.
    std::function<QString(const QString &markdown, const QString &path)> markdownToLatex;
    // The Markdown source or the text of a formatted document.
    std::function<QString(const QString &html)> htmlToPlainText;
    // A mail message file, and a web archive file, as HTML to show.
    std::function<QString(const QString &path)> emlToHTML;
    std::function<QString(const QString &path)> webarchiveToHTML;
    // A screenplay's Fountain text of the document at a path as a formatted document.
    std::function<QString(const QString &fountain, const QString &path)> fountainToHTML;
    std::function<QString(const QString &html)> markdownifyHTML;
    std::function<QString(const QString &opml)> OPMLToHTML;
    // A web archive beside itself as a formatted document; the new path.
    std::function<QString(const QString &path)> duplicateWebArchiveAsFormattedDocument;
};

// The process's registered conversions.
TextConversions &textConversions();

// The registered conversion of the Markdown text of the document at a path
// (convert's markdownToHTMLForDocument); convert's tl_markdownToHTML is the
// one that takes a path or a text alone.
QString markdownToHTMLForDocument(const QString &markdown, const QString &path);
QString tl_markdownToLatex(const QString &markdown, const QString &path);
QString tl_markdownifyHTML(const QString &html);
QString tl_htmlToPlainText(const QString &html);
QString tl_fountainToHTML(const QString &fountain, const QString &path);
QString tl_emlToHTML(const QString &path);
QString tl_webarchiveToHTML(const QString &path);
QString tl_OPMLToHTML(const QString &opml);
QString tl_duplicateWebArchiveAsFormattedDocument(const QString &path);

} // namespace tl::store
