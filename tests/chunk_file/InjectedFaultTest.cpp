// The container's write paths (an edit of an existing file, a new file written) over a file whose
// n-th operation fails, for every n: each failure reaches the caller as a framework error, nothing
// leaks (LeakSanitizer in the debug build), the damaged file can still be walked, and the same
// change on an intact file afterwards succeeds.
#include "../framework/FailingFiles.h"
#include "ChunkTestSupport.h"
#include "framework/errors/CException.h"

#include <cstdio>

using namespace chf_test;

namespace {

// Grows a nested chunk (insertion, then the sizes written back) and inserts space inside another
// across the disk stream's buffer.
void edit(IStream* stream)
{
    Ref<CChunkFile> file(CChunkFile::open(stream));
    ASSERT_TRUE(file->findFirstChunk(makeChunkId("STMP")));
    Ref<CChunkIterator> stmp(file->openChunkIterator());
    ASSERT_TRUE(stmp->nextChunk());
    Ref<CChunkStream> data = openStream(stmp.get());
    data->setPosition(data->getLength());
    data->write(" world", 6);
    data.reset(); // a failed size write-back reaches the caller only this way
    ASSERT_TRUE(stmp->nextChunk()); // the next header is read from the remembered size
    Ref<CChunkStream> big = openStream(stmp.get());
    big->insertSpace(70000);
    big.reset();
    stmp.reset();
    file.reset();
}

// Visits every chunk header, nested sequences included, without reading chunk data.
void walk(CChunkIterator* sequence)
{
    while (sequence->nextChunk())
        if (isSequence(sequence->getChunkId()))
            walk(Ref<CChunkIterator>(sequence->openChunkIterator()).get());
}

TEST(InjectedFaults, EveryFailingFileOperationOfAChangeIsReportedAndTheNextChangeWorks)
{
    const struct {
        const char* name;
        Bytes original;
        void (*change)(IStream*);
    } rows[] = {{"edit",
                 container(chunk("vers", text("1.0")) +
                           chunk("STMP", chunk("data", text("hello")) + chunk("big_", kBig) +
                                             chunk("sub_", chunk("leaf", text("L")))) +
                           chunk("cmnt", text("hi"))),
                 &edit},
                {"build", {}, &buildExample}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Bytes expected;
        int64_t operations = 0;
        {
            CDiskFile disk(row.original);
            kore_test::CFailingFiles counting(0);
            row.change(disk.open(IStreamManager::kReadWrite).get());
            operations = counting.operations();
            expected = disk.bytes();
        }
        ASSERT_GT(operations, 5);
        std::printf("%s: failing each of %lld file operations in turn\n", row.name, static_cast<long long>(operations));
        ASSERT_NE(expected, row.original);

        for (int64_t n = 1; n <= operations; ++n) {
            SCOPED_TRACE("failing operation " + std::to_string(n));
            CDiskFile disk(row.original);
            bool reported = false;
            {
                kore_test::CFailingFiles files(n);
                try {
                    Ref<CKoreFileStream> stream = disk.open(IStreamManager::kReadWrite);
                    row.change(stream.get());
                    stream.reset(); // flushes, and reports a failed flush
                } catch (const kore::CException&) {
                    reported = true;
                } catch (const std::exception& e) {
                    ADD_FAILURE() << "not a framework error: " << typeid(e).name();
                }
                EXPECT_TRUE(files.failed());
                EXPECT_TRUE(reported) << "the failing " << files.failedKind() << " went unreported";
            }
            // Whatever the failure left behind can be walked; nothing more is promised of it.
            try {
                walk(Ref<CChunkFile>(CChunkFile::open(disk.open(IStreamManager::kRead).get())).get());
            } catch (const std::exception&) {
            }
            CDiskFile again(row.original);
            row.change(again.open(IStreamManager::kReadWrite).get());
            EXPECT_EQ(again.bytes(), expected);
        }
    }
}

} // namespace
