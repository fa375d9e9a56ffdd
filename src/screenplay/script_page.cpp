#include "screenplay/script_page.h"

#include "screenplay/fn_html_script.h"

namespace tl::screenplay {

namespace {

ScriptPage pageOf(const FNScript &script)
{
    FNHTMLScript page(script);
    const QString html = page.html();
    return {html, page.numberOfPages()};
}

} // namespace

ScriptPage scriptPageForDocument(const QString &path)
{
    return pageOf(FNScript::fromFile(path));
}

ScriptPage scriptPageForText(const QString &text)
{
    return pageOf(FNScript::fromString(text));
}

} // namespace tl::screenplay
