#include "browser/document_kinds.h"

#include "browser/browser_keys.h"
#include "foundation/path_string.h"
#include "platform/settings.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/keys.h"
#include "store/properties.h"

#include <QFile>
#include <functional>

namespace tl::browser {

namespace {

bool setting(const char *key)
{
    return platform::settings().boolValue(QLatin1String(key));
}

bool isOneOf(const QString &extension, std::initializer_list<const char16_t *> list)
{
    for (const char16_t *candidate : list)
        if (extension == QStringView(candidate))
            return true;
    return false;
}

bool hasMarkdownProperty(const QString &path)
{
    return !store::tl_propertyForKey(path, QLatin1String(keys::property::Markdown))
                .toString()
                .isEmpty();
}

struct KindRule
{
    std::function<bool(const QString &extension, const QString &path)> matches;
    // The view shown without the toggle; with it, the other of plain text
    // and formatted where the rule flips.
    std::function<int(const QString &path)> defaultView;
    bool flips;
    FormattedSource source;
    const char *toggleTitle;
    bool readOnly;
};

int formattedUnlessMarkdownAsPlainText(const QString &)
{
    return setting(keys::setting::ShowMarkdownAsPlainText) ? 1 : 2;
}

int fixed(int view, const QString &)
{
    return view;
}

// First match decides; the order is part of the table.
const std::vector<KindRule> &kindRules()
{
    using namespace std::placeholders;
    static const std::vector<KindRule> rules = {
        {[](const QString &e, const QString &) {
             return store::markdownExtensions().contains(e) || e == u"fountain" || e == u"opml";
         },
         formattedUnlessMarkdownAsPlainText, true, FormattedSource::Rendered, "", false},
        {[](const QString &e, const QString &) { return e == u"fdx"; }, std::bind(fixed, 2, _1),
         true, FormattedSource::FinalDraft, "", false},
        {[](const QString &e, const QString &) {
             return store::plainTextExtensions().contains(e) ||
                    store::customPlaintextExtensions().contains(e);
         },
         std::bind(fixed, 1, _1), true, FormattedSource::File, "Switch to formatted view", false},
        {[](const QString &e, const QString &p) { return e == u"html" && hasMarkdownProperty(p); },
         std::bind(fixed, 2, _1), true, FormattedSource::PlainTextRepresentation, "", false},
        {[](const QString &e, const QString &) {
             return isOneOf(e, {u"html", u"htm"});
         },
         std::bind(fixed, 2, _1), true, FormattedSource::File, "Show HTML source code", false},
        {[](const QString &e, const QString &) { return e == u"webarchive"; },
         [](const QString &) {
             return setting(keys::setting::OpenWebarchivesWithTLKSMethods) ? 2 : 5;
         },
         false, FormattedSource::WebArchive, "", true},
        {[](const QString &e, const QString &) { return e == u"pdf"; }, std::bind(fixed, 3, _1),
         false, FormattedSource::None, "", false},
        {[](const QString &e, const QString &) {
             return isOneOf(e, {u"webloc", u"url"});
         },
         [](const QString &p) { return tl_embeddedURL(p).startsWith(u"http") ? 2 : 5; }, false,
         FormattedSource::WebLocation, "", true},
        {[](const QString &e, const QString &) { return e == u"eml"; }, std::bind(fixed, 2, _1),
         false, FormattedSource::Mail, "", true},
        {[](const QString &e, const QString &) { return e == u"enex"; }, std::bind(fixed, 2, _1),
         false, FormattedSource::EvernoteExport, "", true},
        {[](const QString &e, const QString &) {
             return store::imageExtensions().contains(e) && !isOneOf(e, {u"heic", u"heif"});
         },
         std::bind(fixed, 2, _1), false, FormattedSource::Image, "", true},
        {[](const QString &e, const QString &) { return e == u"itmz"; }, std::bind(fixed, 2, _1),
         false, FormattedSource::MindMapPreview, "", true},
    };
    return rules;
}

} // namespace

ViewDecision decideView(const QString &path, bool toggled)
{
    const QString extension = store::lowerCasedExtension(path);
    for (const KindRule &rule : kindRules()) {
        if (!rule.matches(extension, path))
            continue;
        ViewDecision decision;
        decision.view = rule.defaultView(path);
        decision.toggles = rule.flips;
        decision.toggleTitle = QLatin1String(rule.toggleTitle);
        if (rule.flips && toggled)
            decision.view = decision.view == 1 ? 2 : 1;
        decision.source = decision.view == 2 ? rule.source : FormattedSource::None;
        decision.readOnly = rule.readOnly && decision.view == 2;
        return decision;
    }
    return {5, FormattedSource::None, {}, false, false};
}

QString tl_embeddedURL(const QString &path)
{
    const QString extension = store::lowerCasedExtension(path);
    if (extension == u"webloc")
        return store::tl_dictionaryWithContentsOfFile(path).value(QStringLiteral("URL")).toString();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    // An Internet shortcut: "URL=" on a line of its own.
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.startsWith(u"URL=", Qt::CaseInsensitive))
            return line.mid(4);
    }
    return {};
}

} // namespace tl::browser
