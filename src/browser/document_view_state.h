#pragma once

#include "browser/document_kinds.h"
#include "browser/document_view_controller.h"
#include "foundation/notification_center.h"
#include "store/open_documents.h"

#include <memory>
#include <vector>

// What the document view's controller keeps beyond its public fields; shared
// by its source files only.
namespace tl::browser {

struct TLKSDocumentViewController::State
{
    ViewDecision decision;
    // Marks the document as on screen, so moves of it wait for the view.
    std::unique_ptr<store::OpenDocumentSession> session;
    // The plain text as loaded, hashed when editing begins.
    QString loadedText;
    // The formatted view's latest inner and whole HTML.
    QString innerHTML;
    QString outerHTML;
    std::vector<std::unique_ptr<ScopedObserver>> observers;
    // Gone with the controller: news from a worker queued for the main
    // thread before then finds no one.
    std::shared_ptr<bool> alive = std::make_shared<bool>(true);
};

// Properties whose change on disk changes how the document shows.
QVariantMap relevantInheritedProperties(const QString &path);

} // namespace tl::browser
