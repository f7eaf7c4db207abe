// Bytes read as text in each of the five encodings: the encoding's own walks forwards and
// backwards, then strings built on the bytes, converted, compared and searched. Besides "no
// crash", the walks must agree with the counts and with each other, and a string must find,
// start with and end with its own pieces.
#include "FuzzInput.h"
#include "FuzzTargets.h"

#include "framework/text/CCPCharEncoding.h"
#include "framework/text/CLatin1CharEncoding.h"
#include "framework/text/CString.h"
#include "framework/text/CUTF16CharEncoding.h"
#include "framework/text/CUTF32CharEncoding.h"
#include "framework/text/CUTF8CharEncoding.h"

#include <algorithm>
#include <exception>
#include <vector>

namespace qor_fuzz {

namespace {

using kore::ICharEncoding;
using kore::IString;
using kore::P;

ICharEncoding& encoding(uint8_t selector)
{
    ICharEncoding* const all[] = {kore::CUTF8CharEncoding::instance().get(), kore::CUTF16CharEncoding::instance().get(),
                                  kore::CUTF32CharEncoding::instance().get(),
                                  kore::CLatin1CharEncoding::instance().get(), kore::CCPCharEncoding::instance().get()};
    return *all[selector % 5];
}

void walkEncoding(const ICharEncoding& enc, const std::string& bytes)
{
    const auto* buf = reinterpret_cast<const uint8_t*>(bytes.data());
    const auto len = static_cast<uint32_t>(bytes.size());
    std::vector<uint32_t> chars;
    for (uint32_t off = 0, ch = 0, next = 0; off < len; off = next) {
        next = enc.decodeChar(ch, buf, len, off);
        if (next == ICharEncoding::kFail)
            break;
        check(next > off && next <= len);
        chars.push_back(ch);
    }
    check(enc.countChars(buf, len, 0) == chars.size());

    // The batch decoder agrees with one character at a time.
    std::vector<uint32_t> batch(chars.size() + 1);
    std::vector<uint32_t> offsets(chars.size() + 1);
    uint32_t count = 0;
    enc.decodeChars(batch.data(), static_cast<uint32_t>(batch.size()), count, buf, len, 0, offsets.data());
    check(count == chars.size());
    check(std::equal(chars.begin(), chars.end(), batch.begin()));

    for (uint32_t off = 0; off <= len; ++off) {
        uint32_t ch = 0;
        const uint32_t size = enc.getCharSizeAt(buf, len, off);
        const uint32_t strict = enc.decodeCharStrict(ch, buf, len, off);
        check(size == ICharEncoding::kFail ? strict == ICharEncoding::kFail : strict == off + size);
        const uint32_t start = enc.findCharStart(buf, len, off);
        check(start == ICharEncoding::kFail || (start >= off && start < len));
        if (strict != ICharEncoding::kFail && enc.getId() != kore::CCPCharEncoding::kId) {
            // What decodes encodes again and reads back the same (not always in the same bytes:
            // UTF-8 accepts some overlong forms). The code page decodes through the platform and
            // encodes through the C runtime's locale, which need not agree.
            uint8_t again[8] = {};
            const uint32_t end = enc.encodeChar(ch, again, sizeof again, 0);
            check(end > 0 && end == enc.getEncodedSize(ch));
            uint32_t back = 0;
            check(enc.decodeCharStrict(back, again, end, 0) == end && back == ch);
        }
    }
    const uint32_t offset = enc.getCharOffset(buf, len, static_cast<uint32_t>(chars.size() / 2));
    check(offset == ICharEncoding::kFail || offset <= len);

    if (!enc.supportsReverse())
        return;
    std::vector<uint32_t> backwards;
    for (uint32_t off = len, ch = 0, previous = 0; off > 0; off = previous) {
        previous = enc.decodePrevChar(ch, buf, len, off);
        if (previous == ICharEncoding::kFail)
            break;
        check(previous < off);
        backwards.push_back(ch);
    }
    uint32_t backCount = 0;
    std::vector<uint32_t> backBatch(backwards.size() + 1);
    enc.decodePrevChars(backBatch.data(), static_cast<uint32_t>(backBatch.size()), backCount, buf, len, len,
                        offsets.data());
    check(backCount == backwards.size());
}

void searchPieces(const IString& s, uint32_t start, uint32_t count, bool backwardsToo)
{
    const uint32_t length = s.getLength();
    const P<IString> piece = s.slice(start, count);
    if (piece->getLength() == 0 || start >= length)
        return;
    for (bool ignoreCase : {false, true}) {
        const uint32_t first = s.findString(*piece, 0, ignoreCase);
        check(first != IString::kNotFound && first <= start);
        check(s.countString(*piece, ignoreCase) >= 1);
        if (backwardsToo) {
            const uint32_t last = s.findLastString(*piece, IString::kUnknown, ignoreCase);
            check(last != IString::kNotFound && last >= start);
        }
    }
    check(s.startsWithString(*s.slice(0, count), false));
    check(s.endsWithString(*s.slice(length - std::min(count, length)), false));
}

} // namespace

void fuzzEncodings(const uint8_t* data, size_t size)
{
    CFuzzInput input(data, size);
    const uint8_t selectors = input.byte();
    const uint32_t start = input.byte();
    const uint32_t count = input.byte();
    ICharEncoding& first = encoding(selectors);
    ICharEncoding& second = encoding(selectors >> 3);
    const std::string left = input.piece();
    const std::string right = input.rest();

    walkEncoding(first, left);
    walkEncoding(second, right);
    // Terminated length: up to the first NUL code unit, which may take bytes of the padding
    // when the text ends inside a unit (seven zeros always hold one aligned four-byte unit).
    const std::string terminated = right + std::string(7, '\0');
    check(second.getTerminatedLength(reinterpret_cast<const uint8_t*>(terminated.data())) < right.size() + 4);

    tolerate([&] {
        const auto text = [](const std::string& bytes, ICharEncoding& enc) {
            return kore::make<kore::CString>(bytes.data(), static_cast<uint32_t>(bytes.size()), IString::kUnknown,
                                             false, enc, kore::CString::kCopy);
        };
        const P<IString> a = text(left, first);
        const P<IString> b = text(right, second);

        check(a->compareString(*a, false, IString::kUnknown, false) == 0);
        check(a->compareString(*a, true, IString::kUnknown, false) == 0);
        const auto sign = [](int32_t value) { return (value > 0) - (value < 0); };
        for (bool ignoreCase : {false, true})
            check(sign(a->compareString(*b, ignoreCase, IString::kUnknown, false)) ==
                  -sign(b->compareString(*a, ignoreCase, IString::kUnknown, false)));
        a->compareString(*b, true, count, true);

        // Conversion keeps every character the target can hold; UTF-32 holds them all.
        const P<IString> wide = a->convertTo(*kore::CUTF32CharEncoding::instance().get());
        check(wide->getLength() != a->getLength() ||
              (wide->compareString(*a, false, IString::kUnknown, false) == 0 && wide->hash() == a->hash()));
        const P<IString> converted = a->convertTo(second);
        check(converted->getLength() <= a->getLength());
        converted->concatString(*b)->hash();

        searchPieces(*a, start, count, first.supportsReverse());
        b->findString(*a, start, true);
        if (second.supportsReverse())
            b->findLastString(*a, start, false);
        a->replaceAllString(*a->slice(start, count), *b);
        a->getCharAt(start);
    });
}

} // namespace qor_fuzz
