#pragma once

#include "../store/library_fixture.h"
#include "browser/document_view_controller.h"
#include "convert/html_to_text.h"
#include "convert/store_registration.h"
#include "foundation/notification_center.h"
#include "foundation/scheduler.h"
#include "platform/alerts.h"
#include "platform/file_ops.h"
#include "store/text_conversions.h"
#include "support/event_recorder.h"

#include <QSignalSpy>
#include <memory>

namespace tltest {

// A library with a book, the conversions registered, a manual clock, a
// headless alert presenter that records, and a document view controller.
class DocumentViewTest : public LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        tl::convert::registerConversionsWithStore();
        tl::store::textConversions().htmlToPlainText = [](const QString &html) {
            return tl::convert::tl_htmlToPlainText(html);
        };
        alerts = std::make_shared<tl::platform::HeadlessAlertPresenter>();
        tl::platform::setAlertPresenter(alerts);
        clock = &useManualClock(QDateTime(QDate(2024, 5, 6), QTime(7, 8, 9), Qt::UTC));
        book = makeFolder(inRoot("Book"));
        view = std::make_unique<tl::browser::TLKSDocumentViewController>();
    }
    void TearDown() override
    {
        view.reset();
        tl::platform::setAlertPresenter(nullptr);
        LibraryTest::TearDown();
    }

    // A document whose file is dated far back, so any write shows.
    QString document(const QString &name, const QByteArray &bytes)
    {
        const QString path = makeFile(book + "/" + name, bytes);
        tl::platform::setModificationDate(path, oldDate());
        return path;
    }
    QDateTime dateOf(const QString &path) const
    {
        return tl::platform::modificationDate(path).value_or(QDateTime());
    }
    void show(const QString &path)
    {
        view->path = path;
        view->showDocument();
    }
    // Lets time pass and runs the timers that came due.
    void advance(double seconds)
    {
        clock->advance(seconds);
        tl::Scheduler::main().runDue();
    }
    void type(const QString &text, bool caretLineHasText = true)
    {
        ASSERT_TRUE(view->textShouldBeginEditing());
        view->textDidChange(text, caretLineHasText);
    }
    QStringList namesInBook() const
    {
        return QDir(book).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    std::shared_ptr<tl::platform::HeadlessAlertPresenter> alerts;
    tl::ManualClock *clock = nullptr;
    QString book;
    std::unique_ptr<tl::browser::TLKSDocumentViewController> view;
};

} // namespace tltest
