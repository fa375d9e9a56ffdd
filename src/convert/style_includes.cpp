#include "convert/style_sheet.h"
#include "foundation/compare.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "platform/file_ops.h"
#include "store/log.h"

#include <QSet>

namespace tl::convert {

namespace {

// The entry of availableStyleSheets a name means, compared whole and then
// by last component; the name itself when none.
QString knownSheetName(const QString &name)
{
    const QStringList sheets = availableStyleSheets();
    const QString lowered = name.toLower();
    for (const QString &sheet : sheets) {
        if (localizedCompare(sheet.toLower(), lowered) == 0)
            return sheet;
    }
    for (const QString &sheet : sheets) {
        if (localizedCompare(path::lastComponent(sheet).toLower(), lowered) == 0)
            return sheet;
    }
    return name;
}

QString includedText(const QString &name, QSet<QString> &included)
{
    QString sheet = name;
    if (!sheet.endsWith(QStringLiteral(".css"), Qt::CaseInsensitive))
        sheet = path::appendingExtension(sheet, QStringLiteral("css"));
    const QString file = styleSheetFile(knownSheetName(sheet));
    const QString component = path::lastComponent(file);
    if (included.contains(component)) {
        logLine(QStringLiteral("skipping  %1").arg(file));
        return QString();
    }
    included.insert(component);
    logLine(QStringLiteral("including %1").arg(file));
    return QString::fromUtf8(platform::readFile(file).value_or(QByteArray()));
}

} // namespace

QString tl_styleSheetWithResolvedIncludes(const QString &input)
{
    static const Regex include(QStringLiteral(R"re(^\s*?@tl_include:\s*?"(.+?)";)re"),
                               RegexOption::CaseInsensitive | RegexOption::AnchorsMatchLines);
    static const Regex script(QStringLiteral("<script.*?</script>"),
                              RegexOption::DotMatchesNewline);
    static const Regex style(QStringLiteral("<style.*?>(.*?)</style>"),
                             RegexOption::DotMatchesNewline);
    QSet<QString> included;
    QString sheet = input;
    // Each include may bring new ones, anywhere: take the first match anew
    // after every replacement.
    while (const std::optional<RegexMatch> match = include.match(sheet)) {
        QString replacement = includedText(match->capturedString(sheet, 1), included);
        for (const RegexMatch &found : script.allMatches(replacement))
            sheet += QStringLiteral("\n%1\n").arg(found.captured(replacement));
        if (const std::optional<RegexMatch> inner = style.match(replacement))
            replacement = inner->capturedString(replacement, 1);
        sheet.replace(match->start(), match->length(), replacement);
    }
    return sheet;
}

} // namespace tl::convert
