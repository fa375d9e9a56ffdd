#include "cli_support.h"
#include "support/test_environment.h"

#include <QDir>
#include <QFileInfo>
#include <gtest/gtest.h>

namespace {

using tltest::runTavelle;

class PasteAndShareCommands : public tltest::CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        if (IsSkipped())
            return;
        QDir().mkpath(library + "/Book");
    }
};

TEST_F(PasteAndShareCommands, StandardInputIsPastedAsItsType)
{
    const struct
    {
        QStringList args;
        QByteArray input;
        int exitCode;
        QString out; // below the library
    } cases[] = {
        {{"paste", "Book", "--from-stdin", "text/plain"},
         "Shopping\nmilk",
         0,
         "/Book/Shopping.txt"},
        {{"paste", "Book", "--from-stdin", "image/png"}, "png", 0, "/Book/Pasteboard.png"},
        {{"paste", "Book", "--from-stdin", "image/gif"}, "gif", 2, ""},
        {{"paste", "Elsewhere", "--from-stdin", "text/plain"}, "x", 1, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        QStringList args = c.args;
        args[1] = library + "/" + args[1];
        const auto r = run(args, c.input);
        EXPECT_EQ(r.exitCode, c.exitCode) << r.err.toStdString();
        EXPECT_EQ(r.out.toStdString(),
                  (c.out.isEmpty() ? QString() : library + c.out + "\n").toStdString());
        EXPECT_EQ(r.err.isEmpty(), c.exitCode == 0);
    }
}

TEST_F(PasteAndShareCommands, SharedMaterialWaitsUntilTakenIn)
{
    ASSERT_TRUE(tltest::writeFile(home + "/scan.pdf", "pdf"));
    ASSERT_TRUE(tltest::writeFile(home + "/README", "x"));
    const QString shared = home + "/.local/share/com.tavelle.app/SharedItems";
    auto r = run({"share", home + "/scan.pdf", home + "/README", "--into", library + "/Book"});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, shared + "/Book/scan.pdf\n");
    EXPECT_EQ(r.err, "Cannot share " + home + "/README: it has no extension\n");

    r = run({"share", "--now", "-"}, "Call Ann\nabout the trip");
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, library + "/Book/scan.pdf\n" + library + "/Call Ann.html\n");
    EXPECT_TRUE(QFileInfo::exists(home + "/scan.pdf"));
}

} // namespace
