#include "convert/fonts_to_include.h"

#include "convert/resources.h"

#include <array>

namespace tl::convert {

namespace {

// Faces with all four styles: the files for normal, bold, italic and bold
// italic.
struct FamilyRow
{
    QStringList faces;
    std::array<QString, 4> files; // "%1" is the face's stem
};

const std::vector<FamilyRow> &families()
{
    auto suffixed = [](const char *extension) {
        const QString e = QLatin1String(extension);
        return std::array<QString, 4>{"%1-Regular." + e, "%1-Bold." + e, "%1-Italic." + e,
                                      "%1-BoldItalic." + e};
    };
    auto light = [](const char *extension) {
        const QString e = QLatin1String(extension);
        return std::array<QString, 4>{"%1-Light." + e, "%1-Regular." + e, "%1-LightItalic." + e,
                                      "%1-Italic." + e};
    };
    static const std::vector<FamilyRow> rows = {
        {{"AurulentSans-Regular", "Montserrat-Regular"}, suffixed("otf")},
        {{"LiberationMono-Regular", "Merriweather-Regular", "OpenSans-Regular", "Nunito-Regular",
          "Sarabun-Regular"},
         suffixed("ttf")},
        {{"Merriweather-Light", "OpenSans-Light", "Nunito-Light"}, light("ttf")},
        {{"Montserrat-Light"}, light("otf")},
        {{"Muli"}, {"Muli.ttf", "Muli Bold.ttf", "Muli Italic.ttf", "Muli Bold Italic.ttf"}},
        {{"Muli Light"},
         {"Muli Light.ttf", "Muli.ttf", "Muli Light Italic.ttf", "Muli Italic.ttf"}},
    };
    return rows;
}

// Faces with one file, by prefix, tried in order; "%1" is the face.
struct PrefixRow
{
    const char *prefix;
    const char *file;
};

constexpr PrefixRow kSingleFiles[] = {
    {"AurulentSans-", "AurulentSans-Regular.otf"},
    {"Aurulent Sans Mono", "AurulentSansMono-Regular.otf"},
    {"GentiumPlus", "GentiumPlus-R.ttf"},
    {"Inconsolata", "Inconsolata.otf"},
    {"LiberationMono-", "LiberationMono-Regular.ttf"},
    {"Lexend", "%1.ttf"},
    {"MonospaceTypewriter", "MonospaceTypewriter.ttf"},
    {"Merriweather", "%1.ttf"},
    {"Montserrat", "%1.otf"},
    {"OpenSans", "%1.ttf"},
    {"Muli-BoldItalic", "Muli Bold Italic.ttf"},
    {"Muli-Bold", "Muli Bold.ttf"},
    {"Muli-Italic", "Muli Italic.ttf"},
    {"Muli-LightItalic", "Muli Light Italic.ttf"},
    {"Muli-Light", "Muli Light.ttf"},
    {"Muli-Regular", "Muli.ttf"},
    {"Muli", "Muli.ttf"},
    {"OldTypefaces", "OldTypefaces.ttf"},
    {"SourceCodePro-", "SourceCodePro-Regular.ttf"},
    {"SourceSansPro-", "SourceSansPro-Regular.otf"},
    {"TypewriterScribbled", "TypewriterScribbled.ttf"},
    // Stands before the Black row, which it therefore always wins.
    {"TypeWritersSubstitute", "TypeWritersSubstitute-Oblique.ttf"},
    {"TypeWritersSubstitute-Black", "TypeWritersSubstitute-Black.ttf"},
    {"BitstreamVeraSans-", "Vera.ttf"},
    {"BitstreamVeraSansMono-", "VeraMono.ttf"},
    {"BitstreamVeraSerif-", "VeraSe.ttf"},
};

const QString kFourFaceRules = QStringLiteral(
    "@font-face {\tfont-family: FONT;\tfont-style: normal; font-weight: normal;\tsrc:url(\"###/"
    "%1\");\t}\n@font-face {\tfont-family: FONT;\tfont-style: normal;\tfont-weight: "
    "bold;\t\tsrc:url(\"###/%2\"); \t}\n@font-face {\tfont-family: FONT;\tfont-style: "
    "italic;\tfont-weight: normal;\tsrc:url(\"###/%3\"); \t}\n@font-face {\tfont-family: "
    "FONT;\tfont-style: italic;\tfont-weight: bold;\t\tsrc:url(\"###/%4\");\t}\n");

QStringList fourFaces(const QString &face, const std::array<QString, 4> &pattern,
                      const QString &location)
{
    const QString stem = face.section(u'-', 0, 0);
    QStringList files;
    for (const QString &file : pattern)
        files.append(file.contains(QStringLiteral("%1")) ? file.arg(stem) : file);
    QString css = kFourFaceRules.arg(files[0], files[1], files[2], files[3]);
    css.replace(QStringLiteral("FONT"), face);
    css.replace(QStringLiteral("###"), location);
    return QStringList{css} + files;
}

} // namespace

QStringList tl_fontsToIncludeForFace_forePub(const QString &face, bool forEPub)
{
    const QString location = forEPub ? QStringLiteral("../fonts") : resourcesURL();
    for (const FamilyRow &row : families()) {
        if (row.faces.contains(face))
            return fourFaces(face, row.files, location);
    }
    if (face.startsWith(QStringLiteral("CMUSerif")))
        return fourFaces(face, {"cmunrm.ttf", "cmunbx.ttf", "cmunti.ttf", "cmunbi.ttf"}, location);
    for (const PrefixRow &row : kSingleFiles) {
        if (!face.startsWith(QLatin1String(row.prefix)))
            continue;
        QString file = QLatin1String(row.file);
        if (file.contains(QStringLiteral("%1")))
            file = file.arg(face);
        const QString css = QStringLiteral("@font-face {\n\tfont-family: %1;\n\tfont-style: "
                                           "normal;\n\tfont-weight: normal;\n\tsrc:url(\"%2/%3\");"
                                           "\n}\n\n")
                                .arg(face, location, file);
        return {css, file};
    }
    return {};
}

} // namespace tl::convert
