#pragma once

// What the property-list codecs share; each codec has a file of its own.
#include <QByteArray>
#include <QDateTime>
#include <QVariant>
#include <memory>
#include <optional>
#include <plist/plist.h>

namespace tl::plist::detail {

// Seconds from 1970-01-01 to 2001-01-01, the epoch of property-list dates.
constexpr qint64 kReferenceDateOffset = 978307200;

// Deeper nesting than this is hostile input, not a property file; it would
// only exhaust the stack on the way through.
constexpr int kMaxDepth = 512;

struct NodeDeleter
{
    void operator()(void *node) const { plist_free(static_cast<plist_t>(node)); }
};
using Node = std::unique_ptr<void, NodeDeleter>;

bool isSignedInteger(int type);
bool isUnsignedInteger(int type);

// Whole seconds, rounded down as the Mac does when it prints a date.
qint64 floorSeconds(qint64 msecs);
// "YYYY-MM-DDTHH:MM:SSZ" in UTC, as the XML format writes a date.
QByteArray dateText(const QDateTime &date);

// The readers, for bytes that start as their format does; nothing, and a
// line in the log, for anything that does not read as it.
std::optional<QVariant> parseXml(const QByteArray &bytes);
// The XML that this program and the Mac write, read without libplist;
// nothing for anything else, which parseXml then reads through libplist.
std::optional<QVariant> parseXmlDirectly(const QByteArray &bytes);
std::optional<QVariant> parseBinary(const QByteArray &bytes);

} // namespace tl::plist::detail
