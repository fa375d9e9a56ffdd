#include "server/core/http_authentication_request.h"

#include <gtest/gtest.h>

using server::HTTPAuthenticationRequest;

TEST(HTTPAuthenticationRequest, ReadsCurlStyleDigest)
{
    const HTTPAuthenticationRequest a(
        "Digest username=\"Tavelle\", realm=\"r@x\", nonce=\"N1\", uri=\"/a?b=c\", cnonce=\"CN\", nc=00000001, "
        "qop=auth, response=\"abc\"");
    EXPECT_TRUE(a.isDigest());
    EXPECT_FALSE(a.isBasic());
    EXPECT_EQ(a.username(), "Tavelle");
    EXPECT_EQ(a.realm(), "r@x");
    EXPECT_EQ(a.nonce(), "N1");
    EXPECT_EQ(a.uri(), "/a?b=c");
    EXPECT_EQ(a.cnonce(), "CN");
    EXPECT_EQ(a.nc(), "00000001");
    EXPECT_EQ(a.qop(), "auth");
    EXPECT_EQ(a.response(), "abc");
}

TEST(HTTPAuthenticationRequest, ReadsNeonStyleQuotedQop)
{
    const HTTPAuthenticationRequest a("digest username=\"u\",realm=\"r\",nonce=\"n\",uri=\"/\",qop=\"auth\","
                                      "nc=00000002,cnonce=\"c\",response=\"x\",algorithm=\"MD5\"");
    EXPECT_TRUE(a.isDigest());
    EXPECT_EQ(a.qop(), "auth");
    EXPECT_EQ(a.nc(), "00000002");
}

TEST(HTTPAuthenticationRequest, NamesInsideQuotedValuesAreNotParameters)
{
    const HTTPAuthenticationRequest a("Digest username=\"u\", cnonce=\"x, nc=99999999, qop=bad\", nc=00000003, "
                                      "qop=auth, realm=\"r\", nonce=\"n\", uri=\"/\", response=\"z\"");
    EXPECT_EQ(a.cnonce(), "x, nc=99999999, qop=bad");
    EXPECT_EQ(a.nc(), "00000003");
    EXPECT_EQ(a.qop(), "auth");
}

TEST(HTTPAuthenticationRequest, ParameterNamesAreWholeNames)
{
    // "cnonce" must not be found inside "xcnonce", nor "nc" inside "cnonce".
    const HTTPAuthenticationRequest a("Digest xcnonce=\"bad\", cnonce=\"good\", nc = 00000001 , username=u");
    EXPECT_EQ(a.cnonce(), "good");
    EXPECT_EQ(a.nc(), "00000001");
    EXPECT_EQ(a.username(), "u");
}

TEST(HTTPAuthenticationRequest, UnescapesQuotedPairs)
{
    const HTTPAuthenticationRequest a(R"(Digest username="a\"b\\c")");
    EXPECT_EQ(a.username(), "a\"b\\c");
}

TEST(HTTPAuthenticationRequest, MalformedHeadersGiveNoParameters)
{
    const char *cases[] = {
        "Digest username=\"unclosed",
        "Digest username=\"u\" realm=\"r\"",    // no comma between
        "Digest username",                      // no value
        "Digest =x",                            // no name
        "Digest username=\"a\", username=\"b\"", // twice
        "Digest nc=00 000001",                  // blank inside a plain value
        "Digest username=",
    };
    for (const char *header : cases) {
        const HTTPAuthenticationRequest a(header);
        EXPECT_TRUE(a.isDigest()) << header;
        EXPECT_TRUE(a.username().isNull()) << header;
        EXPECT_TRUE(a.nc().isNull()) << header;
    }
}

TEST(HTTPAuthenticationRequest, Basic)
{
    const HTTPAuthenticationRequest a("Basic VGF2ZWxsZTpzZWNyZXQ=");
    EXPECT_TRUE(a.isBasic());
    EXPECT_FALSE(a.isDigest());
    EXPECT_EQ(a.base64Credentials(), "VGF2ZWxsZTpzZWNyZXQ=");
    EXPECT_FALSE(HTTPAuthenticationRequest("Bearer x").isBasic());
    EXPECT_FALSE(HTTPAuthenticationRequest("Digestusername=x").isDigest());
    EXPECT_FALSE(HTTPAuthenticationRequest(QString()).isDigest());
}
