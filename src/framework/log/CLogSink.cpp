#include "framework/log/CLogSink.h"

#include "framework/text/IString.h"

#include <algorithm>
#include <cstdio>
#include <string>

namespace kore {

namespace {

void appendTime(std::string& out, std::chrono::system_clock::time_point time)
{
    using namespace std::chrono;
    const auto day = floor<days>(time);
    const year_month_day date{day};
    const hh_mm_ss clock{floor<milliseconds>(time - day)};
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()), static_cast<int>(clock.subseconds().count()));
    out += text;
}

void appendModule(std::string& out, const IString& module)
{
    if (module.getLength() == 0)
        return;
    out += '[';
    out += module.toUTF8();
    out += "] ";
}

} // namespace

std::string CLogSink::levelName(int32_t level)
{
    switch (level) {
    case kDebug: return "DEBUG";
    case kInfo: return "INFO";
    case kWarning: return "WARN";
    case kError: return "ERROR";
    default: {
        // Appending rather than "L" + ...: gcc 12 at -O3 warns falsely about the latter.
        std::string name = "L";
        name += std::to_string(level);
        return name;
    }
    }
}

std::string CLogSink::formatRecord(std::chrono::system_clock::time_point time, int32_t level, const IString& module,
                                   const IString& text, int32_t code, int32_t line)
{
    std::string out;
    out.reserve(64 + text.getByteLength());
    appendTime(out, time);
    out += ' ';
    std::string name = levelName(level);
    name.resize(std::max<size_t>(name.size(), 5), ' ');
    out += name;
    out += ' ';
    appendModule(out, module);
    out += text.toUTF8();
    if (code != 0)
        out += " (code " + std::to_string(code) + ")";
    if (line >= 0)
        out += " (line " + std::to_string(line) + ")";
    out += '\n';
    return out;
}

std::string CLogSink::formatWrite(std::chrono::system_clock::time_point time, const IString& module,
                                  const IString& record)
{
    std::string out;
    appendTime(out, time);
    out += ' ';
    appendModule(out, module);
    out += record.toUTF8();
    out += '\n';
    return out;
}

void CLogSink::write(const CStringArg& module, const CStringArg& record)
{
    writeLine(formatWrite(std::chrono::system_clock::now(), module.get(), record.get()));
}

void CLogSink::log(int32_t level, const CStringArg& module, const CStringArg& text, int32_t code, int32_t line)
{
    if (level < getLevel())
        return;
    writeLine(formatRecord(std::chrono::system_clock::now(), level, module.get(), text.get(), code, line));
}

} // namespace kore
