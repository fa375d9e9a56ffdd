#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

// Contexts written into text: a word that begins with a marker character
// ("@home", "#idea").
namespace tl::contexts {

using TagSet = QSet<QString>;

// The context words of a text, with the markers of the settings and less the
// words of ExcludedTags.txt.
TagSet tl_extractTagsFromString(const QString &text);
// The same with the markers and the excluded words given.
TagSet tl_extractTagsFromString(const QString &text, const QString &markers,
                                const QStringList &excluded);

// The marker characters of the settings, "@#" when none are set.
QString contextMarkers();
// Whether both contextsEnabled and extractContextsAutomatically are on.
bool contextsExtractedAutomatically();

} // namespace tl::contexts
