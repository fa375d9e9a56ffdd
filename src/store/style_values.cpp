#include "store/style_values.h"

#include "platform/fonts.h"
#include "platform/settings.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/properties.h"

namespace tl::store {

namespace P = keys::property;
namespace S = keys::setting;

namespace {
constexpr int kDefaultFontSize = 14;
const QString kFallbackFace = QStringLiteral("Muli");

QString installedOrEmpty(const QString &face)
{
    return !face.isEmpty() && platform::fontIsAvailable(face) ? face : QString();
}

bool isLogDocument(const QString &path)
{
    const QString root = libraryRoot();
    return !root.isEmpty() && (path == root + u'/' + QLatin1String(names::DropboxLog) ||
                               path == root + u'/' + QLatin1String(names::MacLog));
}
} // namespace

QString tl_fontFaceAtPath(const QString &path)
{
    if (isLogDocument(path))
        return QStringLiteral("Courier New");
    QString face = installedOrEmpty(tl_inheritedPropertyForKey(path, P::NotesFontName).toString());
    if (face.isEmpty())
        face = installedOrEmpty(platform::settings().string(S::NotesFontName));
    return face.isEmpty() ? kFallbackFace : face;
}

int tl_fontSizeAtPath(const QString &path)
{
    const int inherited = tl_inheritedPropertyForKey(path, P::NoteFontSize).toInt();
    if (inherited != 0)
        return inherited;
    const qint64 setting = platform::settings().integer(S::NoteFontSize);
    return setting != 0 ? int(setting) : kDefaultFontSize;
}

FontChoice tl_fontForPath(const QString &path)
{
    FontChoice choice{tl_fontFaceAtPath(path), tl_fontSizeAtPath(path)};
    for (const QString &face :
         {choice.family, platform::settings().string(S::NotesFontName), kFallbackFace}) {
        if (!installedOrEmpty(face).isEmpty()) {
            choice.family = face;
            return choice;
        }
    }
    choice.family.clear();
    return choice;
}

double tl_linespacingAtPath(const QString &path)
{
    const QString inherited = tl_inheritedPropertyForKey(path, P::LineSpacing).toString();
    if (!inherited.isEmpty())
        return inherited.toDouble();
    const double setting = platform::settings().real(S::LineSpacing);
    return setting > 0 ? setting : 1.0;
}

int tl_markdownConverterAtPath(const QString &path)
{
    const QString inherited = tl_inheritedPropertyForKey(path, P::MarkdownConverter).toString();
    if (!inherited.isEmpty())
        return inherited.toInt();
    return int(platform::settings().integer(S::MarkdownConverter));
}

} // namespace tl::store
