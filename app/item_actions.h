#pragma once

#include <QObject>
#include <QStringList>

class QUndoStack;

// What the item commands do, each through the store's operations: the
// windows never touch files themselves. Trashing can be undone.
namespace tl::app {

class ItemActions : public QObject
{
    Q_OBJECT
public:
    ItemActions(QUndoStack *undoStack, QObject *parent = nullptr);

    // A new book with a free name in the parent; its path, empty on failure.
    QString newBook(const QString &parent);
    // Renames the item to the name in its book; false (after telling the
    // user) when the name is taken or the move fails.
    bool rename(const QString &path, const QString &newName);
    QString duplicate(const QString &path);
    // kind: "txt", "md", "html", "fountain" or "tex".
    QString duplicateAs(const QString &path, const QString &kind);
    void moveToTrash(const QStringList &paths);
    void pin(const QString &path);
    void setColorLabel(const QStringList &paths, const QString &name);
    void toggleFavorite(const QStringList &paths);
    void showInFileManager(const QString &path);
    void openWithDefaultApplication(const QString &path);

private:
    QUndoStack *m_undo;
};

} // namespace tl::app
