#include "importers/store_registration.h"

#include "importers/opml_converter.h"
#include "store/text_conversions.h"

namespace tl::importers {

void registerImportersWithStore()
{
    store::textConversions().OPMLToHTML = tl_OPMLToHTML;
}

} // namespace tl::importers
