#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <memory>
#include <optional>
#include <vector>

// A node of the outline: the smart books group and the library's books,
// built from disk only when its children are first asked for.
namespace tl::browser {

enum GroupItemType : int { NoGroup = 0, SmartBooksGroup = 1, BooksGroup = 2 };

class TLKSOutlineItem
{
public:
    // initWithPath:parent:isBook:
    TLKSOutlineItem(const QString &path, TLKSOutlineItem *parent, bool isBook);
    // initWithPath:parent:smartType:
    TLKSOutlineItem(const QString &path, TLKSOutlineItem *parent, int smartType);

    // The one shared root ("/") and its two groups.
    static TLKSOutlineItem &rootItem();
    static TLKSOutlineItem *booksItem();
    static TLKSOutlineItem *smartBooksItem();

    QString relativePath;
    QDateTime clickDate;
    bool isDocument = false;
    TLKSOutlineItem *parent = nullptr;
    int smartBookType = 0;
    int groupItemType = NoGroup;
    qsizetype sequenceNumber = 0;
    bool customSortSelected = false;

    QString title() const;
    QString fullPath() const;

    // Built on first call; resetAllChildren makes the next call read the disk.
    const std::vector<std::unique_ptr<TLKSOutlineItem>> &children();
    bool childrenAreBuilt() const { return m_built; }
    // The children as the disk has them now, sorted, without touching the
    // current ones.
    std::vector<std::unique_ptr<TLKSOutlineItem>> childrenFromDisk();
    void sortChildren();
    // The children in sorted order, without reordering them.
    std::vector<TLKSOutlineItem *> sortedChildren();
    void reassignCustomSortOrder();

    // The item at an absolute path below the root, matched by canonical
    // equivalence; nothing when it is not in the tree. The model inserts
    // items (insertChildAtPath, insertSmartChildOfType) so views follow.
    static TLKSOutlineItem *childAtPath(const QString &path);
    static TLKSOutlineItem *smartBookOfType(int type);

    TLKSOutlineItem *addChild(std::unique_ptr<TLKSOutlineItem> child);
    TLKSOutlineItem *addChildWithTitle(const QString &title);
    std::unique_ptr<TLKSOutlineItem> removeChild(TLKSOutlineItem *child);
    void removeChildWithTitle(const QString &title);
    TLKSOutlineItem *childAtIndex(qsizetype index);
    TLKSOutlineItem *childWithTitle(const QString &title);
    std::optional<qsizetype> indexOfChildWithTitle(const QString &title);
    std::optional<qsizetype> indexOfChild(const TLKSOutlineItem *child);
    qsizetype numberOfChildren();
    QStringList titlesOfChildren();
    void resetAllChildren();
    void moveToParent(TLKSOutlineItem *newParent);
    // The parent's order is left for the caller to put right.
    void changeRelativePath(const QString &path);
    // Moves a child within the list, as a view's row move does.
    void moveChild(qsizetype from, qsizetype to);

private:
    using Children = std::vector<std::unique_ptr<TLKSOutlineItem>>;
    void addBooksOfFolder(const QString &folder, Children &into);
    void sortList(Children &list);
    void reassignCustomSortOrder(Children &list);
    bool keepsWholePath() const;

    std::vector<std::unique_ptr<TLKSOutlineItem>> m_children;
    bool m_built = false;
};

} // namespace tl::browser
