#include "publish/epub_package.h"

#include "convert/envelope.h"
#include "foundation/path_string.h"
#include "store/mime_types.h"

namespace tl::publish::epub {

QString escaped(const QString &text)
{
    return text.toHtmlEscaped();
}

QString mimetype()
{
    return QStringLiteral("application/epub+zip");
}

QString containerXML()
{
    return QStringLiteral(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<container version=\"1.0\" xmlns=\"urn:oasis:names:tc:opendocument:xmlns:container\">\n"
        "  <rootfiles>\n"
        "    <rootfile full-path=\"OPS/content.opf\" "
        "media-type=\"application/oebps-package+xml\"/>\n"
        "  </rootfiles>\n"
        "</container>\n");
}

QString displayOptionsXML()
{
    return QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<display_options>\n"
                          "  <platform name=\"*\">\n"
                          "    <option name=\"specified-fonts\">true</option>\n"
                          "  </platform>\n"
                          "</display_options>\n");
}

QString ncxHead(const QString &identifier, const QString &title)
{
    return QStringLiteral(
               "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<!DOCTYPE ncx PUBLIC \"-//NISO//DTD ncx 2005-1//EN\" "
               "\"http://www.daisy.org/z3986/2005/ncx-2005-1.dtd\">\n"
               "<ncx xmlns=\"http://www.daisy.org/z3986/2005/ncx/\" version=\"2005-1\">\n"
               "<head>\n"
               " <meta name=\"dtb:uid\" content=\"%1\"/>\n"
               " <meta name=\"dtb:depth\" content=\"1\"/>\n"
               " <meta name=\"dtb:totalPageCount\" content=\"0\"/>\n"
               " <meta name=\"dtb:maxPageNumber\" content=\"0\"/>\n"
               " <meta name=\"epub-creator\" content=\"%2\"/>\n"
               "</head>\n"
               "<docTitle>\n <text>%3</text>\n</docTitle>\n"
               "<navMap>\n")
        .arg(escaped(identifier), escaped(convert::generatorName()), escaped(title));
}

QString ncxTail()
{
    return QStringLiteral("</navMap>\n</ncx>");
}

QString pageHead(const QString &identifier, const QString &title)
{
    return QStringLiteral("<html xmlns=\"http://www.w3.org/1999/xhtml\">\n<head>\n"
                          "<meta http-equiv=\"Content-Type\" content=\"application/xhtml+xml; "
                          "charset=utf-8\" />\n"
                          "<meta name=\"EPB-UUID\" content=\"%1\" />\n"
                          "<title>%2</title>\n"
                          "<link rel=\"stylesheet\" href=\"css/style.css\" type=\"text/css\" />\n"
                          "</head>\n")
        .arg(escaped(identifier), escaped(title));
}

QString xhtmlDeclaration()
{
    return QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<!DOCTYPE html PUBLIC \"-//W3C//DTD XHTML 1.1//EN\" "
                          "\"http://www.w3.org/TR/xhtml11/DTD/xhtml11.dtd\">\n");
}

QString page(const QString &head, const QString &body)
{
    return head + QStringLiteral("<body>\n") + body + QStringLiteral("\n</body>\n</html>");
}

QString captionPage(const QString &head, const QString &imageHref, const QString &caption)
{
    // The image inside a block: a body takes no bare inline content.
    return head + QStringLiteral("<body>\n<div><img src=\"TLImages/%1\" alt=\"%2\"/><br/></div><p "
                                 "class=\"caption\">%2</p>\n</body>\n</html>")
                      .arg(imageHref, escaped(caption));
}

QString coverPage(const QString &imageHref)
{
    return xhtmlDeclaration() +
           QStringLiteral("<html xmlns=\"http://www.w3.org/1999/xhtml\">\n<head>\n"
                          "<title>Cover page</title>\n"
                          "<style type=\"text/css\">img { max-width: 100%; }</style>\n"
                          "</head>\n<body>\n<div style=\"text-align: center;\">"
                          "<img src=\"TLImages/%1\" alt=\"Title\"/></div>\n</body>\n</html>\n")
               .arg(imageHref);
}

QString fontItem(int index, const QString &file)
{
    return QStringLiteral(
               " <item id=\"font%1\" href=\"fonts/%2\" media-type=\"font/opentype\" />\n")
        .arg(index)
        .arg(escaped(file));
}

QString styleSheetItem()
{
    return QStringLiteral(
        " <item id=\"stylesheet\" href=\"css/style.css\" media-type=\"text/css\" />\n");
}

QString navigationItem(const QString &href)
{
    return QStringLiteral(
               " <item id=\"ncx\" href=\"%1\" media-type=\"application/x-dtbncx+xml\" />\n")
        .arg(href);
}

QString documentItem(int number, const QString &href)
{
    return QStringLiteral(
               " <item id=\"item%1\" href=\"%2\" media-type=\"application/xhtml+xml\" />\n")
        .arg(number)
        .arg(href);
}

QString imageItem(int number, const QString &name)
{
    return QStringLiteral(" <item id=\"item%1\" href=\"TLImages/%2\" media-type=\"%3\" />\n")
        .arg(number)
        .arg(name, store::tl_mimeTypeForExtension(path::extension(name)));
}

QString coverItems(const QString &imageName)
{
    return QStringLiteral(
               "  <item id=\"cover\" href=\"cover.html\" media-type=\"application/xhtml+xml\" />\n"
               "  <item id=\"cover-image\" href=\"TLImages/%1\" media-type=\"%2\" />\n")
        .arg(imageName, store::tl_mimeTypeForExtension(path::extension(imageName)));
}

QString spineItem(int number)
{
    return QStringLiteral(" <itemref idref=\"item%1\" linear=\"yes\" />\n").arg(number);
}

QString coverSpineItem()
{
    return QStringLiteral("<itemref idref=\"cover\"/>\n");
}

QString coverMeta()
{
    return QStringLiteral("<meta name=\"cover\" content=\"cover-image\" />\n");
}

QString packageDocument(const PackageMetadata &metadata, const QString &manifest,
                        const QString &spine)
{
    const EBookAttributes &a = metadata.attributes;
    QString opf = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                 "<package xmlns=\"http://www.idpf.org/2007/opf\" "
                                 "unique-identifier=\"BookId\" version=\"2.0\">\n"
                                 "<metadata xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
                                 "xmlns:opf=\"http://www.idpf.org/2007/opf\">\n"
                                 "<dc:title>%1</dc:title>\n"
                                 "<dc:creator opf:role=\"aut\">%2</dc:creator>\n"
                                 "<dc:contributor opf:role=\"bkp\">%3</dc:contributor>\n"
                                 "<dc:date>%4</dc:date>\n"
                                 "<dc:identifier id=\"BookId\">%5</dc:identifier>\n"
                                 "<dc:language>en</dc:language>\n")
                      .arg(escaped(a.title), escaped(a.author), escaped(convert::generatorName()),
                           metadata.date, escaped(metadata.identifier));
    const auto optional = [&opf](const char *element, const QString &value) {
        if (!value.isEmpty())
            opf +=
                QStringLiteral("<dc:%1>%2</dc:%1>\n").arg(QLatin1String(element), escaped(value));
    };
    optional("subject", a.subject);
    optional("description", a.description);
    optional("rights", a.rights);
    if (metadata.hasCover)
        opf += coverMeta();
    return opf + QStringLiteral("</metadata>\n") + manifest + spine +
           QStringLiteral("\n</package>\n");
}

} // namespace tl::publish::epub
