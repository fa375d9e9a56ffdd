#pragma once

// Shared by the conversion tests: a temporary library with the settings put
// back after each test, and table rows of text in, text out.

#include "../store/library_fixture.h"

#include <QString>

namespace tltest {

struct TextCase
{
    const char *name;
    QString input;
    QString expected;
};

inline void PrintTo(const TextCase &c, std::ostream *os)
{
    *os << c.name;
}

class ConvertTest : public LibraryTest
{
protected:
    // A file of the given bytes at the library root.
    QString document(const QString &name, const QByteArray &content)
    {
        const QString path = root_ + "/" + name;
        writeFile(path, content);
        return path;
    }
};

} // namespace tltest
