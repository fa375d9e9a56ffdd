#include "theme.h"

#include "platform/settings.h"
#include "shell/shell_keys.h"
#include "store/keys.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

namespace tl::app {

namespace {

namespace S = keys::setting;

bool paletteIsDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < 128;
}

QPalette darkPalette()
{
    QPalette p;
    const QColor window(0x2b, 0x2d, 0x30), base(0x1f, 0x21, 0x23), text(0xe6, 0xe6, 0xe6);
    p.setColor(QPalette::Window, window);
    p.setColor(QPalette::WindowText, text);
    p.setColor(QPalette::Base, base);
    p.setColor(QPalette::AlternateBase, window);
    p.setColor(QPalette::ToolTipBase, base);
    p.setColor(QPalette::ToolTipText, text);
    p.setColor(QPalette::PlaceholderText, QColor(0x8a, 0x8d, 0x91));
    p.setColor(QPalette::Text, text);
    p.setColor(QPalette::Button, window);
    p.setColor(QPalette::ButtonText, text);
    p.setColor(QPalette::BrightText, Qt::white);
    p.setColor(QPalette::Highlight, QColor(0x35, 0x74, 0xc4));
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::Link, QColor(0x6c, 0xb0, 0xf5));
    p.setColor(QPalette::Mid, QColor(0x3c, 0x3f, 0x43));
    p.setColor(QPalette::Dark, QColor(0x18, 0x19, 0x1b));
    p.setColor(QPalette::Disabled, QPalette::Text, QColor(0x80, 0x80, 0x80));
    p.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x80, 0x80, 0x80));
    p.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x80, 0x80, 0x80));
    // Disabled menu entries are etched in this colour: the light default
    // doubles their text on a dark menu.
    p.setColor(QPalette::Disabled, QPalette::Light, window);
    return p;
}

} // namespace

Theme &Theme::instance()
{
    static Theme *theme = new Theme;
    return *theme;
}

Theme::Theme()
{
    qApp->installEventFilter(this);
}

QString Theme::effectiveAppearanceName() const
{
    return paletteIsDark(QApplication::palette()) ? QStringLiteral("Dark")
                                                  : QStringLiteral("Light");
}

bool Theme::isDark() const
{
    return platform::settings().boolValue(QLatin1String(S::DarkTheme));
}

void Theme::apply()
{
    platform::Settings &settings = platform::settings();
    if (!settings.contains(QLatin1String(S::SelectAppearanceManually)))
        return;
    m_applying = true;
    // Fusion draws both palettes faithfully, whatever the desktop's style.
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(isDark() ? darkPalette() : QApplication::style()->standardPalette());
    m_applying = false;
    Q_EMIT changed(isDark());
}

bool Theme::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange && !m_applying) {
        platform::Settings &settings = platform::settings();
        if (!settings.contains(QLatin1String(S::SelectAppearanceManually))) {
            const bool dark = paletteIsDark(QApplication::palette());
            if (dark)
                settings.set(QLatin1String(S::DarkTheme), true);
            else
                settings.remove(QLatin1String(S::DarkTheme));
            Q_EMIT changed(dark);
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace tl::app
