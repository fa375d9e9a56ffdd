#include "store/conflict_copies.h"

namespace tl::store {

namespace {

ConflictCopyRule &rule()
{
    static ConflictCopyRule registered;
    return registered;
}

} // namespace

void setConflictCopyRule(ConflictCopyRule value)
{
    rule() = std::move(value);
}

bool tl_pathIsConflictCopy(const QString &path)
{
    return rule() && rule()(path);
}

} // namespace tl::store
