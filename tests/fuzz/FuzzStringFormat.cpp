// A format text from the input, filled with arguments from the input: mostly of the kind the
// current field asks for, sometimes of another kind, so that the checks of the formatter are
// reached as well as its output paths. Widths and precisions that would ask for megabytes of
// padding are left out: they are the caller's wish, not a fault.
#include "FuzzInput.h"
#include "FuzzTargets.h"

#include "framework/text/CString.h"
#include "framework/text/CStringFormat.h"

#include <bit>
#include <cstdint>
#include <exception>

namespace qor_fuzz {

namespace {

constexpr uint64_t kLargestCount = 4096;

// True when a run of digits in the text means a count between kLargestCount and the formatter's
// limit (larger ones are refused by the formatter, which is worth fuzzing).
bool asksForHugePadding(const std::u16string& format)
{
    uint64_t value = 0;
    for (size_t i = 0; i <= format.size(); ++i) {
        if (i < format.size() && format[i] >= u'0' && format[i] <= u'9') {
            value = std::min<uint64_t>(value * 10 + (format[i] - u'0'), uint64_t(1) << 40);
            continue;
        }
        if (value > kLargestCount && value <= static_cast<uint64_t>(kore::CStringFormat::kMaxCount))
            return true;
        value = 0;
    }
    return false;
}

void pushOne(kore::CStringFormat& format, CFuzzInput& input, bool hasStar)
{
    const uint8_t choice = input.byte();
    uint32_t kind = format.getFieldKind();
    if (choice >= 0xE0 || kind == kore::CStringFormat::kNone)
        kind = choice % 5;
    switch (kind) {
    case kore::CStringFormat::kInteger: {
        int64_t value = static_cast<int64_t>(input.u64());
        // A "*" takes its count from an integer argument: counts inside the formatter's range are
        // kept small, larger ones stay (the formatter refuses them).
        if (choice & 2)
            value %= 8192;
        else if (hasStar && value >= INT32_MIN && value <= INT32_MAX)
            value %= 4096;
        if (choice & 1)
            format.pushInt(value);
        else
            format.pushUInt(value < 0 && hasStar ? static_cast<uint64_t>(-(value + 1)) : static_cast<uint64_t>(value));
        break;
    }
    case kore::CStringFormat::kFloat: format.pushDouble(std::bit_cast<double>(input.u64())); break;
    case kore::CStringFormat::kChar: {
        // A character may fill a "*" too, as its code point.
        uint32_t codePoint = choice & 1 ? input.u32() : input.u16();
        if (hasStar && codePoint > 0x10FFFF && codePoint <= INT32_MAX)
            codePoint %= 0x110000;
        format.pushChar(codePoint);
        break;
    }
    default: {
        const std::u16string text = input.units(input.byte() % 24);
        format.pushString(kore::CStringArg(text.data(), static_cast<uint32_t>(text.size())));
        break;
    }
    }
}

} // namespace

void fuzzStringFormat(const uint8_t* data, size_t size)
{
    CFuzzInput input(data, size);
    const std::string formatBytes = input.piece();
    const std::u16string formatText(formatBytes.begin(), formatBytes.end());
    if (asksForHugePadding(formatText))
        return;
    const bool hasStar = formatText.find(u'*') != std::u16string::npos;
    tolerate([&] {
        kore::CStringFormat format(kore::CStringArg(formatText.data(), static_cast<uint32_t>(formatText.size())));
        for (int i = 0; i < 64 && !input.empty(); ++i)
            tolerate([&] { pushOne(format, input, hasStar); });
        if (format.isComplete())
            format.getResult()->hash();
        else
            format.getResult();
    });
}

} // namespace qor_fuzz
