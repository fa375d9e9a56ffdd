// Texts that once took time growing with the square of their size, or more,
// finish with a page that holds what they say. Not timed: a regression
// shows as a test that does not end.
#include "convert/envelope.h"
#include "convert/markdown_to_html.h"
#include "convert_test_support.h"
#include "pathological_markdown.h"

namespace {

using tl::convert::tl_getInnerHTML;
using tl::convert::tl_markdownToHTML;

using Pathological = tltest::ConvertTest;

TEST_F(Pathological, EveryShapeMakesASanePage)
{
    for (int converter : {0, 1}) {
        setSetting("MarkdownConverter", converter);
        for (const tltest::PathologicalShape &shape : tltest::pathologicalShapes()) {
            SCOPED_TRACE(std::string(shape.name) + ", converter " + std::to_string(converter));
            const QString text = tltest::pathologicalText(shape, 128 * 1024);
            const QString page = tl_markdownToHTML(text);
            EXPECT_TRUE(page.startsWith("<!DOCTYPE html>"));
            EXPECT_TRUE(page.endsWith("</body>\n</html>"));
            const QString body = tl_getInnerHTML(page);
            EXPECT_GT(body.size(), text.size() / 2);
            EXPECT_LT(body.size(), 20 * text.size());
            if (!shape.perPiece.isEmpty()) {
                EXPECT_EQ(body.count(shape.perPiece), text.size() / shape.piece.size());
            }
        }
    }
}

TEST_F(Pathological, IdenticalHeadingsAreNumberedFromTheFirst)
{
    setSetting("MarkdownConverter", 0);
    const QString body = tl_getInnerHTML(tl_markdownToHTML(QString("# A\n\n").repeated(5000)));
    EXPECT_TRUE(body.startsWith("<h1 id=\"A-4999\">A</h1>"));
    EXPECT_TRUE(body.contains("<h1 id=\"A-1\">A</h1>\n\n<h1 id=\"A\">A</h1>"));
}

} // namespace
