#pragma once

#include "screenplay/fn_script.h"

namespace tl::screenplay {

// A script as one self-contained HTML page in the look of a printed
// screenplay: the title block, then the text page by page, each page behind
// its number. The text goes out unescaped, as it stands in the elements, so
// whoever shows the page must not let it run scripts or load anything.
class FNHTMLScript
{
public:
    explicit FNHTMLScript(const FNScript &script);

    // The whole page. The body is worked out once and reused after that,
    // even when the script has changed since.
    QString html();
    // The style sheet "ScriptCSS.css" among the program's resources.
    static QString cssText();
    static QString htmlClassForType(const QString &type);
    QString bodyForScript();
    // The pages the body was worked out with (0 before the first).
    int numberOfPages() const { return m_numberOfPages; }

    // The font the script is set in; the page does not read it.
    struct Font
    {
        QString family;
        int pointSize;
    } font;
    FNScript script;
    std::optional<QString> bodyText;

private:
    int m_numberOfPages = 0;
};

} // namespace tl::screenplay
