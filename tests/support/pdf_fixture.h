#pragma once

#include <QByteArray>
#include <QList>

namespace tltest {

// A PDF file of the given objects, numbered from 1 in order, with the cross
// reference table that readers need to find them.
inline QByteArray pdfOfObjects(const QList<QByteArray> &objects)
{
    QByteArray pdf = "%PDF-1.4\n";
    QList<qsizetype> offsets;
    for (qsizetype i = 0; i < objects.size(); ++i) {
        offsets << pdf.size();
        pdf += QByteArray::number(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const qsizetype xref = pdf.size();
    pdf += "xref\n0 " + QByteArray::number(objects.size() + 1) + "\n0000000000 65535 f \n";
    for (const qsizetype offset : offsets)
        pdf += QByteArray::number(offset).rightJustified(10, '0') + " 00000 n \n";
    pdf += "trailer\n<< /Size " + QByteArray::number(objects.size() + 1) +
           " /Root 1 0 R >>\nstartxref\n" + QByteArray::number(xref) + "\n%%EOF\n";
    return pdf;
}

// A PDF of letter-sized pages in Helvetica, one line of text on each.
inline QByteArray pdfOfPages(const QList<QByteArray> &lines, int fontSize = 12)
{
    QList<QByteArray> objects{"<< /Type /Catalog /Pages 2 0 R >>", QByteArray(),
                              "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"};
    QByteArray kids;
    for (const QByteArray &line : lines) {
        const QByteArray stream =
            "BT /F1 " + QByteArray::number(fontSize) + " Tf 72 720 Td (" + line + ") Tj ET";
        const qsizetype page = objects.size() + 1;
        objects << "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Resources << /Font "
                   "<< /F1 3 0 R >> >> /Contents " +
                       QByteArray::number(page + 1) + " 0 R >>"
                << "<< /Length " + QByteArray::number(stream.size()) + " >>\nstream\n" + stream +
                       "\nendstream";
        kids += QByteArray::number(page) + " 0 R ";
    }
    objects[1] =
        "<< /Type /Pages /Kids [" + kids + "] /Count " + QByteArray::number(lines.size()) + " >>";
    return pdfOfObjects(objects);
}

} // namespace tltest
