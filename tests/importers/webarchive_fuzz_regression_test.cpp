// Replays the kept inputs of the web archive fuzz target, so an input that
// once broke the reader stays a test: put it in the target's corpus folder.
// The target stops the process on a broken invariant.
#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#define LLVMFuzzerTestOneInput fuzzWebArchive
#include "server/fuzz/fuzz_webarchive.cc"
#undef LLVMFuzzerTestOneInput

TEST(FuzzRegression, WebArchive)
{
    const QDir corpus(QStringLiteral(TAVELLE_FUZZ_CORPUS "/webarchive"));
    int count = 0;
    for (const QFileInfo &file : corpus.entryInfoList(QDir::Files)) {
        QFile f(file.absoluteFilePath());
        ASSERT_TRUE(f.open(QIODevice::ReadOnly));
        const QByteArray input = f.readAll();
        SCOPED_TRACE(file.fileName().toStdString());
        fuzzWebArchive(reinterpret_cast<const uint8_t *>(input.constData()), size_t(input.size()));
        ++count;
    }
    EXPECT_GT(count, 0);
}
