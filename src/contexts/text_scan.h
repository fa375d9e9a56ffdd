#pragma once

#include <QString>
#include <atomic>
#include <functional>

// The scan of existing documents for context words, asked for from the
// preferences: every editable document of the library gives its words to
// its item.
namespace tl::contexts {

// The text a document offers the scan: plain text as it is; HTML only when
// this program wrote it, its links, images, scripts and embeddings removed
// and the rest turned into plain text; anything else nothing.
QString scannableText(const QString &path);

struct ScanResult
{
    int documents = 0;
    bool stopped = false;
};
// Progress goes from 0 to 100; the scan stops between files once `stop` is
// set.
ScanResult extractContextsFromDocuments(const std::atomic_bool &stop,
                                        const std::function<void(double)> &progress = {});

} // namespace tl::contexts
