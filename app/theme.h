#pragma once

#include <QObject>
#include <QString>

// Light and dark. The desktop's palette decides unless the user chose an
// appearance; darkTheme follows, and the formatted view adjusts its pages.
namespace tl::app {

class Theme : public QObject
{
    Q_OBJECT
public:
    static Theme &instance();

    // "Dark" or "Light", from the palette the desktop gives.
    QString effectiveAppearanceName() const;
    bool isDark() const;
    // Applies a chosen appearance, if any, to the application's palette.
    void apply();

Q_SIGNALS:
    void changed(bool dark);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Theme();
    bool m_applying = false;
};

} // namespace tl::app
