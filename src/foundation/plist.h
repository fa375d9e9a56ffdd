#pragma once

#include <QByteArray>
#include <QVariant>
#include <optional>

// Property lists as QVariant trees: QVariantMap (dict), QVariantList (array),
// QString, qint64 (integer), double (real), bool, QDateTime (UTC date) and
// QByteArray (data).
namespace tl::plist {

// Reads the XML or the binary ("bplist00") format, whichever the bytes hold.
// Integers come back as qint64 (keyed-archiver UIDs too; values above the
// qint64 range wrap), dates as UTC QDateTime to the millisecond. Empty or
// malformed input gives nothing and logs a line.
std::optional<QVariant> parse(const QByteArray &bytes);

// The XML format byte for byte as the Mac writes it: tab indentation, keys in
// UTF-16 order, reals as "%.17g" ("0.0" for zero, "nan", "+infinity"), dates
// to the second in UTC, data in base64 lines that shrink by 8 per indent.
// Also takes QVariantHash, QStringList and any integer type. A value that no
// property list can hold (anywhere in the tree) gives an empty result.
QByteArray toXml(const QVariant &value);

// The binary format, as stored in extended attributes. Dates keep their
// milliseconds. Empty for a value that no property list can hold. Text goes
// through UTF-8 C strings: it ends at a NUL character, and a lone surrogate
// does not survive.
QByteArray toBinary(const QVariant &value);

} // namespace tl::plist
