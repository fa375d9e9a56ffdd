#include "importers/mime_pasteboard.h"

#include <QMimeData>
#include <QStringEncoder>
#include <gtest/gtest.h>

namespace {

using namespace tl::importers;

QByteArray utf16(const QString &text, bool withMark)
{
    QStringEncoder encoder(QStringConverter::Utf16LE, withMark ? QStringConverter::Flag::WriteBom
                                                               : QStringConverter::Flag::Default);
    return encoder(text);
}

TEST(MimePasteboard, FormatsKeepTheSourcesOrder)
{
    const struct
    {
        const char *name;
        QList<std::pair<const char *, QByteArray>> formats;
        QStringList types;
        QString plainText;
        QString nameText;
        QString address;
    } cases[] = {
        {"text, then HTML from a browser in UTF-16 with its mark",
         {{"text/plain", "caf\xC3\xA9"}, {"text/html", utf16("<b>caf\u00e9</b>", true)}},
         {"public.utf8-plain-text", "public.html"},
         "caf\u00e9",
         "caf\u00e9",
         ""},
        {"a link dragged from Firefox: its title names it",
         {{"text/x-moz-url", utf16("https://x.org/a\nThe A Page", false)},
          {"text/uri-list", "https://x.org/a\r\n"},
          {"text/html", "<a href=\"https://x.org/a\">A</a>"},
          {"text/plain", "https://x.org/a"}},
         {"public.url", "public.html", "public.utf8-plain-text"},
         "https://x.org/a",
         "The A Page",
         "https://x.org/a"},
        {"a copied file: its address, its name",
         {{"text/uri-list", "# comment\nfile:///home/u/My%20Notes.odt\nfile:///b.txt\n"},
          {"text/plain", "/home/u/My Notes.odt"}},
         {"public.file-url", "public.utf8-plain-text"},
         "/home/u/My Notes.odt",
         "My Notes.odt",
         ""},
        {"pictures and rich text, charset spelt out",
         {{"image/jpeg", "j"},
          {"image/png", "p"},
          {"image/tiff", "t"},
          {"text/plain; charset=UTF-8", "x"},
          {"text/rtf", "{\\rtf1}"},
          {"image/gif", "g"}},
         {"public.jpg", "public.png", "public.tiff", "public.utf8-plain-text", "public.rtf"},
         "x",
         "x",
         ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        QMimeData data;
        for (const auto &[format, bytes] : c.formats)
            data.setData(QString::fromLatin1(format), bytes);
        const Pasteboard pasteboard = pasteboardFromMimeData(data);
        EXPECT_EQ(pasteboard.types(), c.types);
        EXPECT_EQ(pasteboard.stringForType("public.utf8-plain-text"), c.plainText);
        EXPECT_EQ(pasteboard.nameText(), c.nameText);
        EXPECT_EQ(pasteboard.stringForType("public.url"), c.address);
        EXPECT_TRUE(offersImportableFormat(data));
    }
    QMimeData addressOnly;
    addressOnly.setData("text/uri-list", "https://x.org\n");
    EXPECT_FALSE(offersImportableFormat(addressOnly));
}

} // namespace
