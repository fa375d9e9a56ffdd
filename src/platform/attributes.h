#pragma once

// User extended attributes. Names passed here and returned from here leave out
// the "user." namespace prefix that the kernel requires; it is added on disk.
//
// The Finder label number and the hidden flag are kept as attributes too:
//   "com.tavelle.app.label"   decimal text "1" to "7"; absent for no label
//   "com.tavelle.app.hidden"  "1"; absent when the item is not hidden

#include <QByteArray>
#include <QMap>
#include <QString>
#include <optional>

namespace tl::platform {

inline constexpr char kLabelAttribute[] = "com.tavelle.app.label";
inline constexpr char kHiddenAttribute[] = "com.tavelle.app.hidden";

// "com.tavelle.app." + key. CharacterOffset and CurrentPDFPage carry the
// "#S" suffix that marks an attribute which must survive synchronisation.
QString attributeName(const QString &key);

std::optional<QByteArray> readAttribute(const QString &path, const QString &name);
bool writeAttribute(const QString &path, const QString &name, const QByteArray &value);
// True also when the attribute was absent.
bool removeAttribute(const QString &path, const QString &name);
// Every user attribute of the item, by name without "user.".
QMap<QString, QByteArray> attributes(const QString &path);

// Label number 0 to 7; 0 when none is set or the stored value is not a label.
int labelNumber(const QString &path);
// 0 removes the label; numbers outside 0 to 7 are refused.
bool setLabelNumber(const QString &path, int label);

bool isHidden(const QString &path);
bool setHidden(const QString &path, bool hidden);

} // namespace tl::platform
