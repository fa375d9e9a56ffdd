#include "screenplay/fn_element.h"

namespace tl::screenplay {

std::shared_ptr<FNElement> FNElement::elementOfType(const QString &type, const QString &text)
{
    auto element = std::make_shared<FNElement>();
    element->elementType = type;
    element->elementText = text;
    return element;
}

QString FNElement::description() const
{
    QString qualifier;
    if (isCentered)
        qualifier = QStringLiteral(" (centered)");
    else if (isDualDialogue)
        qualifier = QStringLiteral(" (dual dialogue)");
    else if (sectionDepth > 0)
        qualifier = QStringLiteral(" (%1d)").arg(sectionDepth);
    return QStringLiteral("%1%2: %3").arg(elementType, qualifier, elementText);
}

QString titlePageKey(const QString &fieldName, bool acceptAuthorPlural)
{
    const QString key = fieldName.toLower();
    if (key == u"author" || (acceptAuthorPlural && key == u"author(s)"))
        return QStringLiteral("authors");
    return key;
}

} // namespace tl::screenplay
