#include "store/fountain_text.h"

#include "foundation/regex.h"

namespace tl::store {

bool tl_textContainsFountain(const QString &text)
{
    static const Regex exterior(QStringLiteral("(?im:^EXT( |.)).*?\\n\\n"));
    static const Regex interior(QStringLiteral("(?im:^INT( |.)).*?\\n\\n"));
    return exterior.isMatch(text) || interior.isMatch(text);
}

} // namespace tl::store
