// Replays every input kept below fuzz/corpus through its fuzz target, so an
// input that once crashed a target stays a test: put it in the target's
// folder. The targets stop the process on a broken invariant.
#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#define LLVMFuzzerTestOneInput fuzzRequestParser
#include "fuzz/fuzz_request_parser.cc"
#undef LLVMFuzzerTestOneInput
#define LLVMFuzzerTestOneInput fuzzRange
#include "fuzz/fuzz_range.cc"
#undef LLVMFuzzerTestOneInput
#define LLVMFuzzerTestOneInput fuzzAuthorization
#include "fuzz/fuzz_authorization.cc"
#undef LLVMFuzzerTestOneInput
#define LLVMFuzzerTestOneInput fuzzConnection
#include "fuzz/fuzz_connection.cc"
#undef LLVMFuzzerTestOneInput
#define LLVMFuzzerTestOneInput fuzzPlistXml
#include "fuzz/fuzz_plist_xml.cc"
#undef LLVMFuzzerTestOneInput

namespace {

int replay(const char *target, int (*entry)(const uint8_t *, size_t))
{
    const QDir corpus(QStringLiteral(TAVELLE_FUZZ_CORPUS "/") + QLatin1String(target));
    int count = 0;
    for (const QFileInfo &file : corpus.entryInfoList(QDir::Files)) {
        QFile f(file.absoluteFilePath());
        if (!f.open(QIODevice::ReadOnly))
            continue;
        const QByteArray input = f.readAll();
        SCOPED_TRACE(file.fileName().toStdString());
        entry(reinterpret_cast<const uint8_t *>(input.constData()), size_t(input.size()));
        ++count;
    }
    return count;
}

} // namespace

TEST(FuzzRegression, RequestParser)
{
    EXPECT_GT(replay("request_parser", fuzzRequestParser), 0);
}
TEST(FuzzRegression, Range)
{
    EXPECT_GT(replay("range", fuzzRange), 0);
}
TEST(FuzzRegression, Authorization)
{
    EXPECT_GT(replay("authorization", fuzzAuthorization), 0);
}
TEST(FuzzRegression, Connection)
{
    EXPECT_GT(replay("connection", fuzzConnection), 0);
}
TEST(FuzzRegression, PlistXml)
{
    EXPECT_GT(replay("plist_xml", fuzzPlistXml), 0);
}
