#include "importers/store_registration.h"

#include "importers/mail_message.h"
#include "importers/opml_converter.h"
#include "importers/webarchive.h"
#include "store/text_conversions.h"

namespace tl::importers {

void registerImportersWithStore()
{
    store::textConversions().OPMLToHTML = tl_OPMLToHTML;
    store::textConversions().emlToHTML = tl_emlFileToHTML;
    store::textConversions().webarchiveToHTML = tl_webarchiveToHTML;
    store::textConversions().duplicateWebArchiveAsFormattedDocument = tl_saveWebarchiveAsHTML;
}

} // namespace tl::importers
