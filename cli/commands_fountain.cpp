// fountain parse|pages|html|write: a screenplay's elements, pages, script
// page and text written back, for scripts and for checking a document.
#include "cli.h"
#include "screenplay/fast_fountain_parser.h"
#include "screenplay/fn_html_script.h"
#include "screenplay/fn_paginator.h"
#include "screenplay/fn_script.h"

#include <QFile>
#include <QStringDecoder>

namespace tl::cli {

namespace {

using screenplay::FNElement;
using screenplay::FNElementList;
using screenplay::FNScript;

const QString kUsage =
    QStringLiteral("Usage: tavelle fountain parse|pages|html|write PATH|- [--parser 1] [-o FILE]");

// The script's text, from a file or standard input, which must be UTF-8.
std::optional<QString> readScript(const QString &argument)
{
    if (argument != u"-")
        return screenplay::utf8ContentsOfFile(absolutePath(argument));
    QFile in;
    if (!in.open(stdin, QIODevice::ReadOnly))
        return std::nullopt;
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder.decode(in.readAll());
    return decoder.hasError() ? std::nullopt : std::optional<QString>(text);
}

QVariantMap elementRecord(const FNElement &element)
{
    QVariantMap record{{"type", element.elementType},
                       {"text", element.elementText},
                       {"description", element.description()}};
    if (element.isCentered)
        record.insert(QStringLiteral("isCentered"), true);
    if (element.isDualDialogue)
        record.insert(QStringLiteral("isDualDialogue"), true);
    if (element.sceneNumber)
        record.insert(QStringLiteral("sceneNumber"), *element.sceneNumber);
    if (element.sectionDepth > 0)
        record.insert(QStringLiteral("sectionDepth"), element.sectionDepth);
    return record;
}

QVariantList descriptions(const FNElementList &elements, bool records)
{
    QVariantList list;
    for (const auto &element : elements)
        list.append(records ? QVariant(elementRecord(*element)) : element->description());
    return list;
}

int parse(const FNScript &script, bool json)
{
    if (json) {
        QVariantList titlePage;
        for (const auto &field : script.titlePage)
            titlePage.append(QVariantMap{{field.key, *field.values}});
        printValue(QVariantMap{{"titlePage", titlePage},
                               {"elements", descriptions(script.elements, true)}},
                   true);
        return Success;
    }
    for (const auto &field : script.titlePage)
        for (const QString &value : *field.values)
            printLine(QStringLiteral("%1: %2").arg(field.key, value));
    if (!script.titlePage.isEmpty())
        printLine(QString());
    for (const auto &element : script.elements)
        printLine(element->description());
    return Success;
}

int pages(const FNScript &script, bool json)
{
    screenplay::FNPaginator paginator(script);
    const int count = paginator.numberOfPages();
    if (json) {
        QVariantList pages;
        for (int n = 0; n < count; ++n)
            pages.append(QVariant(descriptions(paginator.pageAtIndex(n), false)));
        printValue(QVariantMap{{"pageCount", count}, {"pages", pages}}, true);
        return Success;
    }
    printLine(QString::number(count));
    for (int n = 0; n < count; ++n) {
        printLine(QStringLiteral("%1.").arg(n + 1));
        for (const auto &element : paginator.pageAtIndex(n))
            printLine(QStringLiteral("  ") + element->description());
    }
    return Success;
}

int fountain(const QCommandLineParser &parser, const Invocation &in)
{
    if (in.arguments.size() != 2)
        return fail(kUsage, Usage);
    const QString &action = in.arguments.first();
    if (action != u"parse" && action != u"pages" && action != u"html" && action != u"write")
        return fail(kUsage, Usage);
    const std::optional<QString> text = readScript(in.arguments.at(1));
    if (!text)
        return fail(QStringLiteral("Cannot read %1 as UTF-8").arg(in.arguments.at(1)));
    const FNScript script =
        FNScript::fromString(*text, parser.value(QStringLiteral("parser")).toInt());
    if (action == u"parse")
        return parse(script, in.json);
    if (action == u"pages")
        return pages(script, in.json);
    if (action == u"html")
        return deliver(screenplay::FNHTMLScript(script).html(), parser);
    return deliver(script.stringFromDocument(), parser);
}

} // namespace

const std::vector<Command> &fountainCommands()
{
    static const std::vector<Command> commands{
        {"fountain",
         "fountain parse|pages|html|write PATH|-: a screenplay's elements, pages, page or text",
         false,
         [](QCommandLineParser &parser) {
             parser.addPositionalArgument(
                 QStringLiteral("ACTION"),
                 QStringLiteral("parse: title page and elements; pages: the page count and each "
                                "page's elements; html: the script page; write: the script "
                                "written back as Fountain text."));
             parser.addPositionalArgument(QStringLiteral("PATH"),
                                          QStringLiteral("Script, or - for standard input."));
             parser.addOption({QStringLiteral("parser"),
                               QStringLiteral("Parser: 0 (default, line by line) or 1 (the "
                                              "expression pipeline)."),
                               QStringLiteral("N")});
             parser.addOption({QStringLiteral("o"), QStringLiteral("Write html or write to FILE."),
                               QStringLiteral("FILE")});
         },
         fountain},
    };
    return commands;
}

} // namespace tl::cli
