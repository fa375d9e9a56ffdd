#include "importers/event_parser.h"

namespace tl::importers {

namespace {
void ignoreMessage(void *, const char *, ...)
{
}
} // namespace

EventParser::EventParser(xmlSAXHandler handler, void *owner, int options)
{
    // Without entity declaration handlers nothing declared in the file can
    // expand into the text.
    handler.initialized = XML_SAX2_MAGIC;
    handler.warning = ignoreMessage;
    handler.error = ignoreMessage;
    m_parser = xmlCreatePushParserCtxt(&handler, nullptr, nullptr, 0, nullptr);
    if (!m_parser)
        return;
    m_parser->_private = owner;
    xmlCtxtUseOptions(m_parser,
                      options | XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
}

EventParser::~EventParser()
{
    if (!m_parser)
        return;
    // A document type with declarations makes the parser keep a document
    // of its own for them, which is the caller's to free.
    if (m_parser->myDoc)
        xmlFreeDoc(m_parser->myDoc);
    xmlFreeParserCtxt(m_parser);
}

bool EventParser::feed(const char *bytes, int length, bool last)
{
    return m_parser && xmlParseChunk(m_parser, bytes, length, last) == 0 && m_parser->wellFormed;
}

} // namespace tl::importers
