#pragma once

#include <QString>
#include <optional>

// Mail messages in compiles and e-books. The mail importer's conversion is
// used when the program has one; until then a message counts by its HTML
// part alone, and one without is left out.
namespace tl::publish {

// The HTML part of a raw message, decoded from quoted-printable or base64
// and read as UTF-8; nothing when the message has none.
std::optional<QString> htmlPartOfMessage(const QString &message);

// The body HTML a mail document brings, or nothing (logged) to leave it out.
std::optional<QString> mailBody(const QString &path);

} // namespace tl::publish
