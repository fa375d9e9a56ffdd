#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

// Documents of a kind the program does not show itself: their icon, name
// and size, and a button that opens them with the desktop's default
// application.
namespace tl::app {

class PreviewPane : public QWidget
{
    Q_OBJECT
public:
    explicit PreviewPane(QWidget *parent = nullptr);

    void showItem(const QString &path);

private:
    QLabel *m_icon;
    QLabel *m_name;
    QLabel *m_size;
    QPushButton *m_open;
    QString m_path;
};

} // namespace tl::app
