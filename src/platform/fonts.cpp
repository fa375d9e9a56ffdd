#include "platform/fonts.h"

#include <mutex>

#ifdef TAVELLE_HAVE_FONTCONFIG
#include <fontconfig/fontconfig.h>
#endif

namespace tl::platform {

namespace {

#ifdef TAVELLE_HAVE_FONTCONFIG
// Asks fontconfig on each call, so fonts installed while running are found.
class SystemFontCatalog : public FontCatalog
{
public:
    bool isAvailable(const QString &familyOrFaceName) override
    {
        const QByteArray name = familyOrFaceName.trimmed().toUtf8();
        if (name.isEmpty())
            return false;
        std::lock_guard lock(mutex_);
        if (!FcInit())
            return false;
        // Family names match ignoring case and blanks; face names as given.
        for (const char *object : {FC_FAMILY, FC_FULLNAME, FC_POSTSCRIPT_NAME}) {
            if (hasFont(object, name))
                return true;
        }
        return false;
    }

private:
    static bool hasFont(const char *object, const QByteArray &name)
    {
        FcPattern *pattern = FcPatternCreate();
        FcPatternAddString(pattern, object, reinterpret_cast<const FcChar8 *>(name.constData()));
        FcObjectSet *objects = FcObjectSetBuild(FC_FAMILY, nullptr);
        FcFontSet *fonts = FcFontList(nullptr, pattern, objects);
        const bool found = fonts && fonts->nfont > 0;
        if (fonts)
            FcFontSetDestroy(fonts);
        FcObjectSetDestroy(objects);
        FcPatternDestroy(pattern);
        return found;
    }

    std::mutex mutex_;
};
#else
// Without fontconfig nothing can be checked: every named font counts.
class SystemFontCatalog : public FontCatalog
{
public:
    bool isAvailable(const QString &familyOrFaceName) override
    {
        return !familyOrFaceName.trimmed().isEmpty();
    }
};
#endif

struct CatalogSlot
{
    std::mutex mutex;
    std::shared_ptr<FontCatalog> catalog = std::make_shared<SystemFontCatalog>();
};

CatalogSlot &slot()
{
    static CatalogSlot instance;
    return instance;
}

} // namespace

FontCatalog::~FontCatalog() = default;

FixedFontCatalog::FixedFontCatalog(const QStringList &names)
{
    for (const QString &name : names)
        names_.insert(name.toCaseFolded());
}

bool FixedFontCatalog::isAvailable(const QString &familyOrFaceName)
{
    return names_.contains(familyOrFaceName.toCaseFolded());
}

bool fontIsAvailable(const QString &familyOrFaceName)
{
    return fontCatalog().isAvailable(familyOrFaceName);
}

FontCatalog &fontCatalog()
{
    std::lock_guard lock(slot().mutex);
    return *slot().catalog;
}

void setFontCatalog(std::shared_ptr<FontCatalog> catalog)
{
    std::lock_guard lock(slot().mutex);
    slot().catalog = catalog ? std::move(catalog) : std::make_shared<SystemFontCatalog>();
}

} // namespace tl::platform
