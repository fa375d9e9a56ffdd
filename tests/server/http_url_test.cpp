#include "server/core/http_url.h"

#include <gtest/gtest.h>

using namespace server;

TEST(HTTPURL, SplitsTheGenericForms)
{
    const URLParts full = splitURL("http://host:8080/a/b?q=1#frag");
    EXPECT_EQ(full.scheme, "http");
    EXPECT_EQ(full.authority, "host:8080");
    EXPECT_EQ(full.path, "/a/b");
    EXPECT_EQ(full.query, "q=1");
    EXPECT_EQ(full.fragment, "frag");

    const URLParts origin = splitURL("/a/b?q");
    EXPECT_TRUE(origin.scheme.isNull());
    EXPECT_TRUE(origin.authority.isNull());
    EXPECT_EQ(origin.path, "/a/b");
    EXPECT_EQ(origin.query, "q");
    EXPECT_TRUE(origin.fragment.isNull());

    EXPECT_EQ(splitURL("a:b/c").scheme, "a");
    EXPECT_TRUE(splitURL("/x:y").scheme.isNull()); // a colon after "/" is path
    EXPECT_EQ(splitURL("//h/p").authority, "h");
    EXPECT_EQ(splitURL("*").path, "*");
}

TEST(HTTPURL, PercentDecodesUTF8)
{
    EXPECT_EQ(percentDecode("a%20b"), QString("a b"));
    EXPECT_EQ(percentDecode("%C3%A9t%c3%a9"), QString::fromUtf8("\xc3\xa9t\xc3\xa9"));
    EXPECT_EQ(percentDecode("%2F"), QString("/"));
    EXPECT_FALSE(percentDecode("%"));
    EXPECT_FALSE(percentDecode("%4"));
    EXPECT_FALSE(percentDecode("%zz"));
    EXPECT_FALSE(percentDecode("%ff"));  // no UTF-8
    EXPECT_FALSE(percentDecode("%00"));
    EXPECT_FALSE(percentDecode("%C3")); // cut sequence
}

TEST(HTTPURL, RelativePathDropsQueryAndFinalSlash)
{
    EXPECT_EQ(urlRelativePath("/a/b/?x"), QString("/a/b"));
    EXPECT_EQ(urlRelativePath("/"), QString("/"));
    EXPECT_EQ(urlRelativePath("http://h/x%20y"), QString("/x y"));
    EXPECT_EQ(urlRelativePath(""), QString(""));
}

TEST(HTTPURL, StandardizesLexically)
{
    struct Case
    {
        const char *in;
        const char *out;
    } cases[] = {
        {"/a/b/../c", "/a/c"},   {"/a/./b//c/", "/a/b/c"}, {"/../..", "/"},  {"/a/..", "/"},
        {"/", "/"},              {"//", "/"},               {"a/../..", ".."}, {"a/./b", "a/b"},
        {"/a/b/../../../c", "/c"}, {"/.../x", "/.../x"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(standardizePath(c.in), QString(c.out)) << c.in;
}

TEST(HTTPURL, AppendsOneSlash)
{
    EXPECT_EQ(appendPathComponent("/root", "a"), "/root/a");
    EXPECT_EQ(appendPathComponent("/root/", "/a"), "/root/a");
    EXPECT_EQ(appendPathComponent("/root", "/a"), "/root/a");
    EXPECT_EQ(appendPathComponent("/root", ""), "/root");
}
