#include "FrameworkTest.h"

#include "framework/CEndOfStreamError.h"
#include "framework/CMemoryStream.h"
#include "framework/CStreamClosedError.h"

namespace kore_test {

std::string content(CMemoryStream& stream)
{
    return std::string(reinterpret_cast<const char*>(stream.getData()), static_cast<size_t>(stream.getLength()));
}

TEST(MemoryStream, WritesGrowTheStreamAndReadBack)
{
    P<CMemoryStream> stream = make<CMemoryStream>();
    std::string expected;
    for (int i = 0; i < 5000; ++i) {
        const std::string piece = std::to_string(i) + ",";
        ASSERT_EQ(stream->write(piece.data(), static_cast<uint32_t>(piece.size())), piece.size());
        expected += piece;
    }
    EXPECT_EQ(content(*stream), expected);
    EXPECT_EQ(stream->getPosition(), stream->getLength());

    stream->seek(5);
    char buffer[5] = {};
    EXPECT_EQ(stream->read(buffer, 5), 5u);
    EXPECT_EQ(std::string(buffer, 5), expected.substr(5, 5));
    EXPECT_EQ(stream->getPosition(), 10);

    // Overwriting in the middle changes nothing else.
    stream->seek(2);
    stream->write("XY", 2);
    EXPECT_EQ(content(*stream), expected.replace(2, 2, "XY"));

    // Writing behind the end fills the gap with zeros.
    P<CMemoryStream> gap = make<CMemoryStream>("abc", 3);
    EXPECT_EQ(gap->getPosition(), 0);
    gap->seek(6);
    EXPECT_EQ(gap->getLength(), 3);
    gap->write("z", 1);
    EXPECT_EQ(content(*gap), std::string("abc\0\0\0z", 7));
}

TEST(MemoryStream, AReadThatCannotBeSatisfiedThrowsAndConsumesNothing)
{
    P<CMemoryStream> stream = make<CMemoryStream>("0123456789", 10);
    stream->seek(6);
    char buffer[10] = {};
    expectThrown<CEndOfStreamError>([&] { stream->read(buffer, 10); }, [](const CEndOfStreamError& e) {
        EXPECT_EQ(e.getDescription()->toUTF8(), "Unexpected end of data stream.");
        EXPECT_EQ(e.getURI(), nullptr);
    });
    EXPECT_EQ(stream->getPosition(), 6);
    // readSome delivers what there is, then 0 at the end and past it.
    EXPECT_EQ(stream->readSome(buffer, 10), 4u);
    EXPECT_EQ(std::string(buffer, 4), "6789");
    EXPECT_EQ(stream->readSome(buffer, 10), 0u);
    stream->seek(100);
    EXPECT_EQ(stream->readSome(buffer, 1), 0u);
    EXPECT_THROW(stream->read(buffer, 1), CEndOfStreamError);
    EXPECT_EQ(stream->read(nullptr, 0), 0u) << "reading nothing always succeeds, even with no buffer";
}

TEST(MemoryStream, BadArgumentsAndClosedStreams)
{
    P<CMemoryStream> stream = make<CMemoryStream>("abc", 3);
    EXPECT_THROW(stream->seek(-1), CInvalidArgError);
    EXPECT_THROW(stream->read(nullptr, 1), CInvalidArgError);
    EXPECT_THROW(stream->write(nullptr, 1), CInvalidArgError);
    EXPECT_THROW(make<CMemoryStream>(nullptr, 3), CInvalidArgError);
    stream->close();
    char c = 0;
    EXPECT_EQ(descriptionOf<CStreamClosedError>([&] { stream->read(&c, 1); }), "The stream has been closed.");
}

TEST(MemoryStream, AnswersToEveryStreamInterface)
{
    P<IStream> stream = make<CMemoryStream>();
    EXPECT_NE(tryCast<IInStream>(stream), nullptr);
    EXPECT_NE(tryCast<IOutStream>(stream), nullptr);
    EXPECT_NE(tryCast<IIOStream>(stream), nullptr);
    EXPECT_NE(tryCast<ISeekableInStream>(stream), nullptr);
    EXPECT_NE(tryCast<ISeekableOutStream>(stream), nullptr);
    ASSERT_NE(tryCast<ISeekableIOStream>(stream), nullptr);
    EXPECT_EQ(tryCast<ISeekableIOStream>(stream)->getURI(), nullptr);
    // One position, whichever interface it is reached through.
    tryCast<ISeekableInStream>(stream)->seek(3);
    EXPECT_EQ(tryCast<ISeekableOutStream>(stream)->getPosition(), 3);
}

} // namespace kore_test
