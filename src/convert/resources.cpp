#include "convert/resources.h"

#include "platform/folders.h"
#include "store/item_path.h"

namespace tl::convert {

QString resourcesURL()
{
    return QStringLiteral("file://") + store::percentEncodedForPath(platform::resourcesFolder());
}

QString mermaidScriptURL()
{
#ifdef TAVELLE_MERMAID_URL
    return QStringLiteral(TAVELLE_MERMAID_URL);
#else
    return resourcesURL() + QStringLiteral("/js/mermaid/mermaid.min.js");
#endif
}

} // namespace tl::convert
