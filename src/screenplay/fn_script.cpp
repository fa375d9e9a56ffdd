#include "screenplay/fn_script.h"

#include "foundation/path_string.h"
#include "screenplay/fast_fountain_parser.h"
#include "screenplay/fountain_parser.h"
#include "screenplay/fountain_writer.h"
#include "store/document_file.h"

namespace tl::screenplay {

FNScript FNScript::fromFile(const QString &path, int parser)
{
    FNScript script;
    script.loadFile(path, parser);
    return script;
}

FNScript FNScript::fromString(const QString &text, int parser)
{
    FNScript script;
    script.loadString(text, parser);
    return script;
}

void FNScript::loadFile(const QString &path, int parser)
{
    filename = path::lastComponent(path);
    if (parser == kAlternativeParser) {
        elements = FountainParser::parseBodyOfFile(path);
        titlePage = FountainParser::parseTitlePageOfFile(path);
        return;
    }
    FastFountainParser parsed = FastFountainParser::fromFile(path);
    elements = std::move(parsed.elements);
    titlePage = std::move(parsed.titlePage);
}

void FNScript::loadString(const QString &text, int parser)
{
    filename.reset();
    if (parser == kAlternativeParser) {
        elements = FountainParser::parseBodyOfString(text);
        titlePage = FountainParser::parseTitlePageOfString(text);
        return;
    }
    FastFountainParser parsed(text);
    elements = std::move(parsed.elements);
    titlePage = std::move(parsed.titlePage);
}

QString FNScript::stringFromDocument() const
{
    return FountainWriter::documentFromScript(*this);
}

QString FNScript::stringFromTitlePage() const
{
    return FountainWriter::titlePageFromScript(*this);
}

QString FNScript::stringFromBody() const
{
    return FountainWriter::bodyFromScript(*this);
}

bool FNScript::writeToFile(const QString &path) const
{
    return store::tl_writeToFile(stringFromDocument().toUtf8(), path, true);
}

} // namespace tl::screenplay
