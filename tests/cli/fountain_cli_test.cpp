#include "cli_support.h"
#include "support/test_environment.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace {

using tltest::runTavelle;

const char kScript[] = "Title: Brick\nAuthor: Rian\n\nINT. HOUSE - DAY #1#\n\nRain.\n\n"
                       "BRICK\n(quietly)\nHi.\n\nSTEEL ^\nYo.\n\nCUT TO:\n\n~la la";

class FountainCommand : public tltest::CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        if (IsSkipped())
            return;
        script = home + "/Brick.fountain";
        ASSERT_TRUE(tltest::writeFile(script, kScript));
    }
    QString script;
};

TEST_F(FountainCommand, ParseListsTitlePageAndElements)
{
    const auto r = runTavelle(home, {"fountain", "parse", script});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, "title: Brick\nauthors: Rian\n\nScene Heading: INT. HOUSE - DAY \n"
                     "Action: Rain.\nCharacter (dual dialogue): BRICK\nParenthetical: (quietly)\n"
                     "Dialogue: Hi.\nCharacter (dual dialogue): STEEL\nDialogue: Yo.\n"
                     "Transition: CUT TO:\nLyrics: ~la la\n");
}

TEST_F(FountainCommand, ParseAsJsonWithEitherParser)
{
    const auto r = runTavelle(home, {"--json", "fountain", "parse", "-"}, kScript);
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    const QJsonObject parsed = QJsonDocument::fromJson(r.out.toUtf8()).object();
    EXPECT_EQ(parsed["titlePage"].toArray().size(), 2);
    const QJsonObject heading = parsed["elements"].toArray().at(0).toObject();
    EXPECT_EQ(heading["type"].toString(), "Scene Heading");
    EXPECT_EQ(heading["sceneNumber"].toString(), "1");

    const auto pipeline = runTavelle(home, {"fountain", "parse", script, "--parser", "1"});
    EXPECT_TRUE(pipeline.out.contains("Action: ~la la\n")) << pipeline.out.toStdString();
}

TEST_F(FountainCommand, PagesGivesTheCountThenEachPage)
{
    const auto r = runTavelle(home, {"fountain", "pages", script});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_TRUE(r.out.startsWith("1\n1.\n  Scene Heading: INT. HOUSE - DAY \n  Action: Rain.\n"))
        << r.out.toStdString();
    const auto json = runTavelle(home, {"fountain", "pages", script, "--json"});
    const QJsonObject pages = QJsonDocument::fromJson(json.out.toUtf8()).object();
    EXPECT_EQ(pages["pageCount"].toInt(), 1);
    EXPECT_EQ(pages["pages"].toArray().at(0).toArray().size(), 9);
}

TEST_F(FountainCommand, HtmlAndRenderGiveTheScriptPage)
{
    const auto html = runTavelle(home, {"fountain", "html", script});
    ASSERT_EQ(html.exitCode, 0) << html.err.toStdString();
    EXPECT_TRUE(html.out.startsWith("<!DOCTYPE html>\n<html>\n<head>\n<style type='text/css'>\n"));
    EXPECT_TRUE(html.out.contains("<p class='page-break'>1.</p>\n"));
    EXPECT_TRUE(html.out.contains("<div class='dual-dialogue-right'>"));

    const auto render = runTavelle(home, {"render", script});
    EXPECT_EQ(render.out, html.out);
    const QString file = home + "/out.html";
    EXPECT_EQ(runTavelle(home, {"fountain", "html", script, "-o", file}).exitCode, 0);
    EXPECT_EQ(tltest::readFile(file), html.out.chopped(1).toUtf8());
}

TEST_F(FountainCommand, WriteGivesTheScriptBack)
{
    const auto r = runTavelle(home, {"fountain", "write", "-"}, "Rain.\n\nBOB\nHi.\n\nCUT TO:");
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, "Rain.\n\nBOB\nHi.\n\n> CUT TO:\n");
}

TEST_F(FountainCommand, BadArgumentsAndUnreadableScripts)
{
    EXPECT_EQ(runTavelle(home, {"fountain", "frobnicate", script}).exitCode, 2);
    EXPECT_EQ(runTavelle(home, {"fountain", "parse"}).exitCode, 2);
    const auto missing = runTavelle(home, {"fountain", "parse", home + "/None.fountain"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.err, "Cannot read " + home + "/None.fountain as UTF-8\n");
    const QString latin1 = home + "/Latin.fountain";
    ASSERT_TRUE(tltest::writeFile(latin1, "CAF\xC9"));
    EXPECT_EQ(runTavelle(home, {"fountain", "pages", latin1}).exitCode, 1);
    EXPECT_EQ(runTavelle(home, {"fountain", "--help"}).exitCode, 0);
}

} // namespace
