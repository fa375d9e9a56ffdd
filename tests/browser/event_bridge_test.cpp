#include "browser/event_bridge.h"
#include "foundation/events.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QThread>
#include <gtest/gtest.h>
#include <thread>

namespace {

using tl::browser::EventBridge;

void post(const char *name, const QVariantMap &payload = {})
{
    tl::NotificationCenter::defaultCenter().post(QLatin1String(name), payload);
}

TEST(EventBridge, EventsBecomeTypedSignalsAfterThePostersCall)
{
    EventBridge bridge;
    QSignalSpy moved(&bridge, &EventBridge::fileMoved);
    QSignalSpy book(&bridge, &EventBridge::newBookSelected);
    QSignalSpy document(&bridge, &EventBridge::newDocumentSelected);
    QSignalSpy selected(&bridge, &EventBridge::itemsSelected);
    QSignalSpy any(&bridge, &EventBridge::eventPosted);
    post(tl::events::FileMoved, {{"originalPath", "/a"}, {"newPath", "/b"}, {"silentReload", "1"}});
    post(tl::events::NewBookSelected, {{"path", "work"}, {"smartType", 1}});
    post(tl::events::NewDocumentSelected, {{"path", "/d.md"}, {"searchkey", "word"}});
    post(tl::events::ItemsSelectedInOutlineOrList, {{"paths", QStringList{"/x", "/y"}}});
    post("SomethingElseNotification");
    EXPECT_EQ(any.size(), 0) << "nothing runs inside the poster's call";
    QCoreApplication::processEvents();
    ASSERT_EQ(moved.size(), 1);
    EXPECT_EQ(moved[0], (QVariantList{"/a", "/b", true}));
    ASSERT_EQ(book.size(), 1);
    EXPECT_EQ(book[0], (QVariantList{"work", 1}));
    ASSERT_EQ(document.size(), 1);
    EXPECT_EQ(document[0], (QVariantList{"/d.md", "word"}));
    ASSERT_EQ(selected.size(), 1);
    EXPECT_EQ(selected[0].at(0).toStringList(), (QStringList{"/x", "/y"}));
    EXPECT_EQ(any.size(), 5);
    EXPECT_EQ(any.last().at(0).toString(), "SomethingElseNotification");
}

TEST(EventBridge, EventsFromWorkersArriveOnTheBridgesThread)
{
    EventBridge bridge;
    QThread *deliveredOn = nullptr;
    QString path;
    QObject receiver;
    QObject::connect(&bridge, &EventBridge::fileModifiedOnDisk, &receiver, [&](const QString &p) {
        deliveredOn = QThread::currentThread();
        path = p;
    });
    std::thread worker([] { post(tl::events::FileModifiedOnDisk, {{"path", "/w"}}); });
    worker.join();
    QCoreApplication::processEvents();
    EXPECT_EQ(deliveredOn, QCoreApplication::instance()->thread());
    EXPECT_EQ(path, "/w");
}

TEST(EventBridge, AReceiverThatIsGoneIsNotCalled)
{
    EventBridge bridge;
    int calls = 0;
    auto receiver = std::make_unique<QObject>();
    QObject::connect(&bridge, &EventBridge::saveCurrentDocument, receiver.get(),
                     [&calls] { ++calls; });
    post(tl::events::SaveCurrentDocument);
    receiver.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(calls, 0);
}

TEST(EventBridge, ABridgeThatIsGoneDeliversNothing)
{
    int calls = 0;
    {
        EventBridge bridge;
        QObject::connect(&bridge, &EventBridge::eventPosted, [&calls] { ++calls; });
        post(tl::events::SaveCurrentDocument);
    }
    QCoreApplication::processEvents();
    post(tl::events::SaveCurrentDocument);
    QCoreApplication::processEvents();
    EXPECT_EQ(calls, 0);
}

} // namespace
