#include "publish/ebook_details.h"

#include "foundation/clock.h"
#include "foundation/path_string.h"
#include "platform/settings.h"
#include "publish/publish_texts.h"

namespace tl::publish {

EBookAttributes proposedEBookAttributes(const QStringList &selection, const QString &basePath)
{
    EBookAttributes proposal;
    proposal.title = !basePath.isEmpty() ? path::lastComponent(basePath)
                     : selection.isEmpty()
                         ? QString()
                         : path::deletingExtension(path::lastComponent(selection.first()));
    proposal.author = platform::settings().string(QLatin1String(texts::EBookAuthorSetting));
    proposal.rights = QString::fromUtf8(texts::EBookRights)
                          .arg(clock().now().toLocalTime().toString(QStringLiteral("yyyy")));
    return proposal;
}

EBookAttributes withProposedDetails(EBookAttributes given, const QStringList &selection,
                                    const QString &basePath)
{
    const EBookAttributes proposal = proposedEBookAttributes(selection, basePath);
    for (auto [field, fallback] :
         {std::pair{&given.title, &proposal.title}, std::pair{&given.author, &proposal.author},
          std::pair{&given.rights, &proposal.rights}})
        if (field->isEmpty())
            *field = *fallback;
    return given;
}

} // namespace tl::publish
