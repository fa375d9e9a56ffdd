#pragma once

#include <QString>
#include <optional>

// Mail messages in compiles and e-books, through the mail importer's
// conversion registered with the store.
namespace tl::publish {

// The body HTML a mail document brings, or nothing (logged) to leave it out.
std::optional<QString> mailBody(const QString &path);

} // namespace tl::publish
