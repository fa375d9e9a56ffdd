#pragma once

#include <QString>

// Copies of a formatted document adjusted to the dark or solarized theme,
// for display only: the result is never stored.
namespace tl::convert {

QString tl_formattedDocAdjustedToDarkTheme(const QString &html);
QString tl_formattedDocAdjustedToSolarizedTheme(const QString &html);
// The adjustment the settings ask for: solarized, else dark unless
// documents avoid it, else none.
QString formattedDocAdjustedToTheme(const QString &html);

} // namespace tl::convert
