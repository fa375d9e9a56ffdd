#include "convert/discount.h"

extern "C" {
#include <mkdio.h>
}

#include <cstdlib>
#include <cstring>
#include <mutex>

// Version 2 defines its flags as bit-mask macros; version 3 numbers them in
// an enum and keeps them in an opaque flag object.
#if defined(MKD_NOLINKS)
#define TL_DISCOUNT_BITMASK 1
#else
#define TL_DISCOUNT_BITMASK 0
#endif

namespace tl::convert::discount {

namespace {

// The library keeps a little global state (its tag tables, its random
// seed), set up once for the whole process before any document.
void initializeLibraryOnce()
{
    static std::once_flag once;
    std::call_once(once, [] { mkd_initialize(); });
}

struct FlagName
{
    Flag flag;
#if TL_DISCOUNT_BITMASK
    mkd_flag_t bit;
#else
    int number;
#endif
};

// Version 2 has discount-style definition lists on by default (it only has
// a flag to switch them off), so that flag maps to nothing there.
constexpr FlagName kFlagNames[] = {
    {Flag::NoPants, MKD_NOPANTS},
    {Flag::ExplicitList, MKD_EXPLICITLIST},
    {Flag::NoSuperscript, MKD_NOSUPERSCRIPT},
    {Flag::TOC, MKD_TOC},
    {Flag::Autolink, MKD_AUTOLINK},
    {Flag::ExtraFootnote, MKD_EXTRA_FOOTNOTE},
    {Flag::NoStyle, MKD_NOSTYLE},
#if TL_DISCOUNT_BITMASK
    {Flag::DLDiscount, 0},
#else
    {Flag::DLDiscount, MKD_DLDISCOUNT},
#endif
    {Flag::DLExtra, MKD_DLEXTRA},
    {Flag::FencedCode, MKD_FENCEDCODE},
    {Flag::IdAnchor, MKD_IDANCHOR},
    {Flag::GithubTags, MKD_GITHUBTAGS},
    {Flag::Latex, MKD_LATEX},
    {Flag::NoDivQuote, MKD_NODIVQUOTE},
};

#if TL_DISCOUNT_BITMASK
using LibraryFlags = mkd_flag_t;
LibraryFlags libraryFlags(const Flags &flags)
{
    mkd_flag_t bits = 0;
    for (const FlagName &name : kFlagNames) {
        if (flags.has(name.flag))
            bits |= name.bit;
    }
    return bits;
}
mkd_flag_t passed(LibraryFlags flags)
{
    return flags;
}
#else
struct FreeFlags
{
    void operator()(mkd_flag_t *flags) const { mkd_free_flags(flags); }
};
using LibraryFlags = std::unique_ptr<mkd_flag_t, FreeFlags>;
LibraryFlags libraryFlags(const Flags &flags)
{
    LibraryFlags blob(mkd_flags());
    for (const FlagName &name : kFlagNames) {
        if (flags.has(name.flag))
            mkd_set_flag_num(blob.get(), name.number);
    }
    return blob;
}
mkd_flag_t *passed(const LibraryFlags &flags)
{
    return flags.get();
}
#endif

QString fromLibrary(const char *text)
{
    return text ? QString::fromUtf8(text) : QString();
}

} // namespace

Flags::Flags(std::initializer_list<Flag> flags)
{
    for (Flag flag : flags)
        set(flag);
}

struct Document::Impl
{
    MMIOT *document = nullptr;
    LibraryFlags flags;
    AnchorMaker anchorMaker;

    ~Impl()
    {
        if (document)
            mkd_cleanup(document);
    }

    static char *makeAnchor(const char *heading, const int length, void *context)
    {
        const QByteArray id =
            static_cast<Impl *>(context)->anchorMaker(QByteArrayView(heading, length));
        char *copy = static_cast<char *>(std::malloc(size_t(id.size()) + 1));
        if (copy)
            std::memcpy(copy, id.constData(), size_t(id.size()) + 1);
        return copy;
    }
#if TL_DISCOUNT_BITMASK
    static void freeAnchor(char *anchor, void *)
    {
        std::free(anchor);
    }
#else
    static void freeAnchor(char *anchor, int, void *)
    {
        std::free(anchor);
    }
#endif
};

Document::Document(std::unique_ptr<Impl> impl) : d(std::move(impl))
{
}
Document::~Document() = default;

std::unique_ptr<Document> Document::read(FILE *input, const Flags &flags)
{
    initializeLibraryOnce();
    auto impl = std::make_unique<Impl>();
    impl->flags = libraryFlags(flags);
    impl->document = mkd_in(input, passed(impl->flags));
    if (!impl->document)
        return nullptr;
    return std::unique_ptr<Document>(new Document(std::move(impl)));
}

std::unique_ptr<Document> Document::parse(const QByteArray &utf8, const Flags &flags)
{
    initializeLibraryOnce();
    auto impl = std::make_unique<Impl>();
    impl->flags = libraryFlags(flags);
    impl->document = mkd_string(utf8.constData(), int(utf8.size()), passed(impl->flags));
    if (!impl->document)
        return nullptr;
    return std::unique_ptr<Document>(new Document(std::move(impl)));
}

void Document::setAnchorMaker(AnchorMaker maker)
{
    d->anchorMaker = std::move(maker);
#if TL_DISCOUNT_BITMASK
    mkd_e_anchor(d->document, &Impl::makeAnchor);
    mkd_e_free(d->document, &Impl::freeAnchor);
    mkd_e_data(d->document, d.get());
#else
    mkd_e_anchor(d->document, &Impl::makeAnchor, &Impl::freeAnchor, d.get());
#endif
}

bool Document::compile()
{
    return mkd_compile(d->document, passed(d->flags)) != 0;
}

QString Document::title() const
{
    return fromLibrary(mkd_doc_title(d->document));
}

QString Document::author() const
{
    return fromLibrary(mkd_doc_author(d->document));
}

QString Document::date() const
{
    return fromLibrary(mkd_doc_date(d->document));
}

QByteArray Document::contents() const
{
    char *text = nullptr;
    const int length = mkd_toc(d->document, &text);
    QByteArray result = length > 0 && text ? QByteArray(text, length) : QByteArray();
    // The library hands the list over to the caller.
    std::free(text);
    return result;
}

bool Document::writeHTML(FILE *output) const
{
    return mkd_generatehtml(d->document, output) != EOF;
}

QByteArray Document::html() const
{
    char *text = nullptr;
    const int length = mkd_document(d->document, &text);
    // This buffer stays the library's.
    return length > 0 && text ? QByteArray(text, length) : QByteArray();
}

} // namespace tl::convert::discount
