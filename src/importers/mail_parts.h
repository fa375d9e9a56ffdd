#pragma once

#include <QString>

// The walker's pieces, shared by its files.
namespace tl::importers::detail {

// A message's header after decoding, and its lower-cased copy that every
// "contains" test reads.
struct MailHeader
{
    QString text;
    QString lookup;
    bool has(const char *needle) const { return lookup.contains(QLatin1String(needle)); }
};

// What a part gives back to the walker above it.
inline constexpr char kAttachmentResult[] = "__ATTACHMENT__ ";
inline constexpr char kInlineImageResult[] = "cid:";

// One conversion's state: the attachment folder and the header padding.
struct MailWalk
{
    QString attachmentFolder;
    QString headerPadding = QStringLiteral("0");
};

// The sender, recipient, date and subject lines as HTML.
QString headerBlock(const QString &header);
// A part that is no multipart: an attachment, an image, or text.
QString singlePart(const MailHeader &header, const QString &content, MailWalk &walk);

} // namespace tl::importers::detail
