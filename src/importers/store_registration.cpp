#include "importers/store_registration.h"

#include "importers/mail_message.h"
#include "importers/opml_converter.h"
#include "store/text_conversions.h"

namespace tl::importers {

void registerImportersWithStore()
{
    store::textConversions().OPMLToHTML = tl_OPMLToHTML;
    store::textConversions().emlToHTML = tl_emlFileToHTML;
}

} // namespace tl::importers
