#pragma once

// Whether a font can be used by name. The system catalog asks fontconfig; tests
// install a fixed catalog.

#include <QSet>
#include <QString>
#include <QStringList>
#include <memory>

namespace tl::platform {

class FontCatalog
{
public:
    virtual ~FontCatalog();
    // True when a font with this family, full face name or PostScript name is
    // installed.
    virtual bool isAvailable(const QString &familyOrFaceName) = 0;
};

// A catalog of the given names, compared case-insensitively.
class FixedFontCatalog : public FontCatalog
{
public:
    explicit FixedFontCatalog(const QStringList &names);
    bool isAvailable(const QString &familyOrFaceName) override;

private:
    QSet<QString> names_;
};

bool fontIsAvailable(const QString &familyOrFaceName);

// The process-wide catalog: the system's until one is set.
FontCatalog &fontCatalog();
// Nothing restores the system's catalog.
void setFontCatalog(std::shared_ptr<FontCatalog> catalog);

} // namespace tl::platform
