#include "library_fixture.h"
#include "store/document_file.h"
#include "store/first_line.h"
#include "store/fountain_text.h"
#include "store/mime_types.h"

namespace tl::store {
namespace {

using E = TextEncoding;

// Encodings -----------------------------------------------------------------

struct EncodingCase
{
    const char *name;
    QByteArray bytes;
    TextEncoding expected;
    QString text;
};

using Encodings = tltest::LibraryTest;

TEST_F(Encodings, DetectionAndReading)
{
    const EncodingCase cases[] = {
        {"ascii reads as UTF-8", "plain", E::UTF8, "plain"},
        {"empty", "", E::UTF8, ""},
        {"utf-8", "caf\xC3\xA9", E::UTF8, u"café"_qs},
        {"utf-8 byte-order mark", "\xEF\xBB\xBFmark", E::UTF8, "mark"},
        {"utf-16 little-endian mark", QByteArray("\xFF\xFEh\0i\0", 6), E::Unicode, "hi"},
        {"utf-16 big-endian mark", QByteArray("\xFE\xFF\0h\0i", 6), E::Unicode, "hi"},
        {"windows line ends pick Windows-1252", "caf\xE9\r\n\x80", E::WindowsLatin1,
         u"café\r\n€"_qs},
        {"other line ends pick Mac Roman", "caf\x8E\n", E::MacRoman, u"café\n"_qs},
        {"no line ends pick Mac Roman", "\xDB", E::MacRoman, u"€"_qs},
        {"undefined Windows byte falls to Mac Roman", "\x81\r\n", E::MacRoman, u"Å\r\n"_qs},
    };
    for (const EncodingCase &c : cases) {
        SCOPED_TRACE(c.name);
        const QString file = makeFile(inRoot("enc.txt"), c.bytes);
        EXPECT_EQ(tl_textEncodingOfFile(file), c.expected);
        const std::optional<DecodedText> read = tl_stringWithContentsOfFile(file);
        ASSERT_TRUE(read);
        EXPECT_EQ(read->encoding, c.expected);
        EXPECT_EQ(read->text, c.text);
        EXPECT_EQ(tl_stringWithContentsOfFile(file, c.expected), c.text);
    }
}

TEST_F(Encodings, AMissingFileIsAscii)
{
    EXPECT_EQ(tl_textEncodingOfFile(inRoot("missing.txt")), E::ASCII);
    EXPECT_FALSE(tl_stringWithContentsOfFile(inRoot("missing.txt")));
}

TEST_F(Encodings, StrictEncoding)
{
    struct Case
    {
        QString text;
        TextEncoding encoding;
        std::optional<QByteArray> expected;
    } cases[] = {
        {u"café"_qs, E::UTF8, QByteArray("caf\xC3\xA9")},
        {u"café"_qs, E::WindowsLatin1, QByteArray("caf\xE9")},
        {u"café"_qs, E::MacRoman, QByteArray("caf\x8E")},
        {u"café"_qs, E::ASCII, std::nullopt},
        {u"中"_qs, E::WindowsLatin1, std::nullopt},
        {u"中"_qs, E::MacRoman, std::nullopt},
        {QString(QChar(0x81)), E::WindowsLatin1, std::nullopt},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.text.toStdString() + " in " + textEncodingName(c.encoding).toStdString());
        EXPECT_EQ(encodedText(c.text, c.encoding), c.expected);
    }
    const std::optional<QByteArray> utf16 = encodedText("hi", E::Unicode);
    ASSERT_TRUE(utf16);
    EXPECT_EQ(decodedText(*utf16, E::Unicode), "hi");
    // UTF-16 is read only behind its mark; the single-byte decoders are
    // checked byte by byte against the reference converters elsewhere.
    EXPECT_FALSE(decodedText("no mark", E::Unicode));
}

TEST_F(Encodings, NumbersAndNames)
{
    EXPECT_EQ(textEncodingFromNumber(12), E::WindowsLatin1);
    EXPECT_EQ(textEncodingFromNumber(30), E::MacRoman);
    EXPECT_FALSE(textEncodingFromNumber(5));
    EXPECT_EQ(textEncodingName(E::MacRoman), "Mac Roman");
}

// Writing -------------------------------------------------------------------

using DocumentWriting = tltest::LibraryTest;

// What the file system keeps over either kind of write is the platform's
// to check; here the text goes in its encoding, by either road.
TEST_F(DocumentWriting, TheTextGoesInItsEncodingEitherWay)
{
    const QString file = makeFile(inRoot("Doc.txt"), "old");
    for (const bool atomically : {true, false}) {
        WriteError error = WriteError::FileSystem;
        ASSERT_TRUE(tl_writeToFile(u"new é"_qs, file, atomically, E::MacRoman, &error));
        EXPECT_EQ(error, WriteError::None);
        EXPECT_EQ(tltest::readFile(file), "new \x8E");
    }
}

TEST_F(DocumentWriting, AnUnencodableTextIsReportedAndWritesNothing)
{
    const QString file = makeFile(inRoot("Doc.txt"), "old");
    for (const bool atomically : {true, false}) {
        WriteError error = WriteError::None;
        EXPECT_FALSE(tl_writeToFile(u"中"_qs, file, atomically, E::WindowsLatin1, &error));
        EXPECT_EQ(error, WriteError::Unencodable);
        EXPECT_EQ(tltest::readFile(file), "old");
    }
}

TEST_F(DocumentWriting, DataAndDictionaryForms)
{
    const QString file = inRoot("Book/new.plist");
    ASSERT_TRUE(tl_writeToFile(QVariantMap{{"key", "value"}}, file, true));
    EXPECT_EQ(tl_dictionaryWithContentsOfFile(file), (QVariantMap{{"key", "value"}}));
    ASSERT_TRUE(tl_writeToFile(QByteArray("bytes"), file, false));
    EXPECT_EQ(tl_dataWithContentsOfFile(file), "bytes");
    EXPECT_TRUE(tl_dictionaryWithContentsOfFile(file).isEmpty());
}

// First lines ---------------------------------------------------------------

TEST(FirstLine, Titles)
{
    const QString x119 = QString(119, u'x');
    const struct
    {
        QString text;
        QString title;
    } cases[] = {
        {"Hello world\nbody", "Hello world"},
        {"\n\n  Spaced  \nbody", "Spaced"},
        {"---\nTitle: x\n---\nbody", "x"},
        {"---\ntitle: lower\n", "lower"},
        {"% My title\n% Author", "My title"},
        {"Title:Direct", "Direct"},
        {"# Heading #", "Heading"},
        {"a/b/c", "a-b-c"},
        {"--_+#& Trim &#+_--", "Trim"},
        {"# # #", "# # #"},
        {"line\r\nnext", "line"},
        {QString(120, u'a'), QString(120, u'a')},
        {QString(130, u'b'), QString(119, u'b')},
        {x119 + "yy zz" + QString(20, u'w'), x119 + "yy"},
        {x119 + QString(30, u'y') + " z", x119},
        {x119 + "y" + QString(23, u'z') + " tail", x119 + "y" + QString(23, u'z')},
        {x119 + "y" + QString(24, u'z') + " tail", x119},
        {x119 + " after", x119},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        EXPECT_EQ(tl_firstLineOfText(c.text), c.title);
    }
}

TEST(FirstLine, MatchesAStemAsItIsOrMadeSafe)
{
    EXPECT_TRUE(tl_stringMatchesFirstLineOfText("Report", "Report\nbody"));
    EXPECT_TRUE(tl_stringMatchesFirstLineOfText(u"Café"_qs, u"Cafe\u0301\nbody"_qs));
    EXPECT_TRUE(tl_stringMatchesFirstLineOfText("a-b", "a:b\nbody"));
    EXPECT_TRUE(tl_stringMatchesFirstLineOfText("a - b", "a & b"));
    EXPECT_FALSE(tl_stringMatchesFirstLineOfText("report", "Report"));
    EXPECT_FALSE(tl_stringMatchesFirstLineOfText("Other", "Report"));
}

// MIME types ----------------------------------------------------------------

TEST(MimeTypes, ForExtensions)
{
    const std::pair<const char *, const char *> cases[] = {
        {"MD", "text/plain"}, // by lower-cased extension
        {"yaml", "text/plain"}, {"webarchive", "application/octet-stream"},
        {"flac", "audio/mpeg"}, {"unknown", "text/html"},
        {"", "text/html"},
    };
    for (const auto &[extension, mime] : cases)
        EXPECT_EQ(tl_mimeTypeForExtension(extension), mime) << extension;
}

TEST(MimeTypes, ForTypes)
{
    // The first extension of a type that several share, and the fallback.
    const std::pair<const char *, const char *> cases[] = {
        {"text/plain", "txt"},
        {"text/html", "html"},
        {"audio/mpeg", "mp3"},
        {"com.apple.m4a-audio", "m4a"},
        {"application/octet-stream", "webarchive"},
        {"application/x-unknown", "txt"},
    };
    for (const auto &[mime, extension] : cases)
        EXPECT_EQ(tl_extensionForMimeType(mime), extension) << mime;
}

// Screenplays ---------------------------------------------------------------

TEST(Fountain, SceneHeadings)
{
    const std::pair<const char *, bool> cases[] = {
        {"EXT. HOUSE - DAY\n\nAction.", true},
        {"Title\nint. kitchen - night\n\nMore", true},
        {"INT/EXT CAR\n\n", true},
        {"EXT. HOUSE - DAY\nno blank line", false},
        {"The EXT. in the middle\n\n", false},
        {"plain text\n\n", false},
    };
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(tl_textContainsFountain(text), expected) << text;
}

} // namespace
} // namespace tl::store
