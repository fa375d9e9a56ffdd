#include "convert/style_sheet.h"

#include "convert/convert_keys.h"
#include "convert/resources.h"
#include "foundation/compare.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "platform/file_ops.h"
#include "platform/folders.h"
#include "platform/settings.h"
#include "store/colors.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/properties.h"
#include "store/style_values.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QFileInfo>
#include <algorithm>
#include <cmath>

namespace tl::convert {

namespace {

const QString kBundlePrefix = QStringLiteral("CSS/");
const QString kLibraryPrefix = QStringLiteral("TLResources");

QStringList sheetsBelow(const QString &folder, const QString &prefix)
{
    QStringList sheets;
    QDirIterator it(folder, {QStringLiteral("*.css")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString file = it.next();
        sheets.append(prefix + file.mid(folder.size() + 1));
    }
    return sheets;
}

QString inheritedOrSetting(const QString &path, const char *key)
{
    const QString value =
        platform::stringFromValue(store::tl_inheritedPropertyForKey(path, QLatin1String(key)));
    return value.isEmpty() ? platform::settings().string(QLatin1String(key)) : value;
}

QString textAlignment(const QString &path)
{
    const QString alignment = inheritedOrSetting(path, keys::TextAlignment);
    if (alignment.isEmpty())
        return QStringLiteral("initial");
    if (alignment.contains(QStringLiteral("Just")))
        return QStringLiteral("justify");
    if (alignment.contains(QStringLiteral("Right")))
        return QStringLiteral("right");
    if (alignment.contains(QStringLiteral("Left")))
        return QStringLiteral("left");
    return alignment;
}

QString hyphens(const QString &path)
{
    return inheritedOrSetting(path, keys::HyphenateText) == u"1" ? QStringLiteral("auto")
                                                                 : QStringLiteral("none");
}

QString lineHeight(double spacing)
{
    if (spacing == 1.0)
        return QStringLiteral("normal");
    return QString::asprintf("%1.1fem", spacing + 0.3);
}

// The width of "1." in the face at the size. No font metrics service runs
// in a headless process, so the advance is taken from the proportions of a
// common sans-serif: a figure is 0.556 em wide, a full stop 0.278 em.
QString listIndent(int size)
{
    return QString::asprintf("%f", (0.556 + 0.278) * size);
}

QString hexColor(const store::RGBA &color)
{
    auto component = [](double value) { return unsigned(int(value * 255)) & 0xff; };
    return QString::asprintf("%.2x%.2x%.2x", component(color.red), component(color.green),
                             component(color.blue));
}

QString backgroundImage(const QString &image)
{
    if (image.isEmpty() || image.contains(QStringLiteral("Pattern")) ||
        image.contains(QStringLiteral("Plain Line Moleskine")))
        return QString();
    if (image.startsWith(QStringLiteral("Icons/")))
        return path::appendingComponent(platform::resourcesFolder(), image);
    if (store::tl_itemIsChildOfTavelle(image))
        return store::tl_normalizedPath(image).mid(1);
    return image;
}

// Face names of the platform's system fonts become their CSS keywords.
QString cssFace(const QString &face)
{
    if (face.startsWith(QStringLiteral("System Monospaced")))
        return QStringLiteral("ui-monospace");
    if (face.startsWith(QStringLiteral("System Font")))
        return QStringLiteral("-apple-system");
    return face;
}

QString withBackgroundImage(QString sheet, const QString &image)
{
    const QString variable = QStringLiteral("**TavelleBGImage**");
    for (qsizetype at = sheet.indexOf(variable); at >= 0; at = sheet.indexOf(variable)) {
        if (!image.isEmpty()) {
            sheet.replace(at, variable.size(), image);
            continue;
        }
        const qsizetype lineStart = sheet.lastIndexOf(u'\n', at) + 1;
        qsizetype lineEnd = sheet.indexOf(u'\n', at);
        lineEnd = lineEnd < 0 ? sheet.size() : lineEnd + 1;
        sheet.remove(lineStart, lineEnd - lineStart);
    }
    return sheet;
}

// The first style element on one line; text after it keeps its lines.
QString withFirstStyleOnOneLine(QString sheet)
{
    static const Regex style(QStringLiteral("<style.*?</style>"), RegexOption::DotMatchesNewline);
    const std::optional<RegexMatch> first = style.match(sheet);
    if (!first)
        return sheet;
    QString element = first->capturedString(sheet);
    element.replace(u'\n', u' ');
    element.remove(u'\t');
    sheet.replace(first->start(), first->length(), element);
    return sheet;
}

// The heading of a notes section, in the user's language and in capitals.
QString sectionTitle(const char *english)
{
    return QStringLiteral("content: \"%1\";")
        .arg(QCoreApplication::translate("Tavelle", english).toUpper());
}

struct Variable
{
    const char *name;
    QString value;
};

} // namespace

QStringList availableStyleSheets()
{
    QStringList sheets =
        sheetsBelow(platform::resourcesFolder() + QStringLiteral("/CSS"), kBundlePrefix);
    const QString root = store::libraryRoot();
    if (!root.isEmpty())
        sheets += sheetsBelow(root + QStringLiteral("/TLResources/CSS"),
                              QStringLiteral("TLResources/CSS/"));
    std::sort(sheets.begin(), sheets.end(), LocalizedLess());
    return sheets;
}

QString styleSheetFile(const QString &reference)
{
    if (reference.startsWith(kBundlePrefix))
        return path::appendingComponent(platform::resourcesFolder(), reference);
    return path::appendingComponent(store::libraryRoot(), reference);
}

QString tl_applicableStyleSheet(const QString &path)
{
    QString sheet = platform::stringFromValue(
        store::tl_inheritedPropertyForKey(path, QLatin1String(tl::keys::property::CSS)));
    if (sheet.isEmpty())
        sheet = platform::settings().string(QLatin1String(keys::DefaultStyleSheet));
    if (!sheet.isEmpty() && !QFileInfo::exists(styleSheetFile(sheet)))
        sheet.clear();
    return sheet.isEmpty() ? QStringLiteral("CSS/Default Theme.css") : sheet;
}

QString tl_inheritedStyleSheet(const QString &path)
{
    static const Regex styleElement(QStringLiteral("<style.*?</style>"),
                                    RegexOption::DotMatchesNewline);
    static const Regex authorsComment(QStringLiteral(R"((?s:/\*--.*?\*/\n?))"));

    const QString face = cssFace(store::tl_fontFaceAtPath(path));
    int size = store::tl_fontSizeAtPath(path);
    if (size == 0)
        size = 14;
    const int printSetting = int(platform::settings().integer(QLatin1String(keys::PrintFontSize)));
    const int printSize = printSetting != 0 ? printSetting : size;
    const store::DocumentColors colors = store::tl_colorsAtPath(path);

    QString sheet = QString::fromUtf8(
        platform::readFile(styleSheetFile(tl_applicableStyleSheet(path))).value_or(QByteArray()));
    if (!styleElement.isMatch(sheet))
        sheet = QStringLiteral("<style type=\"text/css\">\n%1</style>").arg(sheet);
    if (sheet.contains(QStringLiteral("@tl_include")))
        sheet = tl_styleSheetWithResolvedIncludes(sheet);

    const Variable variables[] = {
        {"**TavelleFont**", face},
        {"**TavelleFontColor**", u'#' + hexColor(colors.plainText)},
        {"**TavelleListIndentVar**", listIndent(size)},
        {"**TavelleListIndentVarPrintFont**", listIndent(printSize)},
        {"**TavelleBGColor**", u'#' + hexColor(colors.plainBackground)},
        {"**TavelleFontSize**", QStringLiteral("%1px").arg(size)},
        {"**TavelleLinespacing**", lineHeight(store::tl_linespacingAtPath(path))},
        {"**TavelleTextAlign**", textAlignment(path)},
        {"**TavelleHyphens**", hyphens(path)},
        {"**TavellePrintFontSize**", QStringLiteral("%1px").arg(printSize)},
        {"content: \"FOOTNOTES\";", sectionTitle("Footnotes")},
        {"content: \"CITATIONS\";", sectionTitle("Citations")},
        {"content: \"GLOSSARY\";", sectionTitle("Glossary")},
        {"content: \"MENTIONS\";", sectionTitle("Mentions")},
        // The program's own scripts (diagrams, formulas) for sheets that load them.
        {"**TavelleResourcesURL**", resourcesURL()},
    };
    for (const Variable &variable : variables)
        sheet.replace(QLatin1String(variable.name), variable.value);
    sheet = withBackgroundImage(sheet, backgroundImage(colors.backgroundImage));
    sheet = authorsComment.replaceAll(sheet, QString());
    return withFirstStyleOnOneLine(sheet);
}

} // namespace tl::convert
