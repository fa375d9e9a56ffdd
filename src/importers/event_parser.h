#pragma once

#include <libxml/parser.h>

// libxml2's push parser as the importers use it: fed in pieces, nothing
// fetched from the network, no entity expanded, messages kept quiet. The
// owner's handlers find it through ownerOf.
namespace tl::importers {

class EventParser
{
public:
    // `handler` names the element and text events; `options` adds to the
    // parser's own.
    EventParser(xmlSAXHandler handler, void *owner, int options = 0);
    ~EventParser();
    EventParser(const EventParser &) = delete;
    EventParser &operator=(const EventParser &) = delete;

    // Whether the document is still well formed after the piece.
    bool feed(const char *bytes, int length, bool last);

    template <typename Owner> static Owner *ownerOf(void *context)
    {
        return static_cast<Owner *>(static_cast<xmlParserCtxtPtr>(context)->_private);
    }

private:
    xmlParserCtxtPtr m_parser = nullptr;
};

} // namespace tl::importers
