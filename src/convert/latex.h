#pragma once

#include <QDate>
#include <QString>

// A complete LaTeX file from a Markdown document, by the MultiMarkdown
// road whatever the document's converter is.
namespace tl::convert {

// The receiver is the path of a file (title its name, date its
// modification day) or a text that names no file ("Untitled Document",
// today).
QString tl_markdownToLatex(const QString &receiver);
// The text of the document at path (empty for a bare text), as the store's
// duplicate hands it over.
QString markdownToLatexForDocument(const QString &markdown, const QString &path);

// The whole document around the text: preamble, title page, body, closing
// matter.
QString latexDocument(const QString &markdown, const QString &path, const QString &title,
                      const QDate &date);

// "a4paper" where the locale measures in the metric system, else "us".
QString latexPaperForLocale(const char *locale);

} // namespace tl::convert
