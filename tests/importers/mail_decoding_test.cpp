#include "importers/mail_decoding.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

struct Case
{
    const char *name;
    std::function<QString(const QString &)> decode;
    const char *in;
    const char *out;
};

TEST(MailDecoding, TransferEncodingsAndEncodedWords)
{
    using namespace tl::importers;
    const Case cases[] = {
        {"UTF-8 codes across a soft break", stringWithQuotedPrintableString,
         "caf=C3=\n=A9 long=\r\nline =3D 100%", "café longline = 100%"},
        {"codes that are no UTF-8, one character each", stringWithQuotedPrintableString,
         "=E9t=E9=\n!", "été!"},
        {"a lone equals sign stays", stringWithQuotedPrintableString, "a = b", "a = b"},
        {"base64 with line ends", stringWithBase64Encoding, " SGVs\nbG8=\n", "Hello"},
        {"base64 that is no UTF-8", stringWithBase64Encoding, "6Q==", ""},
        {"Q word, underscores as blanks", stringWithEncodedWordsString,
         "Subject: =?UTF-8?Q?Caf=C3=A9_au_lait?= now", "Subject: Café au lait now"},
        {"B word, and its underscores too", stringWithEncodedWordsString,
         "=?utf-8?B?YV9i?=", "a b"},
        {"two words, and only capital Q is quoted-printable", stringWithEncodedWordsString,
         "=?x?Q?a?= =?x?q?Yg==?=", "a b"},
        {"folds with a return are joined", stringWithEncodedWordsString, "To: a\r\n b", "To: ab"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.decode(QString::fromUtf8(c.in)).toStdString(), c.out);
    }
}

} // namespace
