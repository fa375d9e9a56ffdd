#include "publish/mail_parts.h"

#include "convert/envelope.h"
#include "store/log.h"
#include "store/text_conversions.h"

namespace tl::publish {

std::optional<QString> mailBody(const QString &path)
{
    const QString html = store::tl_emlToHTML(path);
    if (html.isEmpty()) {
        logLine(
            QStringLiteral("publishing: leaving out the mail message without HTML %1").arg(path));
        return std::nullopt;
    }
    return convert::tl_getInnerHTML(html);
}

} // namespace tl::publish
