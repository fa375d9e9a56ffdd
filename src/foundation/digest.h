#pragma once

#include <QByteArray>
#include <QString>

namespace tl {

// MD5 of the bytes as hexadecimal text.
QString md5Hex(const QByteArray &bytes, bool upperCase);

// ROOTKEY: upper-case MD5 of a path's UTF-8, naming per-library folders.
QString rootKey(const QString &resolvedRootPath);

} // namespace tl
