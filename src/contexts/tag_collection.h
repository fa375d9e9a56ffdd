#pragma once

#include <QString>
#include <atomic>

// Collection of the property files changed since the last one, which keeps
// the index in step with what other devices and programs wrote.
namespace tl::contexts {

struct CollectionResult
{
    qsizetype plists = 0;
    // The list of tags was empty before and holds tags now: the outline's
    // context section is built anew.
    bool listFilledFromEmpty = false;
    // False when another collection was running and this one did nothing.
    bool ran = false;
};

// Walks the library for property files changed after "autocollectDate",
// merges each item's tags into both stores in one batch, brings synchronised
// favourites back into their properties and moves the date to now.
CollectionResult collectNewContexts(const std::atomic_bool *stop = nullptr);
// Forgets the index but the favourites and collects everything again.
CollectionResult tl_refreshContexts(const std::atomic_bool *stop = nullptr);
// Whether a collection is running now.
bool collectionIsBusy();

} // namespace tl::contexts
