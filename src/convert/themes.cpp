#include "convert/themes.h"

#include "convert/convert_keys.h"
#include "foundation/regex.h"
#include "platform/settings.h"
#include "store/keys.h"

#include <span>

namespace tl::convert {

namespace {

bool setting(const char *key)
{
    return platform::settings().boolValue(QLatin1String(key));
}

// The theme variables a sheet sets to #000000 so that themes reach them.
QString withThemeVariables(const QString &html, const QString &color)
{
    static const Regex theme(QStringLiteral(R"(--theme-color:\s*#000000;)"));
    static const Regex checkbox(QStringLiteral(R"(--checkbox-color:\s*#000000;)"));
    static const Regex checkboxDone(QStringLiteral(R"(--checkbox-done-color:\s*#000000;)"));
    const RegexRule rules[] = {
        {theme, QStringLiteral("--theme-color: %1;").arg(color)},
        {checkbox, QStringLiteral("--checkbox-color: %1;").arg(color)},
        {checkboxDone, QStringLiteral("--checkbox-done-color: %1;").arg(color)},
    };
    return applyRules(html, rules);
}

} // namespace

QString tl_formattedDocAdjustedToDarkTheme(const QString &html)
{
    const bool black =
        setting(keys::UseBlackForDarkTheme) && !setting(tl::keys::setting::UseSolarizedTheme);
    // Both texts are kept as they have always been written, the missing
    // brace and the print rule nested in the screen rule included.
    const QString style =
        black ? QStringLiteral("<style> body {color: #aaa; background-color: #000;} .title "
                               "{color: #afafaf;} .author {color: #afafaf;} .date {color: "
                               "#afafaf;} @media print { body { background: white; "
                               "color:black; }  </style>\n")
              : QStringLiteral("<style> @media screen { body {color: #aaa; background-color: "
                               "#1f1e1e;} .title {color: #afafaf;} .author {color: #afafaf;} "
                               ".date {color: #afafaf;} @media print { body { background: "
                               "white; color:black; } } </style>\n");
    QString result = html;
    const qsizetype head = result.indexOf(QStringLiteral("</head>"));
    if (head >= 0)
        result.insert(head, style);
    return withThemeVariables(result, black ? QStringLiteral("#aaa") : QStringLiteral("#afafaf"));
}

QString tl_formattedDocAdjustedToSolarizedTheme(const QString &html)
{
    // Light and dark follow the system's appearance.
    const QString addition = QStringLiteral(
        ":root {  color-scheme: light dark; }@media screen {  @media (prefers-color-scheme: "
        "light) { body { color: #657b83; background-color: #fdf6e3; }} @media "
        "(prefers-color-scheme: dark)  { body { color: #839496; background-color: #002b36; }}}");
    QString result = html;
    result.replace(QStringLiteral("</style>"), addition + QStringLiteral("</style>"));
    return withThemeVariables(result, QStringLiteral("#839496"));
}

QString formattedDocAdjustedToTheme(const QString &html)
{
    if (setting(tl::keys::setting::UseSolarizedTheme))
        return tl_formattedDocAdjustedToSolarizedTheme(html);
    if (setting(tl::keys::setting::DarkTheme) && !setting(keys::AvoidDarkThemeForDocuments))
        return tl_formattedDocAdjustedToDarkTheme(html);
    return html;
}

} // namespace tl::convert
