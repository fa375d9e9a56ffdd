#pragma once

namespace tl::platform {
struct FileWatchReport;
} // namespace tl::platform

// How the outline takes a move reported below the library root. Sync clients
// and editors save by writing a file under a passing name and renaming it
// over the original, or by setting the original aside under a backup name
// and writing it anew; neither is a move of the item the user knows.
namespace tl::browser {

enum class OutsideMove {
    // A known item took another name: its properties, tags and order follow.
    Move,
    // The source was never a known item (hidden, temporary, or made moments
    // ago): the target changed, or is new.
    Replacement,
    // A known item went under a hidden or temporary name: it is either
    // written anew shortly or gone, which its path tells after a while.
    SetAside,
};

OutsideMove classifyOutsideMove(const platform::FileWatchReport &report);

} // namespace tl::browser
