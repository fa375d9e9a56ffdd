#include "../store/library_fixture.h"
#include "browser/document_list.h"
#include "browser/document_list_model.h"
#include "browser/event_bridge.h"
#include "browser/smart_books.h"
#include "foundation/events.h"
#include "foundation/path_string.h"
#include "model_test_support.h"
#include "platform/file_ops.h"
#include "store/recent_items.h"

#include <QCoreApplication>
#include <QMimeData>
#include <QPersistentModelIndex>
#include <QSignalSpy>
#include <QUrl>

namespace {

using tl::browser::DocumentListModel;
using tl::browser::TLKSDocumentListViewController;

QDateTime day(int n)
{
    return QDateTime(QDate(2020, 1, n), QTime(12, 0), Qt::UTC);
}

class DocumentListModelTest : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        book = makeFolder(inRoot("Book"));
        for (const char *name : {"b.md", "c.txt", "a.txt"})
            doc(QLatin1String(name));
        list.path = book;
        model = std::make_unique<DocumentListModel>(list);
        list.loadDisplayParameters();
        list.getDocumentsInFolder();
        checked = std::make_unique<tltest::CheckedModel>(model.get());
    }
    void TearDown() override
    {
        checked.reset();
        model.reset();
        LibraryTest::TearDown();
        EXPECT_TRUE(tltest::CheckedModel::complaints().isEmpty())
            << tltest::CheckedModel::complaints().join("\n").toStdString();
    }
    QString doc(const QString &name, int createdDay = 1)
    {
        const QString p = makeFile(book + "/" + name);
        writePlist(p + ".plist", QVariantMap{{"CreationDate", day(createdDay)}});
        return p;
    }
    QStringList shown() const
    {
        QStringList rows;
        for (int row = 0; row < model->rowCount(); ++row)
            rows << model->index(row).data().toString();
        return rows;
    }

    QString book;
    TLKSDocumentListViewController list;
    std::unique_ptr<DocumentListModel> model;
    std::unique_ptr<tltest::CheckedModel> checked;
};

TEST_F(DocumentListModelTest, HeadersAndRowsInDisplayOrderWithTheirRoles)
{
    EXPECT_EQ(shown(), (QStringList{"3 DOCUMENTS", "a", "b", "c"}));
    const QModelIndex header = model->index(0);
    EXPECT_TRUE(header.data(DocumentListModel::IsHeaderRole).toBool());
    EXPECT_FALSE(model->flags(header) & Qt::ItemIsSelectable);
    const QModelIndex a = model->indexForPath(book + "/a.txt");
    ASSERT_EQ(a.row(), 1);
    EXPECT_EQ(model->pathAt(a), book + "/a.txt");
    EXPECT_FALSE(a.data(DocumentListModel::IsHeaderRole).toBool());
    EXPECT_FALSE(a.data(DocumentListModel::PinnedRole).toBool());
    EXPECT_TRUE(a.data(DocumentListModel::DateRole).toDateTime().isValid());
    EXPECT_EQ(a.data(DocumentListModel::RecordRole).toMap().value("title"), "a.txt");
}

TEST_F(DocumentListModelTest, ANewFileIsInsertedWithoutAReset)
{
    const QPersistentModelIndex c = model->indexForPath(book + "/c.txt");
    list.documentModifiedOnDisk(doc("bb.txt"));
    EXPECT_EQ(shown(), (QStringList{"4 DOCUMENTS", "a", "b", "bb", "c"}));
    EXPECT_EQ(checked->resets, 0);
    EXPECT_EQ(checked->inserted, 1);
    EXPECT_GE(checked->changed, 1) << "the header counts anew";
    EXPECT_EQ(model->pathAt(c), book + "/c.txt");
}

TEST_F(DocumentListModelTest, NewFilesLandWhereAFreshListPutsThem)
{
    const struct
    {
        const char *order;
        bool ascending;
    } orders[] = {{"title", false}, {"creationDate", true}, {"creationDate", false}};
    int day = 0;
    for (const auto &order : orders) {
        list.sortOrder = QLatin1String(order.order);
        list.sortAscending = order.ascending;
        list.getDocumentsInFolder();
        for (const char *name : {"bb.txt", "0.txt", "z.txt"}) {
            const QString file = QString::number(day) + QLatin1String(name);
            list.documentModifiedOnDisk(doc(file, day % 3));
            ++day;
        }
        const QStringList inserted = shown();
        list.getDocumentsInFolder();
        EXPECT_EQ(shown(), inserted) << order.order << order.ascending;
    }
}

TEST_F(DocumentListModelTest, ARenamedFileTakesItsNewPlaceWithoutAReset)
{
    const QPersistentModelIndex b = model->indexForPath(book + "/b.md");
    ASSERT_TRUE(tl::platform::moveItem(book + "/a.txt", book + "/d.txt"));
    list.documentMoved(book + "/a.txt", book + "/d.txt");
    EXPECT_EQ(shown(), (QStringList{"3 DOCUMENTS", "b", "c", "d"}));
    EXPECT_EQ(checked->resets, 0);
    EXPECT_EQ(model->pathAt(b), book + "/b.md");
}

TEST_F(DocumentListModelTest, ANewSortOrderMovesRows)
{
    list.sortAscending = false;
    list.sortDocuments();
    list.rowsChanged();
    EXPECT_EQ(shown(), (QStringList{"3 DOCUMENTS", "c", "b", "a"}));
    EXPECT_EQ(checked->resets, 0);
    EXPECT_GE(checked->moved, 2);
    EXPECT_EQ(checked->inserted + checked->removed, 0);
}

TEST_F(DocumentListModelTest, TheLastRowGoesWithItsHeader)
{
    for (const char *name : {"a.txt", "b.md", "c.txt"}) {
        QFile::remove(book + "/" + name);
        list.documentDeletedFromDisk(book + "/" + name);
    }
    EXPECT_EQ(model->rowCount(), 0);
    EXPECT_EQ(checked->resets, 0);
}

TEST_F(DocumentListModelTest, AChangedRowIsReportedAsChanged)
{
    const QString a = book + "/a.txt";
    writePlist(a + ".plist", QVariantMap{{"CreationDate", day(1)}, {"cellColor", "red"}});
    list.documentModifiedOnDisk(a + ".plist");
    EXPECT_EQ(checked->resets, 0);
    EXPECT_EQ(checked->changed, 1);
    EXPECT_EQ(model->indexForPath(a).data(DocumentListModel::ColorLabelRole).toString(), "red");
}

TEST_F(DocumentListModelTest, AnotherBookResetsTheModel)
{
    const QString other = makeFolder(inRoot("Other"));
    makeFile(other + "/x.txt");
    list.handleOpenBookNotification(other, 0);
    EXPECT_EQ(checked->resets, 1);
    EXPECT_EQ(shown(), (QStringList{"DOCUMENTS", "x"}));
}

TEST_F(DocumentListModelTest, DraggedRowsCarryFileURLsAndReorderTheManualOrder)
{
    const std::unique_ptr<QMimeData> data(
        model->mimeData({model->indexForPath(book + "/a.txt"), model->index(0)}));
    ASSERT_TRUE(data);
    EXPECT_EQ(data->urls(), QList<QUrl>{QUrl::fromLocalFile(book + "/a.txt")});

    EXPECT_FALSE(model->moveRows({}, 1, 1, {}, 4)) << "only a manual order takes a drag";
    list.selectSortOrder(3);
    list.rowsChanged();
    checked->resetCounts();
    const QStringList before = shown();
    ASSERT_TRUE(model->moveRows({}, 1, 1, {}, 4));
    EXPECT_EQ(shown(), (QStringList{before[0], before[2], before[3], before[1]}));
    EXPECT_EQ(checked->moved, 1);
    const QVariantMap properties = readPlist(book + "/BookProperties.plist");
    QStringList notes;
    for (const QVariant &name : properties.value("Notes").toList())
        notes << name.toString();
    EXPECT_EQ(notes.first(), tl::path::lastComponent(model->pathAt(model->index(1))));
    EXPECT_FALSE(model->moveRows({}, 1, 1, {}, 0)) << "never above the header";
}

TEST_F(DocumentListModelTest, ASmartBookIsGatheredOffTheMainThread)
{
    for (const char *name : {"a.txt", "c.txt"})
        tl::store::tl_addToRecentItems(book + "/" + name);
    QSignalSpy loading(model.get(), &DocumentListModel::loadingChanged);
    list.smartBookType = tl::browser::RecentItems;
    list.path = QStringLiteral("Recent Items");
    model->reloadBookInBackground();
    EXPECT_TRUE(model->isLoading());
    model->waitForLoading();
    EXPECT_FALSE(model->isLoading());
    EXPECT_EQ(shown(), (QStringList{"2 DOCUMENTS", "c", "a"}));
    ASSERT_EQ(loading.size(), 2);
    EXPECT_TRUE(loading[0].at(0).toBool());
    EXPECT_FALSE(loading[1].at(0).toBool());
}

TEST_F(DocumentListModelTest, PreviewsArriveFromAWorkerWhereTheBookAsksForThem)
{
    tltest::writeFile(book + "/a.txt", "a\nfirst line\nsecond line\nthird line");
    tltest::writeFile(book + "/b.md", "b\n\nbody");
    const QModelIndex b = model->indexForPath(book + "/b.md");
    EXPECT_EQ(b.data(DocumentListModel::PreviewRole).toString(), "");
    model->waitForPreviews();
    QCoreApplication::processEvents();
    EXPECT_EQ(b.data(DocumentListModel::PreviewRole).toString(), "") << "none asked for";

    writePlist(book + "/BookProperties.plist", QVariantMap{{"showPreviewForNotes", "2"}});
    QSignalSpy changed(model.get(), &QAbstractItemModel::dataChanged);
    const QModelIndex a = model->indexForPath(book + "/a.txt");
    EXPECT_EQ(a.data(DocumentListModel::PreviewRole).toString(), "")
        << "the list is not kept waiting";
    model->waitForPreviews();
    QCoreApplication::processEvents();
    EXPECT_EQ(a.data(DocumentListModel::PreviewRole).toString(), "first line\nsecond line");
    ASSERT_EQ(changed.size(), 1);
    EXPECT_EQ(changed.first().at(0).toModelIndex(), a);
}

TEST_F(DocumentListModelTest, ABurstOfFileEventsIsOneUpdateOfTheList)
{
    tl::browser::EventBridge bridge;
    model->connectToBridge(bridge);
    const QPersistentModelIndex b = model->indexForPath(book + "/b.md");
    tl::NotificationCenter &center = tl::NotificationCenter::defaultCenter();
    // An import's news: each note from the import, then the watcher's
    // reports of the note and its properties file.
    QStringList added;
    for (const char *name : {"ab.txt", "z.txt", "0.txt", "bb.txt"}) {
        added << doc(QLatin1String(name));
        for (const QString &path : {added.last(), added.last(), added.last() + ".plist"})
            center.post(tl::events::FileModifiedOnDisk, {{"path", path}});
    }
    ASSERT_TRUE(tl::platform::moveItem(book + "/c.txt", book + "/cc.txt"));
    center.post(tl::events::FileMoved,
                {{"originalPath", book + "/c.txt"}, {"newPath", book + "/cc.txt"}});
    QCoreApplication::processEvents();
    EXPECT_EQ(checked->inserted, 0) << "delivery is queued, and the events wait for the turn's end";
    QCoreApplication::processEvents();
    EXPECT_EQ(shown(), (QStringList{"7 DOCUMENTS", "0", "a", "ab", "b", "bb", "cc", "z"}));
    EXPECT_EQ(checked->resets, 0);
    EXPECT_EQ(checked->layouts, 0);
    EXPECT_EQ(model->pathAt(b), book + "/b.md") << "a selected row stays known";
    const int updates = checked->inserted + checked->moved + checked->changed;
    list.getDocumentsInFolder();
    EXPECT_EQ(checked->inserted + checked->moved + checked->changed, updates)
        << "the list as a fresh listing makes it";
}

} // namespace

namespace {

TEST_F(DocumentListModelTest, ANewDateMovesTheRowOnlyInAListByDate)
{
    const QString a = book + "/a.txt";
    for (const char *name : {"a.txt", "b.md", "c.txt"})
        tl::platform::setModificationDate(book + "/" + name, day(2));
    list.reloadBook();
    checked->resetCounts();
    tl::platform::setModificationDate(a, day(5));
    list.documentModifiedOnDisk(a);
    EXPECT_EQ(shown(), (QStringList{"3 DOCUMENTS", "a", "b", "c"}));
    EXPECT_EQ(checked->moved, 0);
    EXPECT_EQ(checked->changed, 1);

    list.selectSortOrder(2);
    list.reloadBook();
    EXPECT_EQ(shown().last(), "a") << "newest last in ascending order";
    checked->resetCounts();
    tl::platform::setModificationDate(book + "/b.md", day(9));
    list.documentModifiedOnDisk(book + "/b.md");
    EXPECT_EQ(shown(), (QStringList{"3 DOCUMENTS", "c", "a", "b"}));
    EXPECT_EQ(checked->moved, 1);
    EXPECT_EQ(checked->resets, 0);
}

} // namespace

namespace {

TEST_F(DocumentListModelTest, AWholeNewOrderIsOneLayoutChangeThatKeepsRowsKnown)
{
    for (int n = 0; n < 80; ++n)
        doc(QStringLiteral("n%1.txt").arg(n, 2, 10, QLatin1Char('0')));
    list.reloadBook();
    const QPersistentModelIndex a = model->indexForPath(book + "/a.txt");
    ASSERT_EQ(a.row(), 1);
    checked->resetCounts();
    list.sortAscending = false;
    list.sortDocuments();
    list.rowsChanged();
    EXPECT_EQ(checked->layouts, 1);
    EXPECT_EQ(checked->moved + checked->resets, 0);
    EXPECT_EQ(a.row(), model->rowCount() - 1);
    EXPECT_EQ(model->pathAt(a), book + "/a.txt");
}

} // namespace
