#include "convert/latex.h"

#include "convert/latex_writer.h"
#include "convert/markdown_preparation.h"
#include "convert/multimarkdown.h"
#include "convert/rewrite_table.h"
#include "foundation/clock.h"
#include "foundation/path_string.h"
#include "store/document_file.h"

#include <QFileInfo>
#include <QLocale>
#include <string>
#include <unicode/udat.h>
#include <unicode/uloc.h>
#include <unicode/ulocdata.h>

namespace tl::convert {

namespace {

const QString kStartOfText = QStringLiteral("STARTOFTEXTMARKER\n");
const QString kEndOfDocument = QStringLiteral("\\end{document}");

const char kPreamble[] = "\\documentclass[%1, 11pt]{article}\n\n"
                         "\\usepackage[utf8]{inputenc}\n"
                         "\\usepackage[acronym, toc]{glossaries}\n"
                         "\\usepackage{natbib}\n"
                         "\\bibliographystyle{unsrtnat}\n"
                         "\\usepackage{imakeidx}\n"
                         "\\usepackage{hyperref}\n"
                         "\\makeindex\n"
                         "\\makeglossaries\n\n"
                         "%2\n";

const char kTitlePage[] = "\\begin{document}\n\n"
                          "\\title{%1}\n"
                          "\\author{Author}\n"
                          "\\date{%2}\n"
                          "\\maketitle\n"
                          "\\clearpage\n"
                          "\\tableofcontents\n"
                          "\\clearpage\n\n";

const char kClosingMatter[] = "\\clearpage\n"
                              "\\printglossary\n"
                              "\\clearpage\n"
                              "\\printglossary[type=\\acronymtype]\n"
                              "\\clearpage\n"
                              "\\printindex\n"
                              "\\end{document}";

// What the converter gives for a prepared text as a complete document: the
// packages its body needs, which land in the preamble, the body and the end
// of the document.
QString convertedToLatex(const QString &prepared, const QString &path)
{
    return QStringLiteral("\\usepackage{graphicx}\n") +
           latexOfHTMLBody(tl_multiMarkdownWithPath(prepared, path)) + kEndOfDocument + u'\n';
}

// The long date style of the locale, as a date of the title page.
QString longDate(const QDate &date)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::u16string utc = u"UTC";
    UDateFormat *format = udat_open(UDAT_NONE, UDAT_LONG, uloc_getDefault(), utc.data(),
                                    int32_t(utc.size()), nullptr, 0, &status);
    if (U_FAILURE(status))
        return QLocale().toString(date, QLocale::LongFormat);
    const UDate noon = double(QDateTime(date, QTime(12, 0), Qt::UTC).toMSecsSinceEpoch());
    std::u16string text(64, u'\0');
    const int32_t length =
        udat_format(format, noon, text.data(), int32_t(text.size()), nullptr, &status);
    udat_close(format);
    if (U_FAILURE(status))
        return QLocale().toString(date, QLocale::LongFormat);
    return QString::fromUtf16(text.data(), length);
}

} // namespace

QString latexPaperForLocale(const char *locale)
{
    UErrorCode status = U_ZERO_ERROR;
    const UMeasurementSystem system = ulocdata_getMeasurementSystem(locale, &status);
    const bool metric = U_SUCCESS(status) && (system == UMS_SI || system == UMS_UK);
    return metric ? QStringLiteral("a4paper") : QStringLiteral("us");
}

QString latexDocument(const QString &markdown, const QString &path, const QString &title,
                      const QDate &date)
{
    static const RewriteTable rewrites = compiledRewrites({
        {Rewrite::Literal, "description={\n\n", "description={\n"},
        {Rewrite::Literal, "\n--tlpagebreak--\n", "\n\\newpage\n"},
        // Index marks, which the body keeps in braces, become index entries.
        {Rewrite::Expression, "\\{\\[>>([^\\]].+?)\\]\\}", "\\\\index{$1}"},
    });
    QString text = tl_stringPreparedForConversionWith(markdown, MultiMarkdown);
    // The marker survives the conversion as a paragraph of its own.
    text.replace(QStringLiteral("\n>%pagebreak%\n"), QStringLiteral("\n--tlpagebreak--\n"));
    QString latex = applyRewrites(convertedToLatex(kStartOfText + text, path), rewrites);
    latex = QString::fromLatin1(kPreamble).arg(latexPaperForLocale(uloc_getDefault()), latex);
    latex.replace(kStartOfText,
                  QString::fromLatin1(kTitlePage).arg(latexEscaped(title), longDate(date)));
    latex.replace(kEndOfDocument, QString::fromLatin1(kClosingMatter));
    return latex;
}

QString markdownToLatexForDocument(const QString &markdown, const QString &path)
{
    const QFileInfo file(path);
    if (path.isEmpty() || !file.isFile())
        return latexDocument(markdown, QString(), QStringLiteral("Untitled Document"),
                             tl::clock().now().date());
    return latexDocument(markdown, path, path::lastComponent(path::deletingExtension(path)),
                         file.lastModified().date());
}

QString tl_markdownToLatex(const QString &receiver)
{
    if (!QFileInfo(receiver).isFile())
        return markdownToLatexForDocument(receiver, QString());
    const std::optional<store::DecodedText> decoded = store::tl_stringWithContentsOfFile(receiver);
    return markdownToLatexForDocument(decoded ? decoded->text : QString(), receiver);
}

} // namespace tl::convert
