#include "publish/mail_parts.h"

#include <gtest/gtest.h>

using tl::publish::htmlPartOfMessage;

namespace {

struct Case
{
    const char *name;
    const char *message;
    std::optional<QString> html;
};

TEST(MailParts, TheHTMLPartIsTakenDecoded)
{
    const Case cases[] = {
        {"quoted-printable",
         "Subject: x\n\n--b\nContent-Type: text/plain\n\nplain\n--b\n"
         "Content-Type: text/html; charset=utf-8\nContent-Transfer-Encoding: quoted-printable\n\n"
         "<p class=3D\"a\">caf=C3=A9 and a long=\nline</p>\n--b--\n",
         QString::fromUtf8("<p class=\"a\">caf\u00E9 and a longline</p>\n")},
        {"base64",
         "Content-Type: TEXT/HTML\r\nContent-Transfer-Encoding: base64\r\n\r\nPGI+aGk8L2I+\r\n",
         "<b>hi</b>"},
        {"as it stands", "Content-Type: text/html\n\n<i>so</i>", "<i>so</i>"},
        {"no HTML part", "Content-Type: text/plain\n\nplain only\n", std::nullopt},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const std::optional<QString> html = htmlPartOfMessage(QString::fromUtf8(c.message));
        ASSERT_EQ(html.has_value(), c.html.has_value());
        if (html) {
            EXPECT_EQ(html->toStdString(), c.html->toStdString());
        }
    }
}

} // namespace
