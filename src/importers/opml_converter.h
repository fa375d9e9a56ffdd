#pragma once

#include <QString>

// Outlines into nested HTML lists, one way. The result is a body fragment
// that the document view wraps like any other.
namespace tl::importers {

class TLKSOPMLConverter
{
public:
    // Stores the text and converts it at once.
    explicit TLKSOPMLConverter(const QString &opmlText);

    // The lists built; what came before a parse failure, empty for no XML.
    const QString &html() const { return m_html; }

    // The parser's events, in the outline's element names (lower-cased).
    void startElement(const QString &name, const QString &text, const QString *url,
                      const QString *description);
    void characters(const QString &text);
    void endElement(const QString &name);

private:
    void convert();

    QString m_html;
    QString m_opmlText;
    bool m_handlingTitle = false;
    int m_overallLevel = 0;
    int m_elementLevel = 0;
};

QString tl_OPMLToHTML(const QString &opml);

} // namespace tl::importers
