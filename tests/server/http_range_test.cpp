#include "server/core/http_range.h"

#include <gtest/gtest.h>

using server::ByteRange;
using server::parseRangeRequest;

TEST(HTTPRange, ReadsEveryForm)
{
    struct Case
    {
        const char *header;
        std::vector<ByteRange> ranges;
    } cases[] = {
        {"bytes=0-9", {{0, 10}}},
        {"bytes=5", {{5, 1}}},
        {"bytes=90-", {{90, 10}}},
        {"bytes=-10", {{90, 10}}},
        {"bytes=-100", {{0, 100}}},
        {"BYTES = 1-1", {{1, 1}}},
        {"bytes=50-59, 0-9", {{0, 10}, {50, 10}}}, // sorted by start
        {"bytes=0-4,5-9", {{0, 5}, {5, 5}}},      // touching is no overlap
        {"bytes=99-99", {{99, 1}}},
    };
    for (const Case &c : cases) {
        const auto got = parseRangeRequest(c.header, 100);
        ASSERT_TRUE(got) << c.header;
        EXPECT_EQ(*got, c.ranges) << c.header;
    }
}

TEST(HTTPRange, UnusableHeadersCountAsAbsent)
{
    const char *cases[] = {
        "bytes=-0",      // empty suffix range
        "bytes=100-",    // start beyond the end
        "bytes=0-100",   // end beyond the end
        "bytes=9-5",     // backwards
        "bytes=100",     // single byte beyond the end
        "bytes=-101",    // suffix longer than the body
        "bytes=0-9,5-6", // overlap
        "bytes=0-9,9",   // overlap at one byte
        "items=0-9",     // wrong unit
        "bytes",         // no "="
        "bytes=",        // nothing
        "bytes=a-b",     // not numbers
        "bytes=0-9,",    // empty element
        "bytes=--1",
        "bytes=1-2-3",
        "bytes=+1-2",
        "bytes=99999999999999999999-",
    };
    for (const char *header : cases)
        EXPECT_FALSE(parseRangeRequest(header, 100)) << header;
    EXPECT_FALSE(parseRangeRequest("bytes=-0", 0));
    EXPECT_FALSE(parseRangeRequest("bytes=0-", 0));
}

TEST(HTTPRange, NumberReaders)
{
    EXPECT_EQ(server::parseUInt64(u"18446744073709551615"), UINT64_MAX);
    EXPECT_FALSE(server::parseUInt64(u"18446744073709551616"));
    EXPECT_FALSE(server::parseUInt64(u" 1"));
    EXPECT_FALSE(server::parseUInt64(u""));
    EXPECT_EQ(server::parseHex64(u"ffffffffffffffff"), UINT64_MAX);
    EXPECT_FALSE(server::parseHex64(u"10000000000000000"));
    EXPECT_EQ(server::parseHex64(u"00000001"), 1u);
    EXPECT_FALSE(server::parseHex64(u"1g"));
}
