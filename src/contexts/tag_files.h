#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <mutex>

// The files the contexts keep: the index and Info.plist in the per-library
// support folder, the lists of available and excluded tags in the library.
namespace tl::contexts {

QString tagDBPath();
QString infoPlistPath();
QString availableTagsPath();
QString excludedTagsPath();

// Writers in one process hold the lock of the file they rewrite, so that
// two read-change-write runs never interleave.
std::recursive_mutex &fileLock(const QString &path);

// Split at newlines, commas and blanks; empty pieces dropped. Nothing when
// the file is missing.
QStringList readExcludedTags();
// Sorted in localized case-insensitive order, one per line, in place.
bool writeExcludedTags(QStringList tags);
// Creates the file holding one newline when it is missing; answers its path.
QString excludedTagsFileCreatingIfNeeded();

// Values of Info.plist; "autocollectDate" reads the distant past when unset.
QVariant infoValue(const QString &key);
void setInfoValue(const QString &key, const QVariant &value);
QDateTime autocollectDate();
void setAutocollectDate(const QDateTime &date);

} // namespace tl::contexts
