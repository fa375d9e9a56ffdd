#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

namespace tl::store {

// Extension lists, compared against the lower-cased extension. Their order
// is settled: later code walks some of them in order.
const QStringList &packageExtensions();
const QStringList &imageExtensions();
const QStringList &movieExtensions();
const QStringList &audioExtensions();
const QStringList &markdownExtensions();
const QStringList &plainTextExtensions();
const QStringList &thumbnailExtensions();
// Decides whether a "#" in a file name starts an anchor.
const QStringList &knownExtensions();

// The user's own plain-text extensions from the library's
// TLResources/Misc/CustomPlainTextExtensions.txt; no defined order.
QSet<QString> customPlaintextExtensions();

QString lowerCasedExtension(const QString &path);

} // namespace tl::store
