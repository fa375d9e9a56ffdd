#include "foundation/regex.h"

#include <spdlog/spdlog.h>
#include <unicode/uchar.h>
#include <vector>

namespace tl {

// Literal text, then a group, and so on. Group -1 marks a piece that is
// only literal.
struct RegexTemplate::Piece
{
    QString literal;
    int group = -1;
};

namespace {

using Pieces = std::vector<RegexTemplate::Piece>;

char32_t codePointAt(QStringView s, qsizetype &i)
{
    const char16_t lead = s[i].unicode();
    ++i;
    if (QChar::isHighSurrogate(lead) && i < s.size() && QChar::isLowSurrogate(s[i].unicode())) {
        const char16_t trail = s[i].unicode();
        ++i;
        return QChar::surrogateToUcs4(lead, trail);
    }
    return lead;
}

// "\u" with 4 or "\U" with 8 hexadecimal digits at `at`. ICU swallows what a
// failed escape has read, the first character that is not a digit included,
// and writes nothing for it: `consumed` counts those characters either way.
std::optional<char32_t> hexEscape(QStringView t, qsizetype at, int digits, qsizetype &consumed)
{
    char32_t value = 0;
    consumed = 0;
    for (int k = 0; k < digits; ++k) {
        if (at + k >= t.size())
            return std::nullopt;
        const char16_t ch = t[at + k].unicode();
        ++consumed;
        int digit = -1;
        if (ch >= u'0' && ch <= u'9')
            digit = ch - u'0';
        else if (ch >= u'a' && ch <= u'f')
            digit = ch - u'a' + 10;
        else if (ch >= u'A' && ch <= u'F')
            digit = ch - u'A' + 10;
        if (digit < 0)
            return std::nullopt;
        value = value * 16 + char32_t(digit);
    }
    if (value >= 0x110000)
        return std::nullopt;
    return value;
}

std::optional<Pieces> parsed(const Regex &regex, const QString &templ)
{
    Pieces pieces(1);
    auto fail = [&](const char *why) -> std::optional<Pieces> {
        spdlog::warn("Regular expression {}: replacement template \"{}\" {}",
                     regex.pattern().toStdString(), templ.toStdString(), why);
        return std::nullopt;
    };
    const QStringView t(templ);
    qsizetype i = 0;
    while (i < t.size()) {
        const QChar ch = t[i];
        if (ch == u'\\') {
            ++i;
            if (i >= t.size())
                break; // a lone backslash at the end stands for nothing
            if (t[i] == u'u' || t[i] == u'U') {
                qsizetype consumed = 0;
                if (const auto cp = hexEscape(t, i + 1, t[i] == u'u' ? 4 : 8, consumed))
                    pieces.back().literal.append(QString::fromUcs4(&*cp, 1));
                i += 1 + consumed;
                continue;
            }
            pieces.back().literal.append(t[i]); // the trail of a pair follows next round
            ++i;
            continue;
        }
        if (ch != u'$') {
            pieces.back().literal.append(ch);
            ++i;
            continue;
        }
        ++i;
        int group = 0;
        if (i < t.size() && t[i] == u'{') {
            const qsizetype close = t.indexOf(u'}', i + 1);
            if (close < 0)
                return fail("has an unclosed group name");
            const QStringView name = t.sliced(i + 1, close - i - 1);
            for (QChar n : name) {
                if (!((n >= u'A' && n <= u'Z') || (n >= u'a' && n <= u'z') ||
                      (n >= u'0' && n <= u'9')))
                    return fail("has an invalid group name");
            }
            group = name.isEmpty() ? 0 : regex.groupNumber(name.toString());
            if (group < 0)
                return fail("names a group that does not exist");
            i = close + 1;
        } else {
            // As many digits as still name an existing group.
            int digitsTaken = 0;
            while (i < t.size()) {
                qsizetype next = i;
                const char32_t cp = codePointAt(t, next);
                if (!u_isdigit(UChar32(cp)))
                    break;
                const int value = u_charDigitValue(UChar32(cp));
                if (group * 10 + value > regex.groupCount())
                    break;
                group = group * 10 + value;
                ++digitsTaken;
                i = next;
            }
            if (digitsTaken == 0) {
                qsizetype next = i;
                if (i < t.size() && u_isdigit(UChar32(codePointAt(t, next))))
                    return fail("names a group that does not exist");
                return fail("has a \"$\" that names no group (write \\$)");
            }
        }
        pieces.back().group = group;
        pieces.emplace_back();
    }
    return pieces;
}

} // namespace

RegexTemplate::RegexTemplate() = default;

RegexTemplate::RegexTemplate(const Regex &regex, const QString &templ)
{
    if (!regex.isValid())
        return;
    if (std::optional<Pieces> pieces = parsed(regex, templ))
        d = std::make_shared<const Pieces>(std::move(*pieces));
}

bool RegexTemplate::isValid() const
{
    return d != nullptr;
}

void RegexTemplate::expandInto(QString &out, const RegexMatch &match, QStringView text) const
{
    if (!d)
        return;
    for (const Piece &piece : *d) {
        out.append(piece.literal);
        if (piece.group >= 0)
            out.append(match.captured(text, piece.group));
    }
}

QString RegexTemplate::expanded(const RegexMatch &match, QStringView text) const
{
    QString out;
    expandInto(out, match, text);
    return out;
}

} // namespace tl
