#include "foundation/path_string.h"

namespace tl::path {

namespace {
// The path without trailing slashes, keeping a lone "/".
QString trimmedTrailingSlashes(const QString &path)
{
    qsizetype end = path.size();
    while (end > 1 && path[end - 1] == u'/')
        --end;
    return path.left(end);
}
} // namespace

QString lastComponent(const QString &path)
{
    const QString p = trimmedTrailingSlashes(path);
    if (p == u"/")
        return p;
    return p.mid(p.lastIndexOf(u'/') + 1);
}

QString deletingLastComponent(const QString &path)
{
    const QString p = trimmedTrailingSlashes(path);
    const qsizetype slash = p.lastIndexOf(u'/');
    if (slash < 0)
        return {};
    if (slash == 0)
        return p.size() > 1 ? QStringLiteral("/") : p;
    qsizetype end = slash;
    while (end > 1 && p[end - 1] == u'/')
        --end;
    return p.left(end);
}

QString appendingComponent(const QString &path, const QString &component)
{
    if (path.isEmpty())
        return component;
    QString base = trimmedTrailingSlashes(path);
    qsizetype start = 0;
    while (start < component.size() && component[start] == u'/')
        ++start;
    const QString rest = component.mid(start);
    if (rest.isEmpty())
        return base;
    if (base == u"/")
        return base + rest;
    return base + u'/' + rest;
}

QString extension(const QString &path)
{
    const QString name = lastComponent(path);
    const qsizetype dot = name.lastIndexOf(u'.');
    if (dot <= 0 || name == u"/")
        return {};
    return name.mid(dot + 1);
}

QString deletingExtension(const QString &path)
{
    const QString p = trimmedTrailingSlashes(path);
    const QString ext = extension(p);
    if (ext.isEmpty())
        return p;
    return p.left(p.size() - ext.size() - 1);
}

QString appendingExtension(const QString &path, const QString &ext)
{
    return trimmedTrailingSlashes(path) + u'.' + ext;
}

QStringList components(const QString &path)
{
    QStringList result;
    if (path.isEmpty())
        return result;
    if (path.startsWith(u'/'))
        result << QStringLiteral("/");
    for (const QString &part : path.split(u'/', Qt::SkipEmptyParts))
        result << part;
    if (path.size() > 1 && path.endsWith(u'/'))
        result << QStringLiteral("/");
    return result;
}

QString joinedComponents(const QStringList &parts)
{
    QString result;
    for (const QString &part : parts)
        result = appendingComponent(result, part);
    return result;
}

} // namespace tl::path
