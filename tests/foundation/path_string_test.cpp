#include "foundation/path_string.h"

#include <gtest/gtest.h>

namespace {

struct PathCase
{
    QString path;
    QString last;
    QString parent;
    QString extension;
    QString withoutExtension;
};

TEST(PathString, ComponentsAndExtensionsFollowTheClassicRules)
{
    const PathCase cases[] = {
        {"/tmp/scratch.tiff", "scratch.tiff", "/tmp", "tiff", "/tmp/scratch"},
        {"/tmp/lock/", "lock", "/tmp", "", "/tmp/lock"},
        {"/tmp", "tmp", "/", "", "/tmp"},
        {"/", "/", "/", "", "/"},
        {"scratch.tiff", "scratch.tiff", "", "tiff", "scratch"},
        {"/a/.hidden", ".hidden", "/a", "", "/a/.hidden"},
        {"/a/.config.json", ".config.json", "/a", "json", "/a/.config"},
        {"/a/b.c/Report #2", "Report #2", "/a/b.c", "", "/a/b.c/Report #2"},
        {"/a/Doc.md#Heading", "Doc.md#Heading", "/a", "md#Heading", "/a/Doc"},
        {"", "", "", "", ""},
    };
    for (const PathCase &c : cases) {
        SCOPED_TRACE(c.path.toStdString());
        EXPECT_EQ(tl::path::lastComponent(c.path), c.last);
        EXPECT_EQ(tl::path::deletingLastComponent(c.path), c.parent);
        EXPECT_EQ(tl::path::extension(c.path), c.extension);
        EXPECT_EQ(tl::path::deletingExtension(c.path), c.withoutExtension);
    }
}

TEST(PathString, AppendingJoinsWithOneSlash)
{
    EXPECT_EQ(tl::path::appendingComponent("/tmp", "x"), "/tmp/x");
    EXPECT_EQ(tl::path::appendingComponent("/tmp/", "x"), "/tmp/x");
    EXPECT_EQ(tl::path::appendingComponent("/", "x"), "/x");
    EXPECT_EQ(tl::path::appendingComponent("/", "/Book/Doc.md"), "/Book/Doc.md");
    EXPECT_EQ(tl::path::appendingComponent("", "x"), "x");
    EXPECT_EQ(tl::path::appendingExtension("/a/Doc.md", "plist"), "/a/Doc.md.plist");
}

TEST(PathString, ComponentsRoundTrip)
{
    EXPECT_EQ(tl::path::components("/tmp/scratch"), QStringList({"/", "tmp", "scratch"}));
    EXPECT_EQ(tl::path::components("tmp/scratch/"), QStringList({"tmp", "scratch", "/"}));
    EXPECT_TRUE(tl::path::components("").isEmpty());
    EXPECT_EQ(tl::path::joinedComponents({"/", "tmp", "scratch"}), "/tmp/scratch");
}

} // namespace
