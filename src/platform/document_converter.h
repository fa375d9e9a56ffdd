#pragma once

// Conversions between document formats by an external program: a source
// file into a target file of another format, answering the program's exit
// status (0 for success). The desktop uses the system's converter; tests
// install one of their own.

#include <QString>
#include <memory>

namespace tl::platform {

struct ConversionRequest
{
    // The target format by extension: "txt", "html", "rtf", "rtfd", "doc",
    // "docx", "wordml", "odt" or "webarchive".
    QString format;
    double fontSize = 0;
    QString target;
    QString source;
};

class DocumentConverter
{
public:
    virtual ~DocumentConverter();
    virtual int convert(const ConversionRequest &request) = 0;
};

// LibreOffice's headless converter when installed, else pandoc for the
// formats it writes; anything it can't do answers a non-zero status.
class SystemDocumentConverter : public DocumentConverter
{
public:
    int convert(const ConversionRequest &request) override;
};

// The process-wide converter: a SystemDocumentConverter until one is set.
DocumentConverter &documentConverter();
// Nothing restores the system's converter.
void setDocumentConverter(std::shared_ptr<DocumentConverter> converter);

} // namespace tl::platform
