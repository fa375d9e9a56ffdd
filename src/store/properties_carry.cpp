#include "store/properties_carry.h"

#include "platform/file_ops.h"
#include "store/item_path.h"

#include <QFileInfo>

namespace tl::store {

namespace {

enum class Carry { Move, Copy };

void carryPropertiesFile(const QString &source, const QString &target, Carry carry)
{
    const QString from = tl_plistPath(source);
    const QString to = tl_plistPath(target);
    if (!QFileInfo::exists(from))
        return;
    if (carry == Carry::Move ? platform::moveItem(from, to) : platform::copyItem(from, to))
        return;
    // The platform never overwrites; a properties file left at the target
    // by an earlier item of that name is replaced by content.
    const std::optional<QByteArray> bytes = platform::readFile(from);
    if (bytes && platform::writeFileInPlace(to, *bytes) && carry == Carry::Move)
        platform::removeItem(from);
}

} // namespace

void movePropertiesFile(const QString &source, const QString &target)
{
    carryPropertiesFile(source, target, Carry::Move);
}

void copyPropertiesFile(const QString &source, const QString &target)
{
    carryPropertiesFile(source, target, Carry::Copy);
}

} // namespace tl::store
