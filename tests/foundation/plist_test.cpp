#include "foundation/plist.h"

#include <QDateTime>
#include <QStringList>
#include <QUrl>
#include <QVariantHash>
#include <QVariantList>
#include <QVariantMap>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

using tl::plist::parse;
using tl::plist::toBinary;
using tl::plist::toXml;

const QByteArray kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                           "<plist version=\"1.0\">\n";

QDateTime utc(int y, int mo, int d, int h = 0, int mi = 0, int s = 0, int ms = 0)
{
    return QDateTime(QDate(y, mo, d), QTime(h, mi, s, ms), Qt::UTC);
}

QByteArray bytesOf(int count)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i)
        bytes.append(static_cast<char>(i * 37 + 11));
    return bytes;
}

// The XML body of a value, header and closing tag stripped.
QByteArray xmlBody(const QVariant &value)
{
    QByteArray xml = toXml(value);
    if (!xml.startsWith(kHeader) || !xml.endsWith("</plist>\n"))
        return "<malformed envelope>";
    return xml.mid(kHeader.size(), xml.size() - kHeader.size() - 9);
}

struct RoundTrip
{
    const char *name;
    QVariant value;
};

std::vector<RoundTrip> roundTrips()
{
    QVariantMap nested;
    nested["list"] = QVariantList{1, "two", 3.5, QVariantList{}, QVariantMap{}};
    nested["inner"] = QVariantMap{{"deeper", QVariantMap{{"x", false}, {"y", -2}}}};
    nested["when"] = utc(2022, 2, 28, 23, 59, 59);
    nested["blob"] = bytesOf(100);
    return {
        {"string", QString("plain")},
        {"escaping", QString("a < b & c > d \"q\" 'a'")},
        {"unicode", QString::fromUtf8("Gr\xC3\xBC\xC3\x9F"
                                      "e \xE2\x9C\x93 \xF0\x9D\x84\x9E")},
        {"true", true},
        {"integer", qint64(42)},
        {"negative one", qint64(-1)},
        {"negative", qint64(-123456789012)},
        {"int64 max", std::numeric_limits<qint64>::max()},
        {"int64 min", std::numeric_limits<qint64>::min()},
        {"real", 1.5},
        {"tenth", 0.1},
        {"negative real", -2.25},
        {"tiny real", 5e-324},
        {"real zero", 0.0},
        {"infinity", std::numeric_limits<double>::infinity()},
        {"date", utc(2020, 6, 1, 12, 34, 56)},
        {"before 1970", utc(1969, 7, 20, 20, 17, 40)},
        {"before 1901", utc(1900, 1, 1)},
        {"after 2038", utc(2100, 1, 1, 0, 0, 1)},
        {"year one", utc(1, 1, 1)},
        {"empty data", QByteArray()},
        {"data", QByteArray("\x00\x01\xff", 3)},
        {"long data", bytesOf(300)},
        {"empty dict", QVariantMap()},
        {"empty array", QVariantList()},
        {"nested", nested},
    };
}

TEST(PlistTest, RoundTripKeepsEveryType)
{
    for (const RoundTrip &c : roundTrips()) {
        SCOPED_TRACE(c.name);
        const QByteArray xml = toXml(c.value);
        const QByteArray binary = toBinary(c.value);
        ASSERT_TRUE(xml.startsWith("<?xml"));
        ASSERT_TRUE(binary.startsWith("bplist00"));
        for (const QByteArray &bytes : {xml, binary}) {
            const auto back = parse(bytes);
            ASSERT_TRUE(back.has_value());
            EXPECT_EQ(back->typeId(), c.value.typeId());
            EXPECT_EQ(*back, c.value);
        }
        // Byte-stable: writing what was read gives the same bytes.
        EXPECT_EQ(toXml(*parse(xml)), xml);
    }
}

TEST(PlistTest, ControlCharactersXmlCannotHoldAreLeftOutNotTheFile)
{
    const QVariantMap value{{QString::fromUtf8("Ti\0tle", 6),
                             QStringLiteral("a") + QChar(1) + QStringLiteral("b\tc") + QChar(0)},
                            {"Other", "kept"}};
    const auto back = parse(toXml(value));
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(*back, (QVariantMap{{"Title", "ab\tc"}, {"Other", "kept"}}));
}

TEST(PlistTest, BinaryKeepsMillisecondsXmlKeepsSeconds)
{
    const QDateTime date = utc(2019, 12, 31, 23, 59, 58, 750);
    const auto fromBinary = parse(toBinary(date));
    ASSERT_TRUE(fromBinary.has_value());
    EXPECT_EQ(fromBinary->toDateTime(), date);
    EXPECT_EQ(fromBinary->toDateTime().timeSpec(), Qt::UTC);

    // Before the reference date the fraction counts the other way.
    for (const QDateTime &early :
         {utc(1999, 12, 31, 23, 59, 58, 250), utc(1950, 6, 1, 0, 0, 0, 1)}) {
        const auto back = parse(toBinary(early));
        ASSERT_TRUE(back.has_value());
        EXPECT_EQ(back->toDateTime(), early)
            << back->toDateTime().toString(Qt::ISODateWithMs).toStdString();
    }

    const auto fromXml = parse(toXml(date));
    ASSERT_TRUE(fromXml.has_value());
    EXPECT_EQ(fromXml->toDateTime(), utc(2019, 12, 31, 23, 59, 58));

    // Rounding is downward, also before 1970.
    EXPECT_EQ(xmlBody(utc(1960, 1, 1, 0, 0, 0, 999)), "<date>1960-01-01T00:00:00Z</date>\n");
}

// Nesting, escaping and the empty and boolean forms; each kind of number,
// date and data has its own test below.
TEST(PlistTest, WritesNestedDictionaryExactly)
{
    const QVariantMap dict{{"Backlinks", QStringList{"R&D <draft>"}},
                           {"nested", QVariantMap{{"empty", QVariantMap()},
                                                  {"list", QVariantList()},
                                                  {"off", false},
                                                  {"on", true}}}};
    EXPECT_EQ(xmlBody(dict), "<dict>\n"
                             "\t<key>Backlinks</key>\n"
                             "\t<array>\n"
                             "\t\t<string>R&amp;D &lt;draft&gt;</string>\n"
                             "\t</array>\n"
                             "\t<key>nested</key>\n"
                             "\t<dict>\n"
                             "\t\t<key>empty</key>\n"
                             "\t\t<dict/>\n"
                             "\t\t<key>list</key>\n"
                             "\t\t<array/>\n"
                             "\t\t<key>off</key>\n"
                             "\t\t<false/>\n"
                             "\t\t<key>on</key>\n"
                             "\t\t<true/>\n"
                             "\t</dict>\n"
                             "</dict>\n");
}

TEST(PlistTest, KeysAreWrittenInUtf16Order)
{
    QVariantMap dict;
    QVariantHash hash;
    for (const char *key :
         {"b", "a", "B", "_x", "10", "9", "\xC3\xA9", "\xF0\x9F\x98\x80", "\xEF\xBC\xA1"}) {
        dict[QString::fromUtf8(key)] = 1;
        hash[QString::fromUtf8(key)] = 1;
    }
    // U+1F600 is stored as a surrogate pair (D83D), so it sorts before U+FF21.
    QByteArray expected;
    for (const char *key :
         {"10", "9", "B", "_x", "a", "b", "\xC3\xA9", "\xF0\x9F\x98\x80", "\xEF\xBC\xA1"})
        expected += QByteArray("\t<key>") + key + "</key>\n\t<integer>1</integer>\n";
    expected = "<dict>\n" + expected + "</dict>\n";
    EXPECT_EQ(xmlBody(dict), expected);
    EXPECT_EQ(xmlBody(hash), expected);
    const auto fromBinary = parse(toBinary(hash));
    ASSERT_TRUE(fromBinary.has_value());
    EXPECT_EQ(*fromBinary, QVariant(dict));
}

TEST(PlistTest, RealsUseSeventeenSignificantDigits)
{
    struct Case
    {
        double value;
        const char *text;
    };
    const Case cases[] = {
        {1.5, "1.5"},
        {1.0, "1"},
        {100.0, "100"},
        {-3.0, "-3"},
        {0.1, "0.10000000000000001"},
        {0.3, "0.29999999999999999"},
        {0.0, "0.0"},
        {-0.0, "0.0"},
        {1e20, "1e+20"},
        {1e-5, "1.0000000000000001e-05"},
        {123456789.25, "123456789.25"},
        {std::numeric_limits<double>::infinity(), "+infinity"},
        {-std::numeric_limits<double>::infinity(), "-infinity"},
        {std::numeric_limits<double>::quiet_NaN(), "nan"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(xmlBody(c.value), QByteArray("<real>") + c.text + "</real>\n");
    }
    EXPECT_EQ(xmlBody(QVariant(0.5f)), "<real>0.5</real>\n");
}

TEST(PlistTest, EveryIntegerTypeIsWrittenAsInteger)
{
    struct Case
    {
        QVariant value;
        const char *text;
    };
    const Case cases[] = {
        {QVariant(int(-5)), "-5"},
        {QVariant(uint(4000000000u)), "4000000000"},
        {QVariant(qint64(-9000000000)), "-9000000000"},
        {QVariant(std::numeric_limits<qulonglong>::max()), "18446744073709551615"},
        {QVariant::fromValue(short(-12)), "-12"},
        {QVariant::fromValue<unsigned short>(65535), "65535"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(xmlBody(c.value), QByteArray("<integer>") + c.text + "</integer>\n");
        const auto back = parse(toBinary(c.value));
        ASSERT_TRUE(back.has_value());
        EXPECT_EQ(back->typeId(), QMetaType::LongLong);
    }
    const auto fromXml = parse(toXml(QVariant(int(-5))));
    ASSERT_TRUE(fromXml.has_value());
    EXPECT_EQ(fromXml->typeId(), QMetaType::LongLong);
    EXPECT_EQ(fromXml->toLongLong(), -5);
}

TEST(PlistTest, DataLinesShrinkWithIndentation)
{
    struct Case
    {
        const char *name;
        int depth; // levels of arrays around the data
        int bytes;
        std::vector<int> lineLengths;
    };
    const Case cases[] = {
        {"top level, one full line", 0, 57, {76}},
        {"top level, spills over", 0, 58, {76, 4}},
        {"top level, two full lines", 0, 114, {76, 76}},
        {"one tab, one full line", 1, 51, {68}},
        {"one tab, spills over", 1, 52, {68, 4}},
        {"one tab, padding", 1, 53, {68, 4}},
        {"one tab, empty", 1, 0, {}},
        {"two tabs", 2, 46, {60, 4}},
        {"nine tabs, capped at eight", 9, 10, {12, 4}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const QByteArray bytes = bytesOf(c.bytes);
        QVariant value = bytes;
        for (int i = 0; i < c.depth; ++i)
            value = QVariantList{value};
        const QByteArray xml = toXml(value);
        const QByteArray tabs(c.depth, '\t');
        const qsizetype open = xml.indexOf(tabs + "<data>\n");
        const qsizetype close = xml.indexOf("\n" + tabs + "</data>\n");
        ASSERT_GE(open, 0);
        ASSERT_GE(close, 0);
        const qsizetype first = open + tabs.size() + 7;
        const QByteArray lines = close >= first ? xml.mid(first, close - first) : QByteArray();
        std::vector<int> lengths;
        QByteArray joined;
        for (const QByteArray &line : lines.split('\n')) {
            if (line.isEmpty() && lines.isEmpty())
                break;
            ASSERT_TRUE(line.startsWith(tabs));
            ASSERT_NE(line.at(tabs.size()), '\t');
            lengths.push_back(static_cast<int>(line.size() - tabs.size()));
            joined += line.mid(tabs.size());
        }
        EXPECT_EQ(lengths, c.lineLengths);
        EXPECT_EQ(QByteArray::fromBase64(joined), bytes);
        if (c.bytes == 0) {
            EXPECT_EQ(xmlBody(value), "<array>\n\t<data>\n\t</data>\n</array>\n");
        }
    }
}

// A binary property list assembled by hand from its parts, as the Mac lays it
// out: header, objects, offset table, trailer. References and offsets are one
// byte wide, which holds for small lists.
QByteArray handMadeBinary(const std::vector<QByteArray> &objects)
{
    QByteArray out = "bplist00";
    QByteArray offsets;
    for (const QByteArray &object : objects) {
        offsets.append(static_cast<char>(out.size()));
        out += object;
    }
    const auto tableAt = static_cast<char>(out.size());
    out += offsets;
    QByteArray trailer(32, '\0');
    trailer[6] = 1;                                  // offset size
    trailer[7] = 1;                                  // reference size
    trailer[15] = static_cast<char>(objects.size()); // object count
    trailer[23] = 0;                                 // top object
    trailer[31] = tableAt;                           // offset table
    return out + trailer;
}

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

TEST(PlistTest, ReadsEveryBinaryObjectKind)
{
    struct Case
    {
        const char *name;
        std::vector<QByteArray> objects;
        std::optional<QVariant> expected;
    };
    const QVariantList twice{QVariantList{qint64(7)}, QVariantList{qint64(7)}};
    const Case cases[] = {
        {"one-byte integer is unsigned", {hex("10FF")}, qint64(255)},
        {"two-byte integer", {hex("110100")}, qint64(256)},
        {"four-byte integer", {hex("1280000000")}, qint64(2147483648)},
        {"sixteen-byte integer", {hex("14 0000000000000000 0000000000000009")}, qint64(9)},
        {"single-precision real", {hex("22 3FC00000")}, 1.5},
        {"date before the reference date",
         {hex("33 C000000000000000")},
         utc(2000, 12, 31, 23, 59, 58)},
        {"false", {hex("08")}, false},
        {"true", {hex("09")}, true},
        {"eight-byte integer is signed", {hex("13 FFFFFFFFFFFFFFFE")}, qint64(-2)},
        {"double-precision real", {hex("23 BFF8000000000000")}, -1.5},
        {"date with a fraction", {hex("33 3FF8000000000000")}, utc(2001, 1, 1, 0, 0, 1, 500)},
        {"dict with a UTF-16 key",
         {hex("D1 0102"), hex("61 00E9"), hex("1001")},
         QVariantMap{{QString(QChar(0xE9)), qint64(1)}}},
        {"ASCII string with long length",
         {hex("5F 1011") + QByteArray("seventeen letters")},
         QString("seventeen letters")},
        {"UTF-16 surrogate pair", {hex("62 D834DD1E")}, QString::fromUtf8("\xF0\x9D\x84\x9E")},
        {"empty data", {hex("40")}, QByteArray()},
        {"UID of two bytes", {hex("81 0102")}, qint64(258)},
        {"shared reference read once", {hex("A2 0101"), hex("A1 02"), hex("1007")}, twice},
        {"empty dict", {hex("D0")}, QVariantMap()},
        {"cycle", {hex("A1 00")}, std::nullopt},
        {"cycle through a child", {hex("A1 01"), hex("A1 00")}, std::nullopt},
        {"reference out of range", {hex("A1 05")}, std::nullopt},
        {"integer key", {hex("D1 0102"), hex("1001"), hex("1002")}, std::nullopt},
        {"data longer than the file", {hex("4F 10FF 00")}, std::nullopt},
        {"string length not an integer", {hex("5F 2300")}, std::nullopt},
        {"seventeen-byte integer marker", {hex("15 00")}, std::nullopt},
        {"null", {hex("00")}, std::nullopt},
        {"set", {hex("C1 01"), hex("1001")}, std::nullopt},
        {"date that is not a number", {hex("33 7FF8000000000000")}, std::nullopt},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const auto value = parse(handMadeBinary(c.objects));
        ASSERT_EQ(value.has_value(), c.expected.has_value());
        if (value) {
            EXPECT_EQ(value->typeId(), c.expected->typeId());
            EXPECT_EQ(*value, *c.expected);
        }
    }
}

TEST(PlistTest, RefusesBrokenBinaryTrailers)
{
    const QByteArray good = handMadeBinary({hex("A1 01"), hex("1001")});
    ASSERT_TRUE(parse(good).has_value());
    struct Case
    {
        const char *name;
        qsizetype at; // counted from the start of the trailer
        char byte;
    };
    const Case cases[] = {
        {"offset size zero", 6, 0},
        {"offset size nine", 6, 9},
        {"reference size zero", 7, 0},
        {"no objects", 15, 0},
        {"more objects than the table holds", 15, 3},
        {"top object out of range", 23, 2},
        {"table inside the header", 31, 4},
        {"table inside the trailer", 31, 20},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        QByteArray bad = good;
        bad[bad.size() - 32 + c.at] = c.byte;
        EXPECT_FALSE(parse(bad).has_value());
    }
    QByteArray version = good;
    version[7] = '1';
    EXPECT_FALSE(parse(version).has_value());
}

TEST(PlistTest, ReadsXmlWrittenInOtherStyles)
{
    const QVariantMap expected{
        {"a", qint64(5)},
        {"b", QString("x & y")},
        {"c", true},
        {"d", QByteArray("\x00\x01\x02\x03", 4)},
        {"e", QVariantList{QString(""), 2.5}},
        {"f", utc(2020, 1, 2, 3, 4, 5)},
    };
    const char *inputs[] = {
        // Windows line ends, a byte-order mark, comments, spaces for tabs.
        "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\r\n"
        "<!-- written elsewhere -->\r\n"
        "<plist version=\"1.0\">\r\n"
        "  <dict>\r\n"
        "    <key>a</key>\r\n    <integer>5</integer>\r\n"
        "    <key>b</key>\r\n    <string>x &amp; y</string>\r\n"
        "    <key>c</key>\r\n    <true />\r\n"
        "    <key>d</key>\r\n    <data>\r\n      AAECAw==\r\n    </data>\r\n"
        "    <key>e</key>\r\n    <array>\r\n      <string/>\r\n      <real>2.5</real>\r\n"
        "    </array>\r\n"
        "    <key>f</key>\r\n    <date>2020-01-02T03:04:05Z</date>\r\n"
        "  </dict>\r\n"
        "</plist>\r\n",
        // All on one line, no prologue, data split oddly, character references.
        "<plist><dict><key>a</key><integer> 5 </integer><key>b</key><string>x &#38; y</string>"
        "<key>c</key><true/><key>d</key><data>AA\n EC\tAw==</data><key>e</key><array>"
        "<string></string><real>2.50</real></array><key>f</key><date>2020-01-02T03:04:05Z</date>"
        "</dict></plist>",
    };
    for (const char *input : inputs) {
        SCOPED_TRACE(input);
        const auto value = parse(QByteArray(input));
        ASSERT_TRUE(value.has_value());
        EXPECT_EQ(*value, QVariant(expected));
    }
}

TEST(PlistTest, MalformedInputGivesNothing)
{
    const QByteArray cases[] = {
        QByteArray(),
        "hello",
        "\xEF\xBB\xBF",
        "<plist><dict><key>a</key>",
        "<plist><string>x</plist>",
        "<plist><dict><key>a</key><string>x</string></plist>",
        "<plist><array><string>x</string></dict></plist>",
        "bplist00",
        "bplist00garbagegarbagegarbagegarbagegarbagegarbage",
        QByteArray("bplist00") + QByteArray(40, '\xff'),
        QByteArray("bplist00") + QByteArray(40, '\0'),
    };
    for (const QByteArray &input : cases) {
        SCOPED_TRACE(input.toStdString());
        EXPECT_FALSE(parse(input).has_value());
    }
}

TEST(PlistTest, TruncatedFilesGiveNothing)
{
    const QVariantMap dict{{"Tags", QStringList{"a", "b"}},
                           {"CreationDate", utc(2021, 1, 1)},
                           {"blob", bytesOf(20)},
                           {"n", 3}};
    const QByteArray xml = toXml(dict);
    const qsizetype lastClose = xml.lastIndexOf("</dict>");
    for (qsizetype n = 0; n < lastClose; ++n) {
        SCOPED_TRACE(n);
        EXPECT_FALSE(parse(xml.left(n)).has_value());
    }
    const QByteArray binary = toBinary(dict);
    for (qsizetype n = 0; n < binary.size(); ++n) {
        SCOPED_TRACE(n);
        EXPECT_FALSE(parse(binary.left(n)).has_value());
    }
}

// Whatever garbage is read, a value that comes back is one that can be
// written again: nothing half-made gets out.
TEST(PlistTest, RandomAndMutatedBytesGiveNothingOrAWritableValue)
{
    const auto check = [](const QByteArray &bytes) {
        if (const auto value = parse(bytes)) {
            EXPECT_FALSE(toXml(*value).isEmpty()) << bytes.toHex().toStdString();
        }
    };
    std::mt19937 random(20240601);
    std::uniform_int_distribution<int> byte(0, 255);
    for (int round = 0; round < 300; ++round) {
        QByteArray bytes(round % 97, '\0');
        for (char &c : bytes)
            c = static_cast<char>(byte(random));
        if (round % 2)
            bytes.prepend("bplist00");
        check(bytes);
    }
    const QVariantMap dict{{"a", QVariantList{1, "two", 3.0}},
                           {"b", QVariantMap{{"c", QByteArray("data")}}},
                           {"d", utc(2010, 5, 6)}};
    for (const QByteArray &source : {toBinary(dict), toXml(dict)}) {
        std::uniform_int_distribution<qsizetype> at(0, source.size() - 1);
        for (int round = 0; round < 500; ++round) {
            QByteArray mutated = source;
            for (int flips = 0; flips < 1 + round % 4; ++flips)
                mutated[at(random)] = static_cast<char>(byte(random));
            check(mutated);
        }
    }
}

TEST(PlistTest, DeepNestingIsRefused)
{
    auto nestedArrays = [](int depth) {
        return "<plist>" + QByteArray("<array>").repeated(depth) +
               QByteArray("</array>").repeated(depth) + "</plist>";
    };
    EXPECT_TRUE(parse(nestedArrays(100)).has_value());
    EXPECT_FALSE(parse(nestedArrays(5000)).has_value());
}

TEST(PlistTest, ValuesWithoutPlistFormAreRefused)
{
    const QVariant cases[] = {
        QVariant(),
        QVariant(QUrl("https://example.com")),
        QVariantMap{{"ok", 1}, {"bad", QVariant(QUrl("x"))}},
        QVariantList{1, QVariant()},
        QVariant(QDateTime()),
    };
    for (const QVariant &value : cases) {
        EXPECT_TRUE(toXml(value).isEmpty());
        EXPECT_TRUE(toBinary(value).isEmpty());
    }
}

} // namespace

// Plain files are read without libplist; a comment sends the same text
// through libplist, and both readings must agree.
TEST(PlistTest, PlainXmlReadsAsLibplistReadsIt)
{
    const char *bodies[] = {
        "<dict><key>a b</key><string> x &amp; &lt;y&gt; &quot;&apos; </string>"
        "<key></key><string/><key>m</key><integer>-12</integer><key>n</key><integer>007</integer>"
        "<key>r</key><real>-2.50</real><key>t</key><true/><key>f</key><false/></dict>",
        "<array><date>2024-03-05T12:00:00Z</date><date>1901-01-01T00:00:00Z</date>"
        "<date>2101-12-31T23:59:59Z</date><dict/><array/><dict>\n\t<key>é</key>\n\t"
        "<array><string>ü\n</string></array></dict></array>",
        "<integer>123456789012345678</integer>",
        "<string>\t</string>",
    };
    for (const char *body : bodies) {
        SCOPED_TRACE(body);
        const QByteArray plain = kHeader + body + "</plist>\n";
        const QByteArray commented =
            QByteArray(kHeader).replace("<plist", "<!-- --><plist") + body + "</plist>\n";
        const auto direct = parse(plain);
        ASSERT_TRUE(direct.has_value());
        EXPECT_EQ(direct, parse(commented));
    }
    // A repeated key: the last value stands.
    EXPECT_EQ(parse(kHeader + "<dict><key>a</key><true/><key>a</key><false/></dict></plist>"),
              QVariant(QVariantMap{{"a", false}}));
}
