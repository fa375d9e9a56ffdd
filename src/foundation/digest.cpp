#include "foundation/digest.h"

#include <QCryptographicHash>

namespace tl {

QString md5Hex(const QByteArray &bytes, bool upperCase)
{
    const QString hex =
        QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex());
    return upperCase ? hex.toUpper() : hex;
}

QString rootKey(const QString &resolvedRootPath)
{
    return md5Hex(resolvedRootPath.toUtf8(), true);
}

} // namespace tl
