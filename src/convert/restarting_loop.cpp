#include "convert/restarting_loop.h"

#include <spdlog/spdlog.h>

namespace tl::convert {

namespace {

// How much of the text around a replacement is looked at for an opener:
// more than the longest literal an opener begins with.
constexpr qsizetype kAround = 16;

// Where in `before + replacement + after` an opener begins that reaches into
// the replacement or beyond it, and begins before `after`.
std::optional<qsizetype> openerAround(const Regex &opener, QStringView before,
                                      const QString &replacement, QStringView after)
{
    const QString probe = before.toString() + replacement + after.toString();
    const qsizetype limit = before.size() + replacement.size();
    for (std::optional<RegexMatch> m = opener.match(probe); m && m->start() < limit;
         m = opener.match(probe, m->start() + 1)) {
        if (m->end() > before.size())
            return m->start();
    }
    return std::nullopt;
}

class Passes
{
public:
    explicit Passes(const RestartingLoop &loop, qsizetype textLength)
        : m_loop(loop), m_budget(Regex::maxReplaceRounds(textLength))
    {
    }

    // One pass from the front; false when it changed nothing or must stop.
    bool run(QString &text)
    {
        QString out;
        QString work = text;
        qsizetype from = 0;
        bool changed = false;
        while (const std::optional<RegexMatch> m = m_loop.regex.match(work, from)) {
            const QString replacement = m_loop.replacement(*m, work);
            if (replacement == m->captured(work) || --m_budget < 0) {
                spdlog::warn("Regular expression {}: replacing would not end, stopped",
                             m_loop.regex.pattern().toStdString());
                m_stopped = true;
                break;
            }
            changed = true;
            out.append(QStringView(work).sliced(from, m->start() - from));
            const QStringView before = QStringView(out).right(kAround);
            const QStringView after = QStringView(work).sliced(m->end()).left(kAround);
            if (const auto at = openerAround(m_loop.opener, before, replacement, after)) {
                // The search resumes inside the replacement: it goes back
                // into the text still to be searched.
                const qsizetype back = std::max<qsizetype>(0, before.size() - *at);
                QString rest = out.right(back) + replacement + work.sliced(m->end());
                out.chop(back);
                work = std::move(rest);
                from = 0;
            } else {
                out.append(replacement);
                from = m->end();
            }
        }
        if (!changed)
            return false;
        out.append(QStringView(work).sliced(from));
        text = std::move(out);
        return !m_stopped;
    }

private:
    const RestartingLoop &m_loop;
    qsizetype m_budget;
    bool m_stopped = false;
};

} // namespace

QString replacedWhileMatching(const QString &text, const RestartingLoop &loop)
{
    QString result = text;
    Passes passes(loop, text.size());
    while (passes.run(result)) {
    }
    return result;
}

} // namespace tl::convert
