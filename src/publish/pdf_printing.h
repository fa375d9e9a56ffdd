#pragma once

#include <QLocale>
#include <QString>
#include <optional>

// A compiled document printed as a PDF. The printing needs a web engine,
// which the core does not load: a small helper program beside the command
// renders the page off-screen and prints it.
namespace tl::publish {

// "Letter" where the locale's paper is US Letter, else "A4".
QString paperForLocale(const QLocale &locale);
// The paper of LC_PAPER, else of the system locale.
QString systemPaper();

// The page to print: a formatted document as it is, Markdown rendered, plain
// text as preformatted text; relative references resolve from the document's
// folder.
QString printablePage(const QString &compiledPath);

// Prints the compiled document as TITLE.pdf, made unique in the folder
// (created if need be); the PDF's path, or nothing when printing failed.
std::optional<QString> printCompiledDocumentToPDF(const QString &compiledPath, const QString &title,
                                                  const QString &folder);

} // namespace tl::publish
