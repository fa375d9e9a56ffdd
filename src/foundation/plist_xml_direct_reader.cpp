#include "foundation/plist_codecs.h"

#include <QVariantList>
#include <QVariantMap>
#include <cstdlib>
#include <cstring>

// Property files as this program and the Mac write them read straight into
// values, without building libplist's tree first: the task lists of a large
// library are read many times a minute. Anything out of the ordinary
// (comments, character sections, data, references by number, odd spacing,
// and every kind of damage) is left to libplist's reader, so this reader
// never answers differently from it.
namespace tl::plist::detail {

namespace {

class DirectReader
{
public:
    DirectReader(const char *begin, const char *end) : p_(begin), end_(end) {}

    std::optional<QVariant> document()
    {
        skipSpace();
        if (startsWith("<?xml") && !skipPast("?>"))
            return std::nullopt;
        skipSpace();
        if (startsWith("<!DOCTYPE")) {
            const char *close = find('>');
            if (!close || std::memchr(p_, '[', size_t(close - p_)))
                return std::nullopt;
            p_ = close + 1;
        }
        skipSpace();
        if (!startsWith("<plist") || p_ + 6 >= end_ || (p_[6] != '>' && p_[6] != ' '))
            return std::nullopt;
        if (!skipPast(">"))
            return std::nullopt;
        std::optional<QVariant> value = this->value(0);
        skipSpace();
        if (!value || !consume("</plist>"))
            return std::nullopt;
        skipSpace();
        if (p_ != end_)
            return std::nullopt;
        return value;
    }

private:
    std::optional<QVariant> value(int depth)
    {
        if (depth > kMaxDepth)
            return std::nullopt;
        skipSpace();
        if (consume("<dict>"))
            return dictionary(depth);
        if (consume("<array>"))
            return array(depth);
        if (consume("<string>"))
            return text("</string>");
        if (consume("<string/>"))
            return QVariant(QString());
        if (consume("<date>"))
            return date();
        if (consume("<integer>"))
            return integer();
        if (consume("<real>"))
            return real();
        if (consume("<true/>"))
            return QVariant(true);
        if (consume("<false/>"))
            return QVariant(false);
        if (consume("<dict/>"))
            return QVariant(QVariantMap());
        if (consume("<array/>"))
            return QVariant(QVariantList());
        return std::nullopt;
    }

    std::optional<QVariant> dictionary(int depth)
    {
        QVariantMap map;
        for (;;) {
            skipSpace();
            if (consume("</dict>"))
                return QVariant(map);
            const std::optional<QVariant> key =
                consume("<key>") ? text("</key>") : std::optional<QVariant>();
            if (!key)
                return std::nullopt;
            std::optional<QVariant> item = value(depth + 1);
            // A repeated key is left to libplist to settle.
            if (!item || map.contains(key->toString()))
                return std::nullopt;
            map.insert(key->toString(), std::move(*item));
        }
    }

    std::optional<QVariant> array(int depth)
    {
        QVariantList list;
        for (;;) {
            skipSpace();
            if (consume("</array>"))
                return QVariant(list);
            std::optional<QVariant> item = value(depth + 1);
            if (!item)
                return std::nullopt;
            list.append(std::move(*item));
        }
    }

    // Text up to the closing tag, with the five named references.
    std::optional<QVariant> text(const char *close)
    {
        QByteArray bytes;
        for (;;) {
            const char *stop = p_;
            while (stop < end_ && *stop != '<' && *stop != '&' && *stop != '\r')
                ++stop;
            bytes.append(p_, stop - p_);
            p_ = stop;
            // Line ends that XML would normalise are libplist's to read.
            if (p_ == end_ || *p_ == '\r')
                return std::nullopt;
            if (*p_ == '<')
                break;
            static constexpr struct
            {
                const char *reference;
                char character;
            } kReferences[] = {
                {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};
            bool known = false;
            for (const auto &r : kReferences) {
                if (consume(r.reference)) {
                    bytes.append(r.character);
                    known = true;
                    break;
                }
            }
            if (!known)
                return std::nullopt;
        }
        if (!consume(close))
            return std::nullopt;
        return QVariant(QString::fromUtf8(bytes));
    }

    // The element's text when it is short and made only of the characters.
    std::optional<QByteArray> plainText(const char *close, const char *allowed)
    {
        const char *stop = p_;
        while (stop < end_ && stop - p_ < 40 && std::strchr(allowed, *stop) && *stop)
            ++stop;
        QByteArray content(p_, stop - p_);
        p_ = stop;
        if (content.isEmpty() || !consume(close))
            return std::nullopt;
        return content;
    }

    std::optional<QVariant> date()
    {
        const std::optional<QByteArray> content = plainText("</date>", "0123456789-:TZ");
        // Only "YYYY-MM-DDTHH:MM:SSZ".
        if (!content || content->size() != 20)
            return std::nullopt;
        const char *t = content->constData();
        const auto number = [t](int at, int length) {
            int n = 0;
            for (int i = at; i < at + length; ++i) {
                if (t[i] < '0' || t[i] > '9')
                    return -1;
                n = n * 10 + (t[i] - '0');
            }
            return n;
        };
        if (t[4] != '-' || t[7] != '-' || t[10] != 'T' || t[13] != ':' || t[16] != ':' ||
            t[19] != 'Z')
            return std::nullopt;
        const QDate day(number(0, 4), number(5, 2), number(8, 2));
        const QTime time(number(11, 2), number(14, 2), number(17, 2));
        if (!day.isValid() || !time.isValid())
            return std::nullopt;
        return QVariant(QDateTime(day, time, Qt::UTC));
    }

    std::optional<QVariant> integer()
    {
        const std::optional<QByteArray> content = plainText("</integer>", "-0123456789");
        // Beyond 18 digits the range needs libplist's own reading.
        if (!content || content->size() > 18 || content->lastIndexOf('-') > 0 || *content == "-")
            return std::nullopt;
        return QVariant(qint64(std::strtoll(content->constData(), nullptr, 10)));
    }

    std::optional<QVariant> real()
    {
        const std::optional<QByteArray> content = plainText("</real>", "-0123456789.");
        if (!content || content->lastIndexOf('-') > 0 || content->count('.') > 1 ||
            content->startsWith('.') || content->endsWith('.') || *content == "-")
            return std::nullopt;
        return QVariant(std::strtod(content->constData(), nullptr));
    }

    void skipSpace()
    {
        while (p_ < end_ && (*p_ == ' ' || *p_ == '\n' || *p_ == '\t' || *p_ == '\r'))
            ++p_;
    }
    bool startsWith(const char *s) const
    {
        const size_t n = std::strlen(s);
        return size_t(end_ - p_) >= n && std::memcmp(p_, s, n) == 0;
    }
    bool consume(const char *s)
    {
        if (!startsWith(s))
            return false;
        p_ += std::strlen(s);
        return true;
    }
    const char *find(char c) const
    {
        return static_cast<const char *>(std::memchr(p_, c, size_t(end_ - p_)));
    }
    bool skipPast(const char *s)
    {
        const size_t n = std::strlen(s);
        for (const char *at = p_; size_t(end_ - at) >= n; ++at) {
            if (std::memcmp(at, s, n) == 0) {
                p_ = at + n;
                return true;
            }
        }
        return false;
    }

    const char *p_;
    const char *end_;
};

} // namespace

std::optional<QVariant> parseXmlDirectly(const QByteArray &bytes)
{
    return DirectReader(bytes.constData(), bytes.constData() + bytes.size()).document();
}

} // namespace tl::plist::detail
