#pragma once

#include <QString>

namespace tl::publish {

// Zips a package tree as an e-book wants it: "mimetype" first and stored,
// every other file below it deflated at level 9, no folder entries.
bool writeEPubArchive(const QString &tree, const QString &archive);

} // namespace tl::publish
