#include "library_fixture.h"
#include "store/log.h"

#include <QFile>

namespace {

using PlainLog = tltest::LibraryTest;

TEST_F(PlainLog, LinesGoToTheLibraryLogOnlyWhileItExists)
{
    const QString log = inRoot("TLMacLog.txt");
    tl::logLine("nobody hears this");
    EXPECT_FALSE(QFile::exists(log));
    EXPECT_FALSE(tl::plainLogEnabled());

    makeFile(log, "");
    EXPECT_TRUE(tl::plainLogEnabled());
    tl::logLine("init and setup");
    tl::logLine("Adding to recentItems: /Doc.md");
    const QString text = QString::fromUtf8(tltest::readFile(log));
    EXPECT_TRUE(text.contains("init and setup\n"));
    EXPECT_TRUE(text.endsWith("Adding to recentItems: /Doc.md\n"));
    EXPECT_EQ(text.count('\n'), 2);

    // Deleted and made again: the new file receives the next line.
    ASSERT_TRUE(QFile::remove(log));
    tl::logLine("lost on purpose");
    makeFile(log, "");
    tl::logLine("back again");
    EXPECT_TRUE(QString::fromUtf8(tltest::readFile(log)).endsWith("back again\n"));
    EXPECT_FALSE(QString::fromUtf8(tltest::readFile(log)).contains("lost on purpose"));
}

} // namespace
