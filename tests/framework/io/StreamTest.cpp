#include "FrameworkTest.h"
#include "TempFolder.h"

#include "framework/errors/CEndOfStreamError.h"
#include "framework/errors/CFileAccessDeniedError.h"
#include "framework/errors/CInvalidObjectStateError.h"
#include "framework/errors/CReadOnlyError.h"
#include "framework/errors/CStreamClosedError.h"
#include "framework/io/CDiskStream.h"
#include "framework/io/CMemoryStream.h"
#include "framework/io/CStreamManager.h"

#include <cstring>
#include <fstream>

namespace kore_test {

namespace {

const auto open = [](const P<IURI>& uri, uint32_t mode) { return IStreamManager::instance()->openURI(*uri, mode); };

// The stream interfaces that `stream` can be cast to.
std::string interfaces(const P<IStream>& stream)
{
    return std::string(tryCast<IInStream>(stream) ? "in " : "") +
           (tryCast<ISeekableInStream>(stream) ? "seekIn " : "") + (tryCast<IOutStream>(stream) ? "out " : "") +
           (tryCast<ISeekableOutStream>(stream) ? "seekOut " : "") + (tryCast<IIOStream>(stream) ? "io " : "") +
           (tryCast<ISeekableIOStream>(stream) ? "seekIO" : "");
}

} // namespace

// Reading, writing, seeking and growing a memory stream, also behind the end, are held to those
// of a disk stream by the random comparison below; the rest is checked here.
TEST(MemoryStream, ErrorsInterfacesAndOnePosition)
{
    P<CMemoryStream> stream = make<CMemoryStream>("0123456789", 10);
    EXPECT_EQ(interfaces(stream), "in seekIn out seekOut io seekIO");
    EXPECT_EQ(stream->getURI(), nullptr);
    // One position, whichever interface it is reached through.
    tryCast<ISeekableInStream>(stream)->seek(6);
    EXPECT_EQ(tryCast<ISeekableOutStream>(stream)->getPosition(), 6);
    char buffer[10] = {};
    EXPECT_EQ(descriptionOf<CEndOfStreamError>([&] { stream->read(buffer, 10); }), "Unexpected end of data stream.")
        << "the form without a URI";
    EXPECT_EQ(stream->read(nullptr, 0), 0u) << "reading nothing always succeeds, even with no buffer";
    const std::function<void()> bad[] = {[&] { stream->seek(-1); }, [&] { stream->read(nullptr, 1); },
                                         [&] { stream->write(nullptr, 1); }, [] { make<CMemoryStream>(nullptr, 3); }};
    for (const auto& call : bad)
        EXPECT_THROW(call(), CInvalidArgError);
    stream->close();
    EXPECT_THROW(stream->read(buffer, 1), CStreamClosedError);
}

class DiskStream : public ::testing::Test {
protected:
    CTempFolder temp;
    const char* const kFolder = "Sprachdateien äöü/日本";

    void SetUp() override { temp.makeFolder(kFolder); }
    P<IURI> fileURI(const char* utf8Name) const { return temp.uri(kFolder)->resolve(CString::fromUTF8(utf8Name)); }
};

// Small reads and writes are buffered; a file is named by its URI; a reader sees what another
// handle appends after it was opened.
TEST_F(DiskStream, WrittenFileHasTheNameOfItsURIAndReadsBackBuffered)
{
    std::string content(10000, '\0');
    for (size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>('a' + i % 26);
    const std::string name = std::string(kFolder) + "/A-de-DE 100% #1.qorlang";
    const P<IURI> uri = fileURI("A-de-DE 100% #1.qorlang");
    P<CDiskStream> out = make<CDiskStream>(*uri, CDiskStream::kWrite);
    for (char c : content)
        out->write(&c, 1);
    EXPECT_EQ(out->getSystemWriteCount(), 0u) << "small writes are buffered";
    EXPECT_EQ(out->getLength(), 10000);
    out = nullptr; // destruction flushes
    EXPECT_EQ(temp.readFile(name), content);

    P<CDiskStream> in = make<CDiskStream>(*uri, CDiskStream::kRead);
    EXPECT_EQ(in->getURI(), uri);
    std::string seen(content.size(), '\0');
    for (char& c : seen)
        ASSERT_EQ(in->read(&c, 1), 1u);
    EXPECT_EQ(seen, content);
    EXPECT_LE(in->getSystemReadCount(), 2u);
    std::ofstream(temp.path(name), std::ios::binary | std::ios::app) << "grown";
    char grown[6] = {};
    in->read(grown, 5);
    EXPECT_STREQ(grown, "grown");
    P<IStream> byPath = IStreamManager::instance()->openPath(CString::fromUTF8(temp.utf8(name)), IStreamManager::kRead);
    EXPECT_EQ(byPath->getLength(), 10005);
}

TEST_F(DiskStream, ErrorsNameTheirURIModesDecideContentAndInterfacesAndClosingEndsEverything)
{
    temp.writeFile("short.bin", "0123456789");
    const P<IURI> shortFile = temp.uri()->resolve("short.bin");
    P<IStream> stream = open(shortFile, IStreamManager::kRead);
    char buffer[11] = {};
    const auto readEleven = [&] { cast<IInStream>(stream)->read(buffer, 11); };
    expectNaming<CEndOfStreamError>(readEleven, shortFile.get());
    EXPECT_EQ(cast<CDiskStream>(stream)->getSystemReadCount(), 0u) << "what the known length cannot give is not read";
    cast<ISeekableInStream>(stream)->seek(1000);
    EXPECT_THROW(readEleven(), CEndOfStreamError) << "behind the end";

    const P<IURI> missing = fileURI("missing.qorlang");
    expectNaming<CFileNotFoundError>([&] { open(missing, IStreamManager::kRead); }, missing.get());
    EXPECT_THROW(open(temp.uri("no such folder")->resolve("x"), IStreamManager::kWrite), CFileNotFoundError);
    EXPECT_THROW(IStreamManager::instance()->openPath(CString::fromUTF8(temp.utf8("missing")), IStreamManager::kRead),
                 CFileNotFoundError);
    // A folder is not a stream, on every platform.
    const P<IURI> folder = temp.uri(kFolder);
    for (uint32_t mode : {IStreamManager::kRead, IStreamManager::kWrite, IStreamManager::kReadWrite})
        expectNaming<CFileAccessDeniedError>([&] { open(folder, mode); }, folder.get());

    EXPECT_THROW(open(CURI::fromURIText("http://example.com/x"), IStreamManager::kRead), CURITypeNotSupportedError);
    for (uint32_t mode : {0, 4})
        EXPECT_THROW(open(fileURI("x"), mode), CInvalidArgError);
    EXPECT_THROW(IStreamManager::instance()->openPath("relative/x", IStreamManager::kRead), CURIFormatError);
    temp.writeFile("data.bin", "old content");
    const P<IURI> uri = temp.uri()->resolve("data.bin");
    EXPECT_EQ(interfaces(open(uri, IStreamManager::kRead)), "in seekIn ");
    EXPECT_THROW(cast<CDiskStream>(open(uri, IStreamManager::kRead))->write("x", 1), CReadOnlyError);

    P<IStream> both = open(uri, IStreamManager::kReadWrite);
    EXPECT_EQ(interfaces(both), "in seekIn out seekOut io seekIO");
    ISeekableIOStream* io = cast<ISeekableIOStream>(both);
    io->seek(4);
    io->write("CONTENT!", 8);
    both->close();
    both->close();
    EXPECT_EQ(temp.readFile("data.bin"), "old CONTENT!") << "read-write keeps the content; closing writes the rest";
    char c = 0;
    const std::function<void()> afterClose[] = {[&] { io->read(&c, 1); }, [&] { io->write(&c, 1); },
                                                [&] { io->seek(0); }, [&] { io->flush(); }};
    for (const auto& call : afterClose)
        EXPECT_THROW(call(), CStreamClosedError);

    P<IStream> writer = open(uri, IStreamManager::kWrite);
    EXPECT_EQ(interfaces(writer) + std::to_string(writer->getLength()), "out seekOut 0");
    EXPECT_THROW(cast<CDiskStream>(writer)->read(&c, 1), CInvalidObjectStateError);
    EXPECT_EQ(temp.readFile("data.bin"), "");
    EXPECT_EQ(open(temp.uri()->resolve("new.bin"), IStreamManager::kReadWrite)->getLength(), 0)
        << "read-write creates a missing file";
}

// A random series of reads, writes and seeks of every size, small to larger than the buffer,
// must leave a disk stream exactly like a memory stream given the same series. Reads that
// cannot be satisfied must fail alike and move neither stream.
TEST_F(DiskStream, BehavesLikeAMemoryStreamUnderRandomUse)
{
    std::mt19937 random(20240611);
    P<CDiskStream> disk = make<CDiskStream>(*temp.uri()->resolve("random.bin"), CDiskStream::kReadWrite);
    P<CMemoryStream> memory = make<CMemoryStream>();
    std::vector<char> data(200000), fromDisk(data.size()), fromMemory(data.size());
    const uint32_t limits[] = {8, 2000, CDiskStream::kBufferSize + 100, static_cast<uint32_t>(data.size())};
    for (int step = 0; step < 2000; ++step) {
        SCOPED_TRACE(step);
        const uint32_t limit = limits[random() % 4];
        const uint32_t n = random() % limit, op = random() % 5;
        const uint32_t length = static_cast<uint32_t>(memory->getLength());
        if (op < 2) {
            for (uint32_t i = 0; i < n; ++i)
                data[i] = static_cast<char>(random());
            ASSERT_EQ(disk->write(data.data(), n), memory->write(data.data(), n));
        } else if (op == 2) {
            const uint32_t got = disk->readSome(fromDisk.data(), n);
            ASSERT_EQ(got, memory->readSome(fromMemory.data(), n));
            ASSERT_EQ(0, std::memcmp(fromDisk.data(), fromMemory.data(), got));
        } else if (op == 3 && memory->getPosition() + n <= length) {
            disk->read(fromDisk.data(), n);
            memory->read(fromMemory.data(), n);
            ASSERT_EQ(0, std::memcmp(fromDisk.data(), fromMemory.data(), n));
        } else if (op == 3) {
            ASSERT_THROW(disk->read(fromDisk.data(), n), CEndOfStreamError);
            ASSERT_THROW(memory->read(fromMemory.data(), n), CEndOfStreamError);
        } else {
            // One seek in four lands behind the end, where reads find nothing and change nothing.
            const int64_t to = random() % 4 == 0 ? length + 1 + random() % 1000 : random() % (length + 1);
            disk->seek(to);
            memory->seek(to);
        }
        ASSERT_EQ(disk->getPosition(), memory->getPosition());
        ASSERT_EQ(disk->getLength(), memory->getLength());
    }
    disk->close();
    EXPECT_EQ(temp.readFile("random.bin"),
              std::string(reinterpret_cast<const char*>(memory->getData()), static_cast<size_t>(memory->getLength())));
}

} // namespace kore_test
