// settings and prop: the settings store and item properties.
#include "cli.h"
#include "platform/settings.h"
#include "store/properties.h"

#include <QFileInfo>

namespace tl::cli {

namespace {

const QStringList kTypes{"string", "int", "real", "bool", "date", "array"};

void addTypeOption(QCommandLineParser &p)
{
    p.addOption({QStringLiteral("type"),
                 QStringLiteral("Type of VALUE for set: string, int, real, bool, date (ISO 8601) "
                                "or array (the remaining arguments)."),
                 QStringLiteral("TYPE"), QStringLiteral("string")});
}

std::optional<QVariant> typedValue(const QCommandLineParser &p, const QStringList &values)
{
    const QString type = p.value(QStringLiteral("type"));
    if (!kTypes.contains(type))
        return std::nullopt;
    return parseTypedValue(type, values);
}

void describeSettings(QCommandLineParser &p)
{
    p.addPositionalArgument(QStringLiteral("ACTION"), QStringLiteral("get, set or rm."));
    p.addPositionalArgument(QStringLiteral("KEY"), QStringLiteral("The setting's key."));
    p.addPositionalArgument(QStringLiteral("VALUE"), QStringLiteral("The value, for set."),
                            QStringLiteral("[VALUE...]"));
    addTypeOption(p);
}

int runSettings(const QCommandLineParser &p, const Invocation &in)
{
    const QStringList &a = in.arguments;
    const QString action = a.value(0);
    platform::Settings &settings = platform::settings();
    if (action == u"get" && a.size() == 2) {
        if (!settings.contains(a[1]))
            return fail(QStringLiteral("No setting: %1").arg(a[1]));
        printValue(settings.object(a[1]), in.json);
        return Success;
    }
    if (action == u"set" && a.size() >= 3) {
        const std::optional<QVariant> value = typedValue(p, a.mid(2));
        if (!value)
            return fail(QStringLiteral("Not a value of type %1: %2")
                            .arg(p.value(QStringLiteral("type")), a.mid(2).join(u' ')),
                        Usage);
        settings.set(a[1], *value);
        return Success;
    }
    if (action == u"rm" && a.size() == 2) {
        settings.remove(a[1]);
        return Success;
    }
    return fail(QStringLiteral("usage: tavelle settings get|set|rm KEY [VALUE]"), Usage);
}

void describeProp(QCommandLineParser &p)
{
    p.addPositionalArgument(QStringLiteral("ACTION"), QStringLiteral("get, set, rm or inherited."));
    p.addPositionalArgument(
        QStringLiteral("PATH"),
        QStringLiteral("A book or document; set and rm take one in the library only."));
    p.addPositionalArgument(QStringLiteral("KEY"), QStringLiteral("The property's key."));
    p.addPositionalArgument(QStringLiteral("VALUE"), QStringLiteral("The value, for set."),
                            QStringLiteral("[VALUE...]"));
    addTypeOption(p);
}

int runProp(const QCommandLineParser &p, const Invocation &in)
{
    const QStringList &a = in.arguments;
    const QString action = a.value(0);
    if (a.size() < 3)
        return fail(QStringLiteral("usage: tavelle prop get|set|rm|inherited PATH KEY [VALUE]"),
                    Usage);
    // Properties are read anywhere, but changed only in the library.
    const bool changes = action == u"set" || action == u"rm";
    const std::optional<QString> item = changes ? itemInLibrary(a[1], Inside::RootAllowed)
                                                : std::optional<QString>(absolutePath(a[1]));
    if (!item)
        return Failure;
    const QString &path = *item;
    const QString &key = a[2];
    if (!QFileInfo::exists(path))
        return fail(QStringLiteral("No such item: %1").arg(path));
    if ((action == u"get" || action == u"inherited") && a.size() == 3) {
        printValue(action == u"get" ? store::tl_propertyForKey(path, key)
                                    : store::tl_inheritedPropertyForKey(path, key),
                   in.json);
        return Success;
    }
    if (action == u"set" && a.size() >= 4) {
        const std::optional<QVariant> value = typedValue(p, a.mid(3));
        if (!value)
            return fail(QStringLiteral("Not a value of type %1: %2")
                            .arg(p.value(QStringLiteral("type")), a.mid(3).join(u' ')),
                        Usage);
        store::tl_setProperty(path, *value, key);
        return Success;
    }
    if (action == u"rm" && a.size() == 3) {
        store::tl_removePropertyForKey(path, key);
        return Success;
    }
    return fail(QStringLiteral("usage: tavelle prop get|set|rm|inherited PATH KEY [VALUE]"), Usage);
}

} // namespace

const std::vector<Command> &settingsCommands()
{
    static const std::vector<Command> commands{
        {"settings", "Read, set or remove a setting.", false, describeSettings, runSettings},
        {"prop", "Read, set or remove a property of a book or document.", true, describeProp,
         runProp},
    };
    return commands;
}

} // namespace tl::cli
