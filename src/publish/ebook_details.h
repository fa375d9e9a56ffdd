#pragma once

#include "publish/document_compiler.h"

#include <QStringList>

namespace tl::publish {

// What the details sheet proposes for an e-book of the selection made in
// the base folder: the folder's or the first document's name as title, the
// author setting, and all rights reserved this year.
EBookAttributes proposedEBookAttributes(const QStringList &selection, const QString &basePath);
// Empty details of the given ones filled with the proposal.
EBookAttributes withProposedDetails(EBookAttributes given, const QStringList &selection,
                                    const QString &basePath);

} // namespace tl::publish
