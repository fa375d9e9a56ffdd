// The index answers what the walk answers, on a generated library and after
// changes made behind its back.
#include "../store/library_fixture.h"
#include "search/search_index.h"
#include "search/search_walk.h"
#include "search/sqlite_database.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRandomGenerator>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using tl::search::Field;
using tl::search::Query;

const QStringList kWords{"organ",  "organiser", "Éclair",  "eclair", "naïve", "NAIVE",
                         "shelf",  "book",      "brûlée",  "plan",   "plans", "river",
                         "rivers", "Straße",    "strasse", "x1",     "über",  "uber"};

class IndexVersusWalk : public tltest::LibraryTest
{
protected:
    QRandomGenerator random{20261124};

    QString word() { return kWords[random.bounded(int(kWords.size()))]; }
    QString words(int count)
    {
        QStringList list;
        for (int i = 0; i < count; ++i)
            list << word();
        return list.join(random.bounded(3) == 0 ? ", " : " ");
    }

    QString documentName()
    {
        static const char *const kinds[] = {".md", ".txt", ".html", ".png"};
        return words(2) + QString::number(random.bounded(1000)) + kinds[random.bounded(4)];
    }

    void writeDocument(const QString &path)
    {
        const QString text = words(12);
        if (path.endsWith(".html"))
            makeFile(path, ("<html><body><p>" + text + "</p></body></html>").toUtf8());
        else
            makeFile(path, text.toUtf8());
        if (random.bounded(3) == 0)
            writePlist(path + ".plist", QVariantMap{{"Note", words(3)}});
    }

    void generate(int books, int documentsPerBook)
    {
        for (int b = 0; b < books; ++b) {
            const QString book = makeFolder(inRoot(words(1) + " " + QString::number(b)));
            writePlist(book + "/BookProperties.plist", QVariantMap{{"Note", words(2)}});
            for (int d = 0; d < documentsPerBook; ++d)
                writeDocument(book + "/" + documentName());
        }
    }

    QStringList allFiles() const
    {
        QStringList files;
        QDirIterator it(root_, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext())
            files << it.next();
        files.sort();
        return files;
    }

    QStringList books() const
    {
        QStringList list;
        for (const QFileInfo &info : QDir(root_).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot))
            list << info.filePath();
        return list;
    }

    QList<Query> queries()
    {
        QList<Query> list;
        for (const Field field : {Field::NameOrContent, Field::Name, Field::Content})
            for (int i = 0; i < 12; ++i) {
                QString first = word();
                first.truncate(1 + random.bounded(int(first.size())));
                QStringList terms{first};
                if (i % 3 == 0)
                    terms << word();
                if (i % 4 == 1)
                    terms << word() + " " + word().left(2);
                list << Query{terms, field};
            }
        return list;
    }

    void expectSameAnswers(tl::search::SearchIndex &index)
    {
        for (const Query &query : queries())
            for (const QString &scope : {root_, books().first()}) {
                QStringList byIndex = index.search(query, scope);
                QStringList byWalk = tl::search::walkSearch(query, scope);
                byIndex.sort();
                byWalk.sort();
                EXPECT_EQ(byIndex, byWalk)
                    << query.terms.join("|") << " field " << int(query.field) << " in " << scope;
            }
    }

    QString indexFile() const { return home_ + "/index/SearchIndex.sqlite"; }
};

TEST_F(IndexVersusWalk, AnswerAlikeOnAGeneratedLibrary)
{
    generate(4, 25);
    tl::search::SearchIndex index(root_, indexFile());
    ASSERT_TRUE(index.bringUpToDate());
    expectSameAnswers(index);
}

TEST_F(IndexVersusWalk, AnswerAlikeAfterChangesBehindTheIndexsBack)
{
    generate(4, 25);
    {
        tl::search::SearchIndex index(root_, indexFile());
        ASSERT_TRUE(index.bringUpToDate());
    }
    QStringList files = allFiles();
    for (int i = 0; i < 15; ++i)
        writeDocument(files[random.bounded(int(files.size()))]);
    for (int i = 0; i < 10; ++i) {
        const QString from = files.takeAt(random.bounded(int(files.size())));
        QFile::rename(from, from.section('/', 0, -2) + "/" + documentName());
    }
    for (int i = 0; i < 10; ++i)
        QFile::remove(files.takeAt(random.bounded(int(files.size()))));
    QDir(books().first()).removeRecursively();
    QDir().rename(books().last(), books().last() + " renamed");
    writeDocument(inRoot("New book/" + documentName()));

    tl::search::SearchIndex index(root_, indexFile());
    ASSERT_TRUE(index.bringUpToDate());
    expectSameAnswers(index);
}

TEST_F(IndexVersusWalk, FollowsItemsItIsToldAbout)
{
    generate(2, 10);
    tl::search::SearchIndex index(root_, indexFile());
    ASSERT_TRUE(index.bringUpToDate());
    expectSameAnswers(index);
    const QString book = books().first();
    const QString renamed = book + " moved";
    QDir().rename(book, renamed);
    index.refreshItem(book);
    index.refreshItem(renamed);
    const QString added = inRoot(documentName());
    writeDocument(added);
    index.refreshItem(added);
    index.refreshItem(added + ".plist");
    expectSameAnswers(index);
}

TEST_F(IndexVersusWalk, AnIndexMostlyWrittenAgainSinceItsBuildIsBuiltAnew)
{
    generate(1, 10);
    tl::search::SearchIndex index(root_, indexFile());
    ASSERT_TRUE(index.bringUpToDate());
    const auto fileNumber = [this] {
        struct stat st
        {
        };
        return ::stat(QFile::encodeName(indexFile()).constData(), &st) == 0 ? st.st_ino : 0;
    };
    const ino_t built = fileNumber();
    // Every file of the book written again: most of the items.
    QDirIterator documents(books().first(), QDir::Files);
    while (documents.hasNext()) {
        QFile document(documents.next());
        ASSERT_TRUE(document.open(QIODevice::Append));
        document.write(" plans");
    }
    ASSERT_TRUE(index.bringUpToDate());
    EXPECT_EQ(fileNumber(), built);
    ASSERT_TRUE(index.bringUpToDate());
    EXPECT_NE(fileNumber(), built);
    expectSameAnswers(index);
}

void overwriteHead(const QString &path)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.write(QByteArray(4096, 'x'));
}

// Whatever befalls either file between two runs, the index is built anew
// rather than trusted.
TEST_F(IndexVersusWalk, DamagedOrMismatchedFilesAreBuiltAnew)
{
    generate(3, 10);
    const QString words = indexFile() + "-words";
    const QString aside = home_ + "/words of another build";
    {
        tl::search::SearchIndex index(root_, indexFile());
        ASSERT_TRUE(index.bringUpToDate());
    }
    ASSERT_TRUE(QFile::copy(words, aside));
    // The put-aside words no longer fit the library.
    for (const QString &file : allFiles().mid(0, 12))
        ASSERT_TRUE(QFile::remove(file));
    const std::pair<const char *, std::function<void()>> mishaps[] = {
        {"items damaged", [&] { overwriteHead(indexFile()); }},
        {"words damaged", [&] { overwriteHead(words); }},
        {"words gone", [&] { QFile::remove(words); }},
        {"words of another build",
         [&] {
             QFile::remove(words);
             QFile::copy(aside, words);
         }},
    };
    for (const auto &[what, befall] : mishaps) {
        SCOPED_TRACE(what);
        {
            tl::search::SearchIndex index(root_, indexFile());
            ASSERT_TRUE(index.rebuild());
        }
        befall();
        tl::search::SearchIndex index(root_, indexFile());
        ASSERT_TRUE(index.bringUpToDate());
        expectSameAnswers(index);
    }
}

TEST_F(IndexVersusWalk, AnIndexOfAnotherShapeIsBuiltAnew)
{
    generate(2, 10);
    QDir().mkpath(home_ + "/index");
    {
        tl::search::detail::Database older;
        ASSERT_TRUE(older.open(indexFile()));
        ASSERT_TRUE(older.exec("CREATE TABLE items(id INTEGER PRIMARY KEY, path TEXT); "
                               "CREATE VIRTUAL TABLE built USING fts5(words, tokenize = 'ascii'); "
                               "PRAGMA user_version = 4"));
    }
    tl::search::SearchIndex index(root_, indexFile());
    ASSERT_TRUE(index.bringUpToDate());
    expectSameAnswers(index);
}

// What a build cut short left goes once its process is gone; a build still
// running in another process is left alone.
TEST_F(IndexVersusWalk, ABuildCutShortLeavesNothingTrusted)
{
    generate(2, 10);
    QDir().mkpath(home_ + "/index");
    const QString gone = QString::number(std::numeric_limits<int>::max());
    const QString running = QString::number(::getppid());
    const std::pair<QString, bool> leftOvers[] = {
        {".building", true},
        {".building-words", true},
        {".building-" + gone, true},
        {".building-" + gone + "-words", true},
        {".building-" + running, false},
    };
    for (const auto &[suffix, goes] : leftOvers) {
        QFile leftOver(indexFile() + suffix);
        ASSERT_TRUE(leftOver.open(QIODevice::WriteOnly));
        leftOver.write(QByteArray(4096, 'x'));
    }
    tl::search::SearchIndex index(root_, indexFile());
    ASSERT_TRUE(index.bringUpToDate());
    expectSameAnswers(index);
    for (const auto &[suffix, goes] : leftOvers)
        EXPECT_EQ(QFile::exists(indexFile() + suffix), !goes) << suffix.toStdString();
}

} // namespace
