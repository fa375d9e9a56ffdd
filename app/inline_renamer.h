#pragma once

#include <QObject>
#include <QPersistentModelIndex>
#include <functional>

class QAbstractItemView;
class QLineEdit;

// Rename in place: a field over the row, Return takes the new name, Escape
// or leaving the field without a change keeps the old one.
namespace tl::app {

class InlineRenamer : public QObject
{
    Q_OBJECT
public:
    using Rename = std::function<void(const QModelIndex &, const QString &)>;

    InlineRenamer(QAbstractItemView *view, Rename rename);

    // Opens the field on the row with the given name, the stem selected.
    void start(const QModelIndex &index, const QString &name);
    bool isEditing() const;
    QLineEdit *field() const { return m_field; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void finish(bool accept);

    QAbstractItemView *m_view;
    Rename m_rename;
    QLineEdit *m_field = nullptr;
    QPersistentModelIndex m_index;
    QString m_original;
};

} // namespace tl::app
