#include "browser/library_search.h"
#include "store/log.h"

namespace tl::browser {

QStringList tl_arrayOfSearchTermsInString(const QString &text)
{
    QString straight = text;
    for (const char16_t quote : {u'„', u'“', u'”', u'«', u'»'})
        straight.replace(QChar(quote), u'"');
    QStringList terms;
    const QStringList parts = straight.split(u'"');
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (i % 2 == 1)
            terms << parts[i];
        else
            terms << parts[i].split(u' ');
    }
    terms.removeAll(QString());
    logLine(
        QStringLiteral("search components in string: (%1)").arg(terms.join(QStringLiteral(", "))));
    return terms;
}

} // namespace tl::browser
