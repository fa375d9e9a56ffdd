#include "document/preview_pane.h"

#include "icons.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

namespace tl::app {

PreviewPane::PreviewPane(QWidget *parent)
    : QWidget(parent), m_icon(new QLabel(this)), m_name(new QLabel(this)), m_size(new QLabel(this)),
      m_open(new QPushButton(QStringLiteral("Open With Default Application"), this))
{
    auto *layout = new QVBoxLayout(this);
    layout->addStretch(2);
    for (QLabel *label : {m_icon, m_name, m_size}) {
        label->setAlignment(Qt::AlignCenter);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        layout->addWidget(label);
    }
    QFont title = m_name->font();
    title.setPointSizeF(title.pointSizeF() * 1.3);
    title.setBold(true);
    m_name->setFont(title);
    m_name->setWordWrap(true);
    m_size->setEnabled(false);
    layout->addSpacing(12);
    layout->addWidget(m_open, 0, Qt::AlignHCenter);
    layout->addStretch(3);
    connect(m_open, &QPushButton::clicked, this,
            [this] { QDesktopServices::openUrl(QUrl::fromLocalFile(m_path)); });
}

void PreviewPane::showItem(const QString &path)
{
    m_path = path;
    const QFileInfo info(path);
    m_icon->setPixmap(iconForItem(path).pixmap(128, 128));
    m_name->setText(info.fileName());
    m_size->setText(info.isDir() ? QString() : QLocale().formattedDataSize(info.size()));
}

} // namespace tl::app
