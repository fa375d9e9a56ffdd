#pragma once

#include "screenplay/fn_element.h"

namespace tl::screenplay {

// The parsers a script can be loaded with: 1 is the alternative
// FountainParser, every other value the FastFountainParser the program uses.
inline constexpr int kAlternativeParser = 1;

// A screenplay: its elements and title page, loaded from Fountain text and
// written back as Fountain text.
class FNScript
{
public:
    FNScript() = default;
    static FNScript fromFile(const QString &path, int parser = 0);
    static FNScript fromString(const QString &text, int parser = 0);

    void loadFile(const QString &path, int parser = 0);
    void loadString(const QString &text, int parser = 0);

    QString stringFromDocument() const;
    QString stringFromTitlePage() const;
    QString stringFromBody() const;
    QString description() const { return stringFromDocument(); }
    // Writes the document text atomically as UTF-8.
    bool writeToFile(const QString &path) const;

    bool suppressSceneNumbers = false; // read by the writer only
    std::optional<QString> filename;   // the loaded file's name; none from a string
    FNElementList elements;
    TitlePage titlePage;
};

} // namespace tl::screenplay
