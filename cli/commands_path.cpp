// path: the rules of item paths, for scripts.
#include "cli.h"
#include "store/item_path.h"

#include <functional>

namespace tl::cli {

namespace {

struct PathRule
{
    const char *name;
    bool takesBase;
    std::function<QVariant(const QString &path, const QString &base)> apply;
};

const std::vector<PathRule> &pathRules()
{
    using namespace store;
    static const std::vector<PathRule> rules{
        {"normalize", false,
         [](const QString &p, const QString &) { return tl_normalizedPath(p); }},
        {"display", false,
         [](const QString &p, const QString &) { return tl_pathFormattedForDisplay(p); }},
        {"anchor", false, [](const QString &p, const QString &) { return tl_pathAnchor(p); }},
        {"strip-anchor", false,
         [](const QString &p, const QString &) { return tl_pathWithoutAnchor(p); }},
        {"escape", false,
         [](const QString &p, const QString &) { return tl_pathEscapedForMarkdownLink(p); }},
        {"relative", true,
         [](const QString &p, const QString &base) { return tl_makeRelativeToPath(p, base); }},
        {"excluded", false,
         [](const QString &p, const QString &) { return tl_pathIsExcludedFromDisplay(p); }},
    };
    return rules;
}

void describePath(QCommandLineParser &p)
{
    QStringList names;
    for (const PathRule &r : pathRules())
        names << QString::fromLatin1(r.name);
    p.addPositionalArgument(QStringLiteral("RULE"), names.join(u", ") + u'.');
    p.addPositionalArgument(QStringLiteral("PATH"), QStringLiteral("The path, as a string."));
    p.addPositionalArgument(QStringLiteral("BASE"),
                            QStringLiteral("The base folder, for relative."),
                            QStringLiteral("[BASE]"));
}

int runPath(const QCommandLineParser &, const Invocation &in)
{
    const QStringList &a = in.arguments;
    for (const PathRule &rule : pathRules()) {
        if (a.value(0) != QLatin1String(rule.name))
            continue;
        if (a.size() != (rule.takesBase ? 3 : 2))
            break;
        printValue(rule.apply(a[1], a.value(2)), in.json);
        return Success;
    }
    return fail(QStringLiteral("usage: tavelle path "
                               "normalize|display|anchor|strip-anchor|escape|relative|excluded "
                               "PATH [BASE]"),
                Usage);
}

} // namespace

const std::vector<Command> &pathCommands()
{
    static const std::vector<Command> commands{
        {"path", "Apply a path rule to a path string.", false, describePath, runPath},
    };
    return commands;
}

} // namespace tl::cli
