#include "browser/outline_item.h"

#include "browser/browser_keys.h"
#include "browser/later_sources.h"
#include "browser/smart_books.h"
#include "foundation/compare.h"
#include "foundation/path_string.h"
#include "platform/file_ops.h"
#include "platform/settings.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/plist_file.h"
#include "store/properties.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace tl::browser {

namespace S = keys::setting;
namespace P = keys::property;

namespace {

QStringList stringsOf(const QVariant &value)
{
    QStringList result;
    for (const QVariant &v : value.toList())
        result << v.toString();
    return result;
}

QString availableTagsFile()
{
    return path::appendingComponent(store::libraryRoot(),
                                    QStringLiteral("TLResources/Misc/AvailableTags.txt"));
}

struct SortKey
{
    QString key;
    bool descending = false;
};

QDateTime dateOfChild(const TLKSOutlineItem &child, const QString &key)
{
    const QString p = child.fullPath();
    if (key == u"modDate")
        return platform::modificationDate(p).value_or(QDateTime());
    return store::tl_creationDate(p);
}

} // namespace

TLKSOutlineItem::TLKSOutlineItem(const QString &path, TLKSOutlineItem *parentItem, bool isBook)
    : isDocument(!isBook), parent(parentItem)
{
    relativePath = keepsWholePath() ? path : path::lastComponent(path);
}

TLKSOutlineItem::TLKSOutlineItem(const QString &path, TLKSOutlineItem *parentItem, int smartType)
    : parent(parentItem), smartBookType(smartType)
{
    relativePath = smartType == Context || keepsWholePath() ? path : path::lastComponent(path);
}

// Top items and the children of smart books (but the inbox, whose children
// are its folders) hold whole strings.
bool TLKSOutlineItem::keepsWholePath() const
{
    return !parent || !parent->parent || parent->groupItemType == SmartBooksGroup ||
           (parent->smartBookType != 0 && parent->smartBookType != Inbox);
}

TLKSOutlineItem &TLKSOutlineItem::rootItem()
{
    static TLKSOutlineItem root(QStringLiteral("/"), nullptr, true);
    return root;
}

TLKSOutlineItem *TLKSOutlineItem::booksItem()
{
    for (const auto &child : rootItem().children())
        if (child->groupItemType == BooksGroup)
            return child.get();
    return nullptr;
}

TLKSOutlineItem *TLKSOutlineItem::smartBooksItem()
{
    for (const auto &child : rootItem().children())
        if (child->groupItemType == SmartBooksGroup)
            return child.get();
    return nullptr;
}

QString TLKSOutlineItem::title() const
{
    if (groupItemType == SmartBooksGroup)
        return QStringLiteral("Smart Books");
    if (groupItemType == BooksGroup)
        return QStringLiteral("Books");
    if (smartBookType == Context)
        return relativePath;
    if (smartBookType != 0)
        return titleForSmartBookOfType(smartBookType);
    const QString name = path::lastComponent(relativePath);
    if (isDocument && !platform::settings().boolValue(QLatin1String(S::ShowFileExtensions)))
        return path::deletingExtension(name);
    return name;
}

QString TLKSOutlineItem::fullPath() const
{
    if (smartBookType == Inbox)
        return defaultInboxPath();
    if (parent && parent->smartBookType == Inbox)
        return path::appendingComponent(defaultInboxPath(), relativePath);
    if (parent && parent->parent && parent->smartBookType == 0 &&
        parent->groupItemType != SmartBooksGroup)
        return path::appendingComponent(parent->fullPath(), relativePath);
    return relativePath;
}

const std::vector<std::unique_ptr<TLKSOutlineItem>> &TLKSOutlineItem::children()
{
    if (!m_built) {
        m_built = true;
        m_children = childrenFromDisk();
    }
    return m_children;
}

TLKSOutlineItem::Children TLKSOutlineItem::childrenFromDisk()
{
    Children list;
    if (!parent) {
        auto smart = std::make_unique<TLKSOutlineItem>(QStringLiteral("Smart Books"), this, 0);
        smart->groupItemType = SmartBooksGroup;
        auto books = std::make_unique<TLKSOutlineItem>(store::libraryRoot(), this, true);
        books->groupItemType = BooksGroup;
        list.push_back(std::move(smart));
        list.push_back(std::move(books));
        return list;
    }
    if (groupItemType == SmartBooksGroup) {
        // In type order, unsorted.
        for (int type = kFirstListedSmartType; type <= kLastListedSmartType; ++type)
            if (smartBookShouldExist(type))
                list.push_back(
                    std::make_unique<TLKSOutlineItem>(titleForSmartBookOfType(type), this, type));
        return list;
    }
    switch (smartBookType) {
    case Contexts:
        for (const QString &tag : tl_listOfAllAvailableTags())
            if (tag != QLatin1String(P::FavoriteTag))
                list.push_back(std::make_unique<TLKSOutlineItem>(tag, this, int(Context)));
        sortList(list);
        break;
    case Favorites:
        for (const QString &item : tl_listOfAllItemsForTag(QLatin1String(P::FavoriteTag)))
            if (QFileInfo(item).isDir() &&
                !store::packageExtensions().contains(store::lowerCasedExtension(item)))
                list.push_back(std::make_unique<TLKSOutlineItem>(item, this, true));
        sortList(list);
        break;
    case AllTaskLists: {
        const QString root = store::libraryRoot();
        for (const QVariant &entry : platform::settings().array(QLatin1String(S::AllTaskLists))) {
            const QString book =
                entry.toString() == u"/" ? root : path::appendingComponent(root, entry.toString());
            if (store::tl_bookIsTasklist(book))
                list.push_back(std::make_unique<TLKSOutlineItem>(book, this, true));
        }
        break;
    }
    case OrdinaryBook:
    case Inbox:
        if (!isDocument)
            addBooksOfFolder(fullPath(), list);
        break;
    default:
        break;
    }
    return list;
}

void TLKSOutlineItem::addBooksOfFolder(const QString &folder, Children &into)
{
    const QStringList names =
        QDir(folder).entryList(QDir::Dirs | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        if (name == QLatin1String(names::TLImages) || name == QLatin1String(names::TLResources) ||
            path::extension(name).toLower() == u"plist" ||
            store::packageExtensions().contains(store::lowerCasedExtension(name)) ||
            store::tl_pathIsDotFile(name))
            continue;
        // The listing holds dangling links too; only existing folders are books.
        const QString path = path::appendingComponent(folder, name);
        if (QFileInfo(path).isDir())
            into.push_back(std::make_unique<TLKSOutlineItem>(path, this, true));
    }
    sortList(into);
}

void TLKSOutlineItem::sortChildren()
{
    children();
    sortList(m_children);
}

std::vector<TLKSOutlineItem *> TLKSOutlineItem::sortedChildren()
{
    std::vector<TLKSOutlineItem *> before;
    for (const auto &child : children())
        before.push_back(child.get());
    sortList(m_children);
    std::vector<TLKSOutlineItem *> after;
    for (const auto &child : m_children)
        after.push_back(child.get());
    // Back to the order the views know; the caller moves the rows.
    for (std::size_t i = 0; i < before.size(); ++i)
        for (std::size_t j = i; j < m_children.size(); ++j)
            if (m_children[j].get() == before[i]) {
                std::swap(m_children[i], m_children[j]);
                break;
            }
    return after;
}

void TLKSOutlineItem::sortList(Children &list)
{
    if (groupItemType == SmartBooksGroup) {
        std::stable_sort(list.begin(), list.end(), [](const auto &a, const auto &b) {
            return a->smartBookType < b->smartBookType;
        });
        return;
    }
    SortKey sort;
    platform::Settings &settings = platform::settings();
    if (smartBookType == Contexts || smartBookType == Favorites) {
        const bool contexts = smartBookType == Contexts;
        sort.key =
            settings.string(QLatin1String(contexts ? S::ContextsSortOrder : S::FavoritesSortOrder));
        sort.descending = settings.boolValue(
            QLatin1String(contexts ? S::ContextsSortDescending : S::FavoritesSortDescending));
    } else {
        const QVariantMap properties = store::readPlistDictionary(
            path::appendingComponent(fullPath(), QLatin1String(names::BookProperties)));
        sort.key = properties.value(P::SortOrderForNotes).toString();
        sort.descending = properties.value(P::SortNotesDescending).toString() == u"YES";
    }

    customSortSelected = sort.key == u"custom";
    if (customSortSelected) {
        reassignCustomSortOrder(list);
        std::stable_sort(list.begin(), list.end(), [](const auto &a, const auto &b) {
            return a->sequenceNumber < b->sequenceNumber;
        });
        return;
    }
    const bool byDate = sort.key == u"modDate" || sort.key == u"creationDate";
    // Dates and titles are read once per child, not once per comparison.
    struct Keyed
    {
        QDateTime date;
        QString title;
        std::unique_ptr<TLKSOutlineItem> item;
    };
    std::vector<Keyed> entries;
    for (auto &child : list) {
        QDateTime date = byDate ? dateOfChild(*child, sort.key) : QDateTime();
        QString title = child->title();
        entries.push_back({std::move(date), std::move(title), std::move(child)});
    }
    std::stable_sort(entries.begin(), entries.end(), [&](const Keyed &a, const Keyed &b) {
        const int c = byDate ? (a.date < b.date   ? -1
                                : b.date < a.date ? 1
                                                  : 0)
                             : localizedStandardCompare(a.title, b.title);
        return sort.descending ? c > 0 : c < 0;
    });
    for (std::size_t i = 0; i < entries.size(); ++i)
        list[i] = std::move(entries[i].item);
}

void TLKSOutlineItem::reassignCustomSortOrder()
{
    children();
    reassignCustomSortOrder(m_children);
}

void TLKSOutlineItem::reassignCustomSortOrder(Children &list)
{
    const QStringList order =
        smartBookType == Contexts
            ? stringsOf(store::readPlistArray(availableTagsFile()))
            : stringsOf(
                  store::readPlistDictionary(
                      path::appendingComponent(fullPath(), QLatin1String(names::BookProperties)))
                      .value(P::Books));
    for (auto &child : list) {
        const qsizetype index = order.indexOf(child->relativePath);
        child->sequenceNumber = index < 0 ? 0 : index;
    }
}

TLKSOutlineItem *TLKSOutlineItem::childWithTitle(const QString &title)
{
    for (const auto &child : children())
        if (localizedCompare(child->relativePath, title) == 0)
            return child.get();
    return nullptr;
}

std::optional<qsizetype> TLKSOutlineItem::indexOfChildWithTitle(const QString &title)
{
    const TLKSOutlineItem *child = childWithTitle(title);
    return child ? indexOfChild(child) : std::nullopt;
}

std::optional<qsizetype> TLKSOutlineItem::indexOfChild(const TLKSOutlineItem *child)
{
    for (std::size_t i = 0; i < children().size(); ++i)
        if (m_children[i].get() == child)
            return qsizetype(i);
    return std::nullopt;
}

TLKSOutlineItem *TLKSOutlineItem::childAtPath(const QString &path)
{
    TLKSOutlineItem *item = booksItem();
    const QString relative = store::tl_normalizedPath(path);
    for (const QString &component : relative.split(u'/', Qt::SkipEmptyParts)) {
        if (!item)
            return nullptr;
        item = item->childWithTitle(component);
    }
    return item && localizedCompare(item->fullPath(), path) == 0 ? item : nullptr;
}

TLKSOutlineItem *TLKSOutlineItem::smartBookOfType(int type)
{
    TLKSOutlineItem *group = smartBooksItem();
    if (!group)
        return nullptr;
    for (const auto &child : group->children())
        if (child->smartBookType == type)
            return child.get();
    return nullptr;
}

TLKSOutlineItem *TLKSOutlineItem::addChild(std::unique_ptr<TLKSOutlineItem> child)
{
    children();
    child->parent = this;
    m_children.push_back(std::move(child));
    return m_children.back().get();
}

TLKSOutlineItem *TLKSOutlineItem::addChildWithTitle(const QString &title)
{
    return addChild(std::make_unique<TLKSOutlineItem>(title, this, true));
}

std::unique_ptr<TLKSOutlineItem> TLKSOutlineItem::removeChild(TLKSOutlineItem *child)
{
    const auto index = indexOfChild(child);
    if (!index)
        return nullptr;
    std::unique_ptr<TLKSOutlineItem> removed = std::move(m_children[std::size_t(*index)]);
    m_children.erase(m_children.begin() + *index);
    return removed;
}

void TLKSOutlineItem::removeChildWithTitle(const QString &title)
{
    if (TLKSOutlineItem *child = childWithTitle(title))
        removeChild(child);
}

TLKSOutlineItem *TLKSOutlineItem::childAtIndex(qsizetype index)
{
    const auto &list = children();
    return index >= 0 && std::size_t(index) < list.size() ? list[std::size_t(index)].get()
                                                          : nullptr;
}

qsizetype TLKSOutlineItem::numberOfChildren()
{
    return qsizetype(children().size());
}

QStringList TLKSOutlineItem::titlesOfChildren()
{
    QStringList titles;
    for (const auto &child : children())
        titles << child->title();
    return titles;
}

void TLKSOutlineItem::resetAllChildren()
{
    m_children.clear();
    m_built = false;
}

void TLKSOutlineItem::moveToParent(TLKSOutlineItem *newParent)
{
    if (!parent || !newParent)
        return;
    if (std::unique_ptr<TLKSOutlineItem> self = parent->removeChild(this))
        newParent->addChild(std::move(self));
}

void TLKSOutlineItem::changeRelativePath(const QString &path)
{
    relativePath = keepsWholePath() ? path : path::lastComponent(path);
}

void TLKSOutlineItem::moveChild(qsizetype from, qsizetype to)
{
    children();
    if (from == to || from < 0 || to < 0 || std::size_t(from) >= m_children.size() ||
        std::size_t(to) >= m_children.size())
        return;
    std::unique_ptr<TLKSOutlineItem> moved = std::move(m_children[std::size_t(from)]);
    m_children.erase(m_children.begin() + from);
    m_children.insert(m_children.begin() + to, std::move(moved));
}

} // namespace tl::browser
