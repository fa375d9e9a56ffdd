#include "foundation/compare.h"

#include <climits>
#include <cstdlib>
#include <memory>
#include <spdlog/spdlog.h>
#include <string>
#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace tl {

namespace {

const UChar *uchars(QStringView s)
{
    return reinterpret_cast<const UChar *>(s.utf16());
}

// A read-only ICU string over the view's buffer.
icu::UnicodeString alias(QStringView s)
{
    return icu::UnicodeString(false, uchars(s), int32_t(std::min<qsizetype>(s.size(), INT32_MAX)));
}

QString toQString(const icu::UnicodeString &s)
{
    return QString(reinterpret_cast<const QChar *>(s.getBuffer()), s.length());
}

int sign(int v)
{
    return (v > 0) - (v < 0);
}

// The POSIX locale of the environment in ICU form: "en_US.UTF-8" and
// "de_DE.UTF-8@euro" lose their code set and modifier; "C" and "POSIX" are
// ICU's en_US_POSIX.
icu::Locale environmentCollationLocale()
{
    std::string id;
    for (const char *name : {"LC_ALL", "LC_COLLATE", "LANG"}) {
        const char *value = std::getenv(name);
        if (value && *value) {
            id = value;
            break;
        }
    }
    id = id.substr(0, id.find_first_of(".@"));
    if (id.empty() || id == "C" || id == "POSIX")
        id = "en_US_POSIX";
    icu::Locale locale = icu::Locale::createCanonical(id.c_str());
    if (locale.isBogus()) {
        spdlog::warn("Collation locale \"{}\" not understood, using the root order", id);
        return icu::Locale::getRoot();
    }
    return locale;
}

const icu::Locale &collationLocale()
{
    static const icu::Locale locale = environmentCollationLocale();
    return locale;
}

enum class Kind { Exact, CaseInsensitive, Standard, Primary, Count };

std::unique_ptr<icu::Collator> makeCollator(Kind kind)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> c(icu::Collator::createInstance(collationLocale(), status));
    if (U_FAILURE(status) || !c) {
        spdlog::warn("No collator for {}: {}", collationLocale().getName(), u_errorName(status));
        return nullptr;
    }
    c->setAttribute(UCOL_NORMALIZATION_MODE, UCOL_ON, status);
    switch (kind) {
    case Kind::Exact:
        c->setAttribute(UCOL_STRENGTH, UCOL_TERTIARY, status);
        break;
    case Kind::CaseInsensitive:
        c->setAttribute(UCOL_STRENGTH, UCOL_SECONDARY, status);
        break;
    case Kind::Standard:
        c->setAttribute(UCOL_STRENGTH, UCOL_SECONDARY, status);
        c->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
        break;
    case Kind::Primary:
    case Kind::Count:
        c->setAttribute(UCOL_STRENGTH, UCOL_PRIMARY, status);
        break;
    }
    if (U_FAILURE(status)) {
        spdlog::warn("Collator attributes refused: {}", u_errorName(status));
        return nullptr;
    }
    return c;
}

// Collators are set up once per thread; setting attributes is not safe to
// share, and cloning per call would cost more than the comparison.
icu::Collator *collator(Kind kind)
{
    thread_local std::unique_ptr<icu::Collator> collators[int(Kind::Count)];
    thread_local bool made[int(Kind::Count)] = {};
    const int i = int(kind);
    if (!made[i]) {
        collators[i] = makeCollator(kind);
        made[i] = true;
    }
    return collators[i].get();
}

int collate(Kind kind, QStringView a, QStringView b)
{
    icu::Collator *c = collator(kind);
    if (!c)
        return sign(QStringView(a).compare(b)); // already logged; code unit order
    UErrorCode status = U_ZERO_ERROR;
    const UCollationResult r =
        c->compare(uchars(a), int32_t(std::min<qsizetype>(a.size(), INT32_MAX)), uchars(b),
                   int32_t(std::min<qsizetype>(b.size(), INT32_MAX)), status);
    if (U_FAILURE(status))
        return sign(a.compare(b));
    return int(r);
}

const icu::Normalizer2 *normalizer(bool composed)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *n = composed ? icu::Normalizer2::getNFCInstance(status)
                                         : icu::Normalizer2::getNFDInstance(status);
    return U_SUCCESS(status) ? n : nullptr;
}

// NFC or NFD of `s`; `s` itself when it is in the form already.
QString normalized(const QString &s, bool composed)
{
    const icu::Normalizer2 *n = normalizer(composed);
    if (!n)
        return s;
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString in = alias(s);
    if (n->isNormalized(in, status) && U_SUCCESS(status))
        return s;
    status = U_ZERO_ERROR;
    const icu::UnicodeString out = n->normalize(in, status);
    return U_SUCCESS(status) ? toQString(out) : s;
}

// Case-folded, decomposed, without combining marks: the form in which "Café"
// and "CAFE" are the same text.
icu::UnicodeString searchForm(QStringView s)
{
    icu::UnicodeString folded = alias(s);
    folded.foldCase(U_FOLD_CASE_DEFAULT);
    const icu::Normalizer2 *nfd = normalizer(false);
    if (nfd) {
        UErrorCode status = U_ZERO_ERROR;
        icu::UnicodeString d = nfd->normalize(folded, status);
        if (U_SUCCESS(status))
            folded = std::move(d);
    }
    icu::UnicodeString out;
    for (int32_t i = 0; i < folded.length();) {
        const UChar32 cp = folded.char32At(i);
        if (u_charType(cp) != U_NON_SPACING_MARK)
            out.append(cp);
        i += U16_LENGTH(cp);
    }
    return out;
}

// Lower-cased in the collation locale, case-folded and composed: the form in
// which "RÉSUMÉ" and "résumé" are the same text and "resume" another.
icu::UnicodeString caseFoldedForm(QStringView s)
{
    icu::UnicodeString folded = alias(s);
    folded.toLower(collationLocale());
    folded.foldCase(U_FOLD_CASE_DEFAULT);
    if (const icu::Normalizer2 *nfc = normalizer(true)) {
        UErrorCode status = U_ZERO_ERROR;
        icu::UnicodeString c = nfc->normalize(folded, status);
        if (U_SUCCESS(status))
            folded = std::move(c);
    }
    return folded;
}

bool isCombiningMark(UChar32 cp)
{
    const int8_t type = u_charType(cp);
    return type == U_NON_SPACING_MARK || type == U_ENCLOSING_MARK ||
           type == U_COMBINING_SPACING_MARK;
}

QByteArray sortKey(Kind kind, QStringView s)
{
    icu::Collator *c = collator(kind);
    if (!c)
        return QByteArray(reinterpret_cast<const char *>(s.utf16()), s.size() * 2);
    const int32_t length = int32_t(std::min<qsizetype>(s.size(), INT32_MAX));
    QByteArray key(64, Qt::Uninitialized);
    int32_t needed = c->getSortKey(uchars(s), length, reinterpret_cast<uint8_t *>(key.data()),
                                   int32_t(key.size()));
    if (needed > key.size()) {
        key.resize(needed);
        needed = c->getSortKey(uchars(s), length, reinterpret_cast<uint8_t *>(key.data()),
                               int32_t(key.size()));
    }
    key.resize(needed);
    return key;
}

} // namespace

QByteArray localizedSortKey(QStringView s)
{
    return sortKey(Kind::Exact, s);
}
QByteArray localizedCaseInsensitiveSortKey(QStringView s)
{
    return sortKey(Kind::CaseInsensitive, s);
}
QByteArray localizedStandardSortKey(QStringView s)
{
    return sortKey(Kind::Standard, s);
}

QString collationLocaleName()
{
    return QString::fromLatin1(collationLocale().getName());
}

int localizedCompare(QStringView a, QStringView b)
{
    return collate(Kind::Exact, a, b);
}

int localizedCaseInsensitiveCompare(QStringView a, QStringView b)
{
    return collate(Kind::CaseInsensitive, a, b);
}

int localizedStandardCompare(QStringView a, QStringView b)
{
    return collate(Kind::Standard, a, b);
}

int caseAndDiacriticInsensitiveCompare(QStringView a, QStringView b)
{
    return collate(Kind::Primary, a, b);
}

int caseInsensitiveCompare(QStringView a, QStringView b)
{
    icu::UnicodeString fa = alias(a);
    icu::UnicodeString fb = alias(b);
    fa.foldCase(U_FOLD_CASE_DEFAULT);
    fb.foldCase(U_FOLD_CASE_DEFAULT);
    return sign(fa.compare(fb));
}

bool caseAndDiacriticInsensitiveContains(QStringView haystack, QStringView needle)
{
    if (needle.isEmpty())
        return false;
    const icu::UnicodeString n = searchForm(needle);
    if (n.isEmpty()) // a needle of marks alone
        return false;
    return searchForm(haystack).indexOf(n) >= 0;
}

QString caseAndDiacriticFolded(QStringView s)
{
    // ASCII has no marks, and folding its case is lower-casing it.
    if (std::all_of(s.cbegin(), s.cend(), [](QChar c) { return c.unicode() < 0x80; }))
        return s.toString().toLower();
    return toQString(searchForm(s));
}

bool caseInsensitiveContains(QStringView haystack, QStringView needle)
{
    if (needle.isEmpty())
        return false;
    const icu::UnicodeString n = caseFoldedForm(needle);
    const icu::UnicodeString h = caseFoldedForm(haystack);
    for (int32_t at = h.indexOf(n); at >= 0; at = h.indexOf(n, at + 1)) {
        // A match that stops before a letter's marks would leave its accent out.
        const int32_t end = at + n.length();
        if (end >= h.length() || !isCombiningMark(h.char32At(end)))
            return true;
    }
    return false;
}

QString precomposed(const QString &s)
{
    return normalized(s, true);
}

QString decomposed(const QString &s)
{
    return normalized(s, false);
}

bool canonicallyEqual(QStringView a, QStringView b)
{
    if (a == b)
        return true;
    const icu::Normalizer2 *nfc = normalizer(true);
    if (!nfc)
        return false;
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString na = nfc->normalize(alias(a), status);
    const icu::UnicodeString nb = nfc->normalize(alias(b), status);
    return U_SUCCESS(status) && na == nb;
}

} // namespace tl
