#include "convert/document_style.h"

#include "platform/fonts.h"
#include "platform/settings.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/properties.h"

namespace tl::convert {

namespace {

namespace P = tl::keys::property;
namespace S = tl::keys::setting;

QString inherited(const QString &path, const char *key)
{
    return platform::stringFromValue(store::tl_inheritedPropertyForKey(path, QLatin1String(key)));
}

QString usableFace(const QString &face)
{
    return !face.isEmpty() && platform::fontIsAvailable(face) ? face : QString();
}

} // namespace

QString documentFontFace(const QString &path)
{
    const QString root = store::libraryRoot();
    if (!root.isEmpty() && (path == root + u'/' + QLatin1String(tl::names::DropboxLog) ||
                            path == root + u'/' + QLatin1String(tl::names::MacLog)))
        return QStringLiteral("Courier New");
    QString face = usableFace(inherited(path, P::NotesFontName));
    if (face.isEmpty())
        face = usableFace(platform::settings().string(QLatin1String(S::NotesFontName)));
    return face.isEmpty() ? QStringLiteral("Muli") : face;
}

int documentFontSize(const QString &path)
{
    const int size = inherited(path, P::NoteFontSize).toInt();
    if (size != 0)
        return size;
    const qint64 setting = platform::settings().integer(QLatin1String(S::NoteFontSize));
    return setting != 0 ? int(setting) : 14;
}

double documentLineSpacing(const QString &path)
{
    const QString spacing = inherited(path, P::LineSpacing);
    if (!spacing.isEmpty())
        return spacing.toDouble();
    const double setting = platform::settings().real(QLatin1String(S::LineSpacing));
    return setting > 0 ? setting : 1.0;
}

int tl_markdownConverterAtPath(const QString &path)
{
    const QString converter = inherited(path, P::MarkdownConverter);
    if (!converter.isEmpty())
        return converter.toInt();
    return int(platform::settings().integer(QLatin1String(S::MarkdownConverter)));
}

} // namespace tl::convert
