#pragma once

#include <QString>

// A document's properties file (NAME.plist beside it) going along with the
// document. A stale properties file at the target is replaced; the source's
// is removed only once its content is at the target. Failures are ignored:
// the document moves or is copied without it.
namespace tl::store {

void movePropertiesFile(const QString &source, const QString &target);
void copyPropertiesFile(const QString &source, const QString &target);

} // namespace tl::store
