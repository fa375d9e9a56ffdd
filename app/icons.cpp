#include "icons.h"

#include "store/item_icons.h"

#include <QApplication>
#include <QHash>
#include <QPainter>
#include <QPalette>
#include <QPixmap>

namespace tl::app {

namespace {

// Core names to freedesktop names; the first of the list the theme has wins.
const QHash<QString, QStringList> &themeNames()
{
    static const QHash<QString, QStringList> names{
        {"icon-book-default", {"folder"}},
        {"icon-book-smart", {"folder-saved-search", "system-search"}},
        {"icon-book-contexts", {"bookmark-new", "tag"}},
        {"icon-book-tasks", {"folder-templates", "folder"}},
        {"icon-book-tasks-overdue", {"appointment-missed", "alarm-symbolic"}},
        {"icon-book-tasks-alllists", {"view-list-bullet", "x-office-calendar"}},
        {"icon-book-star", {"starred", "emblem-favorite"}},
        {"icon-book-inbox", {"mail-inbox", "folder-download"}},
        {"icon-book-inbox-empty", {"mail-inbox", "folder-download"}},
        {"icon-book-recent-items", {"document-open-recent"}},
        {"icon-book-recently-modified", {"document-open-recent", "document-revert"}},
        {"icon-book-conflict", {"dialog-warning"}},
        {"icon-doc-md", {"text-x-generic"}},
        {"icon-doc-txt", {"text-x-generic"}},
        {"icon-doc-formatted", {"text-html", "x-office-document"}},
        {"icon-doc-formatted-md", {"text-html", "x-office-document"}},
        {"icon-doc-html", {"text-html"}},
        {"icon-doc-pdf", {"application-pdf", "x-office-document"}},
        {"icon-doc-photo", {"image-x-generic"}},
        {"icon-doc-audio", {"audio-x-generic"}},
        {"icon-doc-movie", {"video-x-generic"}},
        {"icon-doc-zip", {"package-x-generic"}},
        {"icon-doc-url", {"text-html", "web-browser"}},
        {"icon-doc-eml", {"mail-message", "text-x-generic"}},
        {"icon-doc-xls", {"x-office-spreadsheet"}},
        {"icon-doc-numbers", {"x-office-spreadsheet"}},
        {"icon-doc-csv", {"x-office-spreadsheet"}},
        {"icon-doc-ppt", {"x-office-presentation"}},
        {"icon-doc-key", {"x-office-presentation"}},
        {"icon-doc-doc", {"x-office-document"}},
        {"icon-doc-pages", {"x-office-document"}},
        {"icon-doc-rtf", {"x-office-document"}},
    };
    return names;
}

QIcon fromTheme(const QStringList &candidates)
{
    for (const QString &name : candidates)
        if (QIcon::hasThemeIcon(name))
            return QIcon::fromTheme(name);
    return {};
}

// A round task mark: open is a ring, started half full, done a tick,
// canceled a cross; due ones are red.
QIcon taskIcon(const QString &name)
{
    QPixmap picture(32, 32);
    picture.fill(Qt::transparent);
    QPainter p(&picture);
    p.setRenderHint(QPainter::Antialiasing);
    const QColor ink = name.endsWith(u"-due") ? overdueColor() : QColor(0x6b, 0x7a, 0x88);
    p.setPen(QPen(ink, 3));
    const QRectF ring(5, 5, 22, 22);
    if (name.startsWith(u"task-done")) {
        p.setBrush(QColor(0x3d, 0x9a, 0x50));
        p.setPen(Qt::NoPen);
        p.drawEllipse(ring);
        p.setPen(QPen(Qt::white, 3.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.drawPolyline(QPolygonF({{10, 16.5}, {14.5, 21}, {22.5, 11.5}}));
    } else if (name.startsWith(u"task-canceled")) {
        p.drawEllipse(ring);
        p.drawLine(QPointF(11, 11), QPointF(21, 21));
        p.drawLine(QPointF(21, 11), QPointF(11, 21));
    } else {
        p.drawEllipse(ring);
        if (name.startsWith(u"task-started")) {
            p.setBrush(ink);
            p.drawPie(ring, 90 * 16, 180 * 16);
        }
    }
    return QIcon(picture);
}

} // namespace

QIcon iconNamed(const QString &name)
{
    if (name.isEmpty())
        return {};
    if (name.startsWith(u'/'))
        return QIcon(name);
    // The pictures here suit both themes: the dark variants' names are the same.
    QString base = name;
    if (base.endsWith(u"-dark"))
        base.chop(5);
    else if (base.endsWith(u"-black"))
        base.chop(6);
    if (base.startsWith(u"task-"))
        return taskIcon(base);
    if (base.startsWith(u"icon-task-"))
        return taskIcon(base.mid(5));
    if (const auto it = themeNames().constFind(base); it != themeNames().cend())
        if (QIcon icon = fromTheme(*it); !icon.isNull())
            return icon;
    // Coloured books and documents of other kinds.
    if (base.startsWith(u"icon-book-"))
        return fromTheme({QStringLiteral("folder")});
    return fromTheme({QStringLiteral("text-x-generic")});
}

// Symbolic icons are drawn in the palette's text colour, so they show on
// dark and light windows alike.
QIcon tinted(const QIcon &symbolic)
{
    QIcon icon;
    const QColor ink = QApplication::palette().color(QPalette::WindowText);
    for (int size : {16, 20, 24, 32}) {
        QPixmap picture = symbolic.pixmap(size, size);
        QPainter p(&picture);
        p.setCompositionMode(QPainter::CompositionMode_SourceIn);
        p.fillRect(picture.rect(), ink);
        p.end();
        icon.addPixmap(picture);
    }
    return icon;
}

// Disabled actions fade to a third of their picture. The style's own
// disabled form keeps a light picture light, so on a dark window a
// disabled button looked like an enabled one.
QIcon withFadedDisabledForm(const QIcon &source)
{
    if (source.isNull())
        return source;
    QIcon icon;
    for (int size : {16, 20, 24, 32}) {
        const QPixmap normal = source.pixmap(size, size);
        QPixmap faded(normal.size());
        faded.setDevicePixelRatio(normal.devicePixelRatio());
        faded.fill(Qt::transparent);
        QPainter p(&faded);
        p.setOpacity(0.35);
        p.drawPixmap(0, 0, normal);
        p.end();
        icon.addPixmap(normal, QIcon::Normal);
        icon.addPixmap(faded, QIcon::Disabled);
    }
    return icon;
}

QIcon themeIcon(const QString &name)
{
    if (QIcon::hasThemeIcon(name))
        return withFadedDisabledForm(QIcon::fromTheme(name));
    const QString symbolic = name + QStringLiteral("-symbolic");
    return QIcon::hasThemeIcon(symbolic) ? withFadedDisabledForm(tinted(QIcon::fromTheme(symbolic)))
                                         : QIcon();
}

QIcon iconForItem(const QString &path)
{
    const store::ItemIcon icon = store::tl_iconForPath(path);
    if (icon.kind == store::ItemIcon::Kind::Named)
        return iconNamed(icon.value);
    if (icon.kind == store::ItemIcon::Kind::Picture)
        return QIcon(icon.value);
    return fromTheme({icon.value, QStringLiteral("text-x-generic")});
}

QColor colorForLabel(const QString &name)
{
    static const QHash<QString, QColor> colors{
        {"beige", QColor(0xd9, 0xc5, 0x9a)},  {"blue", QColor(0x3d, 0x86, 0xd9)},
        {"gray", QColor(0x8e, 0x8e, 0x93)},   {"green", QColor(0x4c, 0xb0, 0x5a)},
        {"orange", QColor(0xf0, 0x8c, 0x2e)}, {"purple", QColor(0x9b, 0x59, 0xc6)},
        {"red", QColor(0xe0, 0x45, 0x3c)},    {"yellow", QColor(0xe6, 0xc2, 0x29)},
    };
    return colors.value(name);
}

QColor overdueColor()
{
    return {0xd0, 0x3b, 0x2f};
}

const QStringList &colorLabelNames()
{
    static const QStringList names{"Auto",  "default", "red",    "orange", "yellow",
                                   "green", "blue",    "purple", "gray",   "beige"};
    return names;
}

} // namespace tl::app
