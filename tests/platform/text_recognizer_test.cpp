#include "platform/text_recognizer.h"

#include <gtest/gtest.h>

namespace {

TEST(TextRecognizer, LanguagesArePreferredOnesInstalledThenEnglish)
{
    const struct
    {
        const char *name;
        QStringList preferred;
        QStringList installed;
        QString expected;
    } cases[] = {
        {"German first", {"de-DE", "en-US"}, {"eng", "osd", "deu"}, "deu+eng"},
        {"not installed", {"fr-FR"}, {"eng"}, "eng"},
        {"a variant by the bibliographic code", {"zh-CN"}, {"chi_sim", "eng"}, "chi_sim+eng"},
        {"the exact name before a variant", {"de"}, {"deu_latf", "deu"}, "deu"},
        {"nothing installed", {"en-US"}, {}, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(tl::platform::recognitionLanguages(c.preferred, c.installed), c.expected);
    }
}

} // namespace
