#include "store/safe_names.h"

#include "foundation/path_string.h"
#include "foundation/regex.h"

#include <QFileInfo>

namespace tl::store {

namespace {

bool somethingIsAt(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

} // namespace

QString trimmedOfTitlePunctuation(const QString &text)
{
    static const QString trimmed = QStringLiteral("-_+#& ");
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && trimmed.contains(text[start]))
        ++start;
    while (end > start && trimmed.contains(text[end - 1]))
        --end;
    return start == end ? text : text.mid(start, end - start);
}

QString tl_escapeIllegalCharacters(const QString &title)
{
    static const QString illegal = QStringLiteral("/\\:?*<>\"|&");
    QString safe = title;
    for (QChar &c : safe)
        if (illegal.contains(c))
            c = u'-';
    static const Regex dashRuns(QStringLiteral("-{2,}+"));
    return trimmedOfTitlePunctuation(dashRuns.replaceAll(safe, QStringLiteral("-")));
}

QString tl_uniqueNameForFileatPath(const QString &fileName, const QString &folder)
{
    const QString extension = path::extension(fileName);
    const QString stem = tl_escapeIllegalCharacters(path::deletingExtension(fileName));
    const auto candidate = [&](const QString &name) {
        return path::appendingComponent(
            folder, extension.isEmpty() ? name : path::appendingExtension(name, extension));
    };
    QString path = candidate(stem);
    for (int n = 1; somethingIsAt(path); ++n)
        path = candidate(stem + QStringLiteral(" %1").arg(n));
    return path;
}

} // namespace tl::store
