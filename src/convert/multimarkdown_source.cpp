#include "convert/multimarkdown.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "platform/file_ops.h"

#include <QFileInfo>

namespace tl::convert {

namespace {

QString metadataKey(const QString &key)
{
    QString folded = key.toLower();
    folded.remove(u' ');
    return folded;
}

QString fileText(const QString &file)
{
    return QString::fromUtf8(platform::readFile(file).value_or(QByteArray()));
}

QString inFolder(const QString &folder, const QString &name)
{
    return name.startsWith(u'/') ? name : path::appendingComponent(folder, name);
}

QString headerOrFooterFile(const QString &text, const QString &folder, const char *key)
{
    const QString name = multiMarkdownMetadata(text).value(QLatin1String(key));
    return name.isEmpty() ? QString() : fileText(inFolder(folder, name));
}

QString transcluded(const QString &text, const QString &folder, MultiMarkdownFormat format,
                    QStringList &open)
{
    static const Regex marker(QStringLiteral(R"(\{\{([^\{\}\n]+?)\}\})"));
    constexpr int kDeepest = 20;
    return marker.replaceMatches(
        text, [&](const RegexMatch &m, QStringView source) -> std::optional<QString> {
            QString name = m.capturedString(source, 1).trimmed();
            if (name == u"TOC" || name.startsWith(QStringLiteral("TOC:")))
                return std::nullopt;
            if (name.endsWith(QStringLiteral(".*")))
                name = name.chopped(1) + (format == MultiMarkdownFormat::LaTeX
                                              ? QStringLiteral("tex")
                                              : QStringLiteral("html"));
            if (folder.isEmpty() && !name.startsWith(u'/'))
                return std::nullopt;
            const QString file = QFileInfo(inFolder(folder, name)).absoluteFilePath();
            if (open.contains(file) || open.size() >= kDeepest || !QFileInfo(file).isFile())
                return std::nullopt;
            const QString whole = fileText(file);
            const QString body = whole.mid(multiMarkdownMetadata(whole).bodyStart);
            open.append(file);
            QString result = transcluded(body, path::deletingLastComponent(file), format, open);
            open.removeLast();
            return result;
        });
}

} // namespace

QString MultiMarkdownMetadata::value(const QString &key) const
{
    const QString wanted = metadataKey(key);
    for (const auto &[name, value] : entries) {
        if (name == wanted)
            return value;
    }
    return QString();
}

MultiMarkdownMetadata multiMarkdownMetadata(const QString &text)
{
    static const Regex line(QStringLiteral(R"(^([A-Za-z0-9][A-Za-z0-9 _\-]*):[ \t]*(.*)$)"));
    MultiMarkdownMetadata metadata;
    qsizetype at = 0;
    while (at < text.size()) {
        qsizetype end = text.indexOf(u'\n', at);
        end = end < 0 ? text.size() : end;
        const QString current = text.mid(at, end - at);
        if (current.trimmed().isEmpty())
            break;
        if (const std::optional<RegexMatch> m = line.match(current)) {
            metadata.entries.append({metadataKey(m->capturedString(current, 1)),
                                     m->capturedString(current, 2).trimmed()});
        } else if (!metadata.entries.isEmpty() &&
                   (current.startsWith(u' ') || current.startsWith(u'\t'))) {
            metadata.entries.last().second += u' ' + current.trimmed();
        } else {
            // No metadata block at all.
            return MultiMarkdownMetadata();
        }
        at = end + 1;
    }
    if (metadata.entries.isEmpty())
        return MultiMarkdownMetadata();
    // The body begins behind the empty line that ends the block.
    metadata.bodyStart = std::min(at + 1, text.size());
    return metadata;
}

QString withMetadataHeader(const QString &text, const QString &folder)
{
    const QString header = headerOrFooterFile(text, folder, "MMD Header");
    if (header.isEmpty())
        return text;
    const qsizetype bodyStart = multiMarkdownMetadata(text).bodyStart;
    return text.left(bodyStart) + header + QStringLiteral("\n\n") + text.mid(bodyStart);
}

QString withMetadataFooter(const QString &text, const QString &folder)
{
    const QString footer = headerOrFooterFile(text, folder, "MMD Footer");
    return footer.isEmpty() ? text : text + QStringLiteral("\n\n") + footer;
}

QString withTranscludedFiles(const QString &text, const QString &folder, const QString &sourcePath,
                             MultiMarkdownFormat format)
{
    QStringList open;
    if (!sourcePath.isEmpty())
        open.append(QFileInfo(sourcePath).absoluteFilePath());
    return transcluded(text, folder, format, open);
}

QString criticMarkupAccepted(const QString &text)
{
    static const RegexRule rules[] = {
        {Regex(QStringLiteral(R"(\{\+\+(.*?)\+\+\})"), RegexOption::DotMatchesNewline),
         QStringLiteral("$1")},
        {Regex(QStringLiteral(R"(\{--(.*?)--\})"), RegexOption::DotMatchesNewline), QString()},
        {Regex(QStringLiteral(R"(\{~~(.*?)~>(.*?)~~\})"), RegexOption::DotMatchesNewline),
         QStringLiteral("$2")},
        {Regex(QStringLiteral(R"(\{==(.*?)==\})"), RegexOption::DotMatchesNewline),
         QStringLiteral("$1")},
        {Regex(QStringLiteral(R"(\{>>(.*?)<<\})"), RegexOption::DotMatchesNewline), QString()},
    };
    return applyRules(text, rules);
}

QString criticMarkupAsHTML(const QString &text)
{
    static const RegexRule rules[] = {
        {Regex(QStringLiteral(R"(\{\+\+(.*?)\+\+\})"), RegexOption::DotMatchesNewline),
         QStringLiteral("<ins>$1</ins>")},
        {Regex(QStringLiteral(R"(\{--(.*?)--\})"), RegexOption::DotMatchesNewline),
         QStringLiteral("<del>$1</del>")},
        {Regex(QStringLiteral(R"(\{~~(.*?)~>(.*?)~~\})"), RegexOption::DotMatchesNewline),
         QStringLiteral("<del>$1</del><ins>$2</ins>")},
        {Regex(QStringLiteral(R"(\{==(.*?)==\})"), RegexOption::DotMatchesNewline),
         QStringLiteral("<mark>$1</mark>")},
        {Regex(QStringLiteral(R"(\{>>(.*?)<<\})"), RegexOption::DotMatchesNewline),
         QStringLiteral("<span class=\"critic comment\">$1</span>")},
    };
    return applyRules(text, rules);
}

} // namespace tl::convert
