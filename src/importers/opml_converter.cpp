#include "importers/opml_converter.h"

#include "importers/event_parser.h"

#include <optional>

namespace tl::importers {

namespace {

QString fromXml(const xmlChar *text, qsizetype length)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(text), length);
}

struct OutlineAttributes
{
    QString text;
    std::optional<QString> url;
    std::optional<QString> htmlUrl;
    std::optional<QString> description;
};

// SAX2 hands attributes as (localname, prefix, URI, value, end) runs.
// Without entity replacement the parser keeps an ampersand as "&#38;" for
// a tree builder to reparse; an outline's values want the character.
OutlineAttributes outlineAttributes(int count, const xmlChar **attributes)
{
    OutlineAttributes found;
    for (int i = 0; i < count; ++i) {
        const xmlChar **attribute = attributes + 5 * i;
        const QString name = fromXml(attribute[0], -1);
        QString value = fromXml(attribute[3], attribute[4] - attribute[3]);
        value.replace(QStringLiteral("&#38;"), QStringLiteral("&"));
        if (name == u"text")
            found.text = value;
        else if (name == u"url")
            found.url = value;
        else if (name == u"htmlUrl")
            found.htmlUrl = value;
        else if (name == u"description")
            found.description = value;
    }
    return found;
}

TLKSOPMLConverter *converterOf(void *context)
{
    return EventParser::ownerOf<TLKSOPMLConverter>(context);
}

void onStart(void *context, const xmlChar *localName, const xmlChar *, const xmlChar *, int,
             const xmlChar **, int attributeCount, int, const xmlChar **attributes)
{
    const OutlineAttributes found = outlineAttributes(attributeCount, attributes);
    const std::optional<QString> &url = found.url ? found.url : found.htmlUrl;
    converterOf(context)->startElement(fromXml(localName, -1).toLower(), found.text,
                                       url ? &*url : nullptr,
                                       found.description ? &*found.description : nullptr);
}

void onEnd(void *context, const xmlChar *localName, const xmlChar *, const xmlChar *)
{
    converterOf(context)->endElement(fromXml(localName, -1).toLower());
}

void onCharacters(void *context, const xmlChar *text, int length)
{
    converterOf(context)->characters(fromXml(text, length));
}

} // namespace

TLKSOPMLConverter::TLKSOPMLConverter(const QString &opmlText) : m_opmlText(opmlText)
{
    convert();
}

void TLKSOPMLConverter::convert()
{
    xmlSAXHandler handler{};
    handler.startElementNs = onStart;
    handler.endElementNs = onEnd;
    handler.characters = onCharacters;
    const QByteArray data = m_opmlText.toUtf8();
    EventParser(handler, this).feed(data.constData(), int(data.size()), true);
}

void TLKSOPMLConverter::startElement(const QString &name, const QString &text, const QString *url,
                                     const QString *description)
{
    if (name == u"title") {
        m_handlingTitle = true;
    } else if (name == u"body") {
        m_html += QStringLiteral("\n<ul>\n");
        m_overallLevel = 1;
    } else if (name == u"outline") {
        ++m_elementLevel;
        QString item = text;
        if (url)
            item = QStringLiteral("<a href=\"%1\">%2</a>").arg(*url, item);
        if (description)
            item += QStringLiteral("<br>") + *description;
        if (m_elementLevel > m_overallLevel) {
            m_html += QStringLiteral("\n<ul>\n<li>") + item + QStringLiteral("</li>");
            ++m_overallLevel;
        } else {
            m_html += QStringLiteral("\n<li>") + item + QStringLiteral("</li>");
        }
    }
}

void TLKSOPMLConverter::characters(const QString &text)
{
    if (!m_handlingTitle)
        return;
    m_handlingTitle = false;
    m_html += QStringLiteral("<h1>") + text + QStringLiteral("</h1>\n");
}

void TLKSOPMLConverter::endElement(const QString &name)
{
    if (name == u"outline") {
        --m_elementLevel;
        if (m_elementLevel < m_overallLevel - 1) {
            m_html += QStringLiteral("\n</ul>\n");
            --m_overallLevel;
        }
    } else if (name == u"body") {
        m_html += QStringLiteral("\n</ul>\n");
    }
}

QString tl_OPMLToHTML(const QString &opml)
{
    return TLKSOPMLConverter(opml).html();
}

} // namespace tl::importers
