#include "cli_support.h"
#include "support/test_environment.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {

using RecognitionCommands = tltest::CommandTest;

TEST_F(RecognitionCommands, LocationPrintsTheTextOrOneLineWhy)
{
    ASSERT_TRUE(tltest::writeFile(home + "/Note.md", "Note\n"));
    const struct
    {
        QStringList arguments;
        int exitCode;
        QString out;
    } cases[] = {
        {{"?ll=1.5,-74.006&acc=9", "--markdown"},
         0,
         "Coordinates (9m): [1.500000°N 074.006000°W](https://maps.google.com/"
         "?ll=1.500000,-74.006000)\n"},
        {{"?ll=1.5,-74.006", "--markdown", "--document", home + "/Note.md"},
         0,
         "Coordinates: [1.500000°N 074.006000°W](https://maps.google.com/?ll=1.500000,-74.006000)"
         " ![](TLImages/1.500000%C2%B0N074.006000%C2%B0W.png)\n"},
        {{"?ll=0,0"}, 1, ""},
        {{"?ll=1,2", "--document", home + "/Missing.md"}, 1, ""},
        {{}, 2, ""},
    };
    for (const auto &c : cases) {
        const auto r = tltest::runTavelle(home, QStringList{"location"} + c.arguments);
        SCOPED_TRACE(c.arguments.join(u' ').toStdString());
        EXPECT_EQ(r.exitCode, c.exitCode) << r.err.toStdString();
        EXPECT_EQ(r.out, c.out);
        EXPECT_EQ(r.err.count(u'\n'), c.exitCode ? 1 : 0);
    }
    EXPECT_TRUE(QFile::exists(home + "/TLImages/1.500000°N074.006000°W.png"));
}

TEST_F(RecognitionCommands, TranscribeRefusesWhatItCannotRead)
{
    ASSERT_TRUE(tltest::writeFile(home + "/memo.m4a", "not sound"));
    const struct
    {
        QStringList arguments;
        int exitCode;
    } cases[] = {
        {{home + "/missing.m4a"}, 1},
        {{home + "/memo.m4a", "--locale", "xx-YY"}, 1},
        {{home + "/memo.m4a", "--locale", "en-US"}, 1},
        {{}, 2},
    };
    for (const auto &c : cases) {
        const auto r = tltest::runTavelle(home, QStringList{"transcribe"} + c.arguments);
        EXPECT_EQ(r.exitCode, c.exitCode) << r.err.toStdString();
        EXPECT_EQ(r.err.count(u'\n'), 1);
    }
    EXPECT_FALSE(QFile::exists(home + "/memo transcript.md"));
}

} // namespace
