#pragma once

#include <QListWidget>

// The documents that link to the shown document, under it; hidden when
// there are none. Activating one shows it.
namespace tl::app {

class BacklinksList : public QListWidget
{
    Q_OBJECT
public:
    explicit BacklinksList(QWidget *parent = nullptr);
    void follow(const QString &document);
};

} // namespace tl::app
