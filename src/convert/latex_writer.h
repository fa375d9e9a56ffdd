#pragma once

#include <QString>

// LaTeX from the HTML body the MultiMarkdown layer makes: the body of a
// LaTeX document, without preamble or document environment.
namespace tl::convert {

// Headings become sections by level, emphasis, lists (nested, ordered,
// definition), quotations, verbatim code, tables, links, figures, notes and
// index marks their LaTeX forms; the special characters of LaTeX are
// escaped wherever text stands. An index mark "[>>entry]" stays as
// "{[>>entry]}" for the index rewrite of the whole document.
QString latexOfHTMLBody(const QString &html);

// Text with the special characters of LaTeX written as commands.
QString latexEscaped(QStringView text);

} // namespace tl::convert
