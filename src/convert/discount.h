#pragma once

// The default Markdown converter, Discount, behind a small interface that
// hides which generation of the library's C interface is installed: the
// version-3 flag object or the version-2 bit mask, and the two forms of the
// anchor callback. Nothing of mkdio.h leaks out of this header.

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <cstdio>
#include <functional>
#include <initializer_list>
#include <memory>

namespace tl::convert::discount {

// The library's options by name; each generation numbers them its own way.
enum class Flag {
    NoPants,
    ExplicitList,
    NoSuperscript,
    TOC,
    Autolink,
    ExtraFootnote,
    NoStyle,
    DLDiscount,
    DLExtra,
    FencedCode,
    IdAnchor,
    GithubTags,
    Latex,
    // Keeps ">%class%" quotations as quotations.
    NoDivQuote,
};

class Flags
{
public:
    Flags() = default;
    Flags(std::initializer_list<Flag> flags);
    void set(Flag flag) { bits_ |= bit(flag); }
    bool has(Flag flag) const { return bits_ & bit(flag); }

private:
    static unsigned bit(Flag flag) { return 1u << unsigned(flag); }
    unsigned bits_ = 0;
};

// Makes an element id from a heading's text (UTF-8 in, UTF-8 out).
using AnchorMaker = std::function<QByteArray(QByteArrayView heading)>;

// One document in the library: parsed, compiled, then written out.
class Document
{
public:
    // Parses the stream; nothing when the library gives nothing.
    static std::unique_ptr<Document> read(FILE *input, const Flags &flags);
    // Parses a text in memory.
    static std::unique_ptr<Document> parse(const QByteArray &utf8, const Flags &flags);
    ~Document();
    Document(const Document &) = delete;
    Document &operator=(const Document &) = delete;

    // Ids for headings (and contents links) come from `maker` from now on.
    void setAnchorMaker(AnchorMaker maker);
    bool compile();

    // The "%" title block lines; empty when absent.
    QString title() const;
    QString author() const;
    QString date() const;
    // The contents list as the library writes it: nested ul, one li per
    // heading. Empty without headings or without the TOC flag.
    QByteArray contents() const;
    bool writeHTML(FILE *output) const;
    // The body in memory.
    QByteArray html() const;

private:
    struct Impl;
    explicit Document(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> d;
};

} // namespace tl::convert::discount
