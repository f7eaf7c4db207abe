#include "FrameworkTest.h"
#include "TempFolder.h"

#include "framework/errors/CError.h"
#include "framework/errors/CFileError.h"
#include "framework/log/CFileLog.h"
#include "framework/log/CLogManager.h"
#include "framework/log/Trace.h"

#include <functional>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace {

using namespace kore_test;
using namespace std::chrono;
using Journal = std::vector<std::string>;

// Appends "<name>:<level>:<module>:<text>:<code>:<line>" (or "<name>:write:...") to a journal.
struct CRecordingLog : CObject, ILog {
    CRecordingLog(std::string name, Journal& journal) : name(std::move(name)), journal(journal) {}
    void write(const CStringArg& m, const CStringArg& r) override
    {
        journal.push_back(name + ":write:" + m->toUTF8() + ":" + r->toUTF8());
    }
    void setLevel(int32_t) override {}
    int32_t getLevel() const override { return 0; }
    void log(int32_t level, const CStringArg& module, const CStringArg& text, int32_t code, int32_t line) override
    {
        journal.push_back(name + ":" + std::to_string(level) + ":" + module->toUTF8() + ":" + text->toUTF8() + ":" +
                          std::to_string(code) + ":" + std::to_string(line));
        if (onLog)
            onLog();
    }
    std::function<void()> onLog;
    std::string name;
    Journal& journal;
};

struct LogManagerTest : ::testing::Test {
    P<CLogManager> manager = make<CLogManager>();
    Journal journal;
    P<CRecordingLog> sink(const char* name) { return make<CRecordingLog>(name, journal); }
};

TEST_F(LogManagerTest, ThresholdLevelsOfTheShortcutsAndTheOrderOfSinks)
{
    auto s = sink("s");
    manager->addLog("", s.get());
    EXPECT_EQ(manager->getLevel(), 1);
    manager->log(0, "m", "dropped", 0, -1);
    manager->info("m", "i", 2);
    manager->setLevel(3);
    manager->warning("m", "dropped", 0);
    manager->error("m", "at the threshold", 4);
    manager->logError("m", CError("Title", "Something failed."));
    manager->log(7, "m", "beyond error", 0, 42);
    manager->write("m", "written whatever the level");
    manager->setLevel(0);
    manager->debug("m", "d", 1);
    manager->warning("m", "w", 3);
    EXPECT_EQ(journal, (Journal{"s:1:m:i:2:-1", "s:3:m:at the threshold:4:-1", "s:3:m:Something failed.:0:-1",
                                "s:7:m:beyond error:0:42", "s:write:m:written whatever the level", "s:0:m:d:1:-1",
                                "s:2:m:w:3:-1"}));

    // Module sinks come first, newest first; b, the newest, throws: the others still get every record.
    journal.clear();
    manager->removeLog("", s.get());
    auto a = sink("a"), b = sink("b"), g = sink("g"), h = sink("h");
    manager->setLevel(1);
    b->onLog = [] { throw std::runtime_error("disk full"); };
    manager->addLog("lang", a.get());
    manager->addLog("lang", b.get());
    manager->addLog("", g.get());
    manager->addLog("", h.get());
    EXPECT_NO_THROW(manager->info("lang", "Setting Language: de-DE", 0));
    manager->write("lang", "raw");
    manager->info("other", "x", 0);
    manager->info("LANG", "y", 0);
    EXPECT_EQ(journal, (Journal{"b:1:lang:Setting Language: de-DE:0:-1", "a:1:lang:Setting Language: de-DE:0:-1",
                                "h:1:lang:Setting Language: de-DE:0:-1", "g:1:lang:Setting Language: de-DE:0:-1",
                                "b:write:lang:raw", "a:write:lang:raw", "h:write:lang:raw", "g:write:lang:raw",
                                "h:1:other:x:0:-1", "g:1:other:x:0:-1", "h:1:LANG:y:0:-1", "g:1:LANG:y:0:-1"}));
}

TEST_F(LogManagerTest, RemovalUndoesTheMostRecentRegistrationAndDropsTheReference)
{
    auto s = sink("s");
    manager->addLog("m", s.get());
    manager->addLog("m", s.get());
    manager->addLog("", s.get());
    EXPECT_EQ(s->getRefCount(), 4);
    EXPECT_THROW(manager->addLog("", nullptr), CInvalidArgError);
    EXPECT_THROW(manager->addLog("", manager.get()), CInvalidArgError) << "the manager is no sink of its own";
    EXPECT_FALSE(manager->removeLog("other", s.get()));
    EXPECT_TRUE(manager->removeLog("m", s.get()));
    manager->info("m", "t", 0);
    EXPECT_EQ(journal.size(), 2u);
    EXPECT_TRUE(manager->removeLog("m", s.get()));
    EXPECT_FALSE(manager->removeLog("m", s.get()) || !manager->removeLog("", s.get()));
    EXPECT_EQ(s->getRefCount(), 1);

    manager->addLog("m", s.get());
    manager = nullptr;
    EXPECT_EQ(s->getRefCount(), 1) << "the manager releases its sinks when it dies";
}

TEST_F(LogManagerTest, SinksMayChangeTheRegistrationsWhileBeingCalled)
{
    auto a = sink("a"), b = sink("b"), c = sink("c");
    manager->addLog("m", c.get());
    manager->addLog("m", b.get());
    manager->addLog("m", a.get());
    // a removes itself and b (not yet called), adds a module sink and logs once more.
    bool reentered = false;
    a->onLog = [&, self = a.get()] {
        if (reentered)
            return;
        reentered = true;
        manager->removeLog("m", self);
        manager->removeLog("m", b.get());
        manager->addLog("new.module", b.get());
        manager->info("new.module", "nested", 0);
    };
    a = nullptr; // only the manager keeps it alive now
    manager->info("m", "first", 0);
    manager->info("m", "second", 0);
    EXPECT_EQ(journal,
              (Journal{"a:1:m:first:0:-1", "b:1:new.module:nested:0:-1", "c:1:m:first:0:-1", "c:1:m:second:0:-1"}));

    // Records from many threads all arrive.
    journal.clear();
    auto s = sink("s");
    manager->addLog("threads", s.get());
    std::vector<std::thread> threads(4);
    for (auto& t : threads)
        t = std::thread([&] {
            for (int i = 0; i < 500; ++i)
                manager->info("threads", "r", i);
        });
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(journal.size(), 2000u);
}

std::u16string traceLine(const CStringArg& file, int32_t line, const CStringArg& comment)
{
    char16_t buffer[kTraceBufferSize];
    const uint32_t length = formatTraceLine(buffer, file, line, comment);
    EXPECT_EQ(buffer[length], u'\0');
    return std::u16string(buffer, length);
}

TEST(LogSink, RecordLinesAndFileLogs)
{
    const system_clock::time_point when =
        sys_days{year{2025} / 1 / 31} + hours{14} + minutes{2} + seconds{3} + milliseconds{123};
    const auto u = [](const char* s) { return CString::fromUTF8(s); };
    EXPECT_EQ(CLogSink::formatRecord(when, 1, *u("qor_lang::manager"), *u("Setting Language: de-DE"), 0, -1),
              "2025-01-31T14:02:03.123Z INFO  [qor_lang::manager] Setting Language: de-DE\n");
    EXPECT_EQ(CLogSink::formatRecord(when, 3, *u(""), *u("Größe"), 5, 120),
              "2025-01-31T14:02:03.123Z ERROR Größe (code 5) (line 120)\n");
    EXPECT_EQ(CLogSink::formatRecord(when, -2, *u("m"), *u("t"), 0, 0),
              "2025-01-31T14:02:03.123Z L-2   [m] t (line 0)\n");
    EXPECT_EQ(CLogSink::formatWrite(when, *u("m"), *u("raw")), "2025-01-31T14:02:03.123Z [m] raw\n");

    // A file log appends, filters by its own level and names the file it cannot open.
    CTempFolder temp;
    const P<IString> path = CString::fromUTF8(temp.utf8("app ü.log"));
    {
        auto log = make<CFileLog>(path, false);
        log->setLevel(2);
        log->info("m", "below the sink's level", 0);
        log->warning("m", "kept", 0);
    }
    make<CFileLog>(path)->write("", "appended");
    // Each line without its time, which differs from run to run.
    Journal lines;
    std::istringstream content(temp.readFile("app ü.log"));
    for (std::string line; std::getline(content, line);)
        lines.push_back(line.substr(line.find(' ') + 1));
    EXPECT_EQ(lines, (Journal{"WARN  [m] kept", "appended"}));

    const std::string error =
        descriptionOf<CFileError>([&] { CFileLog missing(CString::fromUTF8(temp.utf8("no such dir/x.log"))); });
    EXPECT_NE(error.find("no such dir"), std::string::npos) << error;

    // Trace lines.
    EXPECT_EQ(traceLine(L"C:\\src\\manager.cpp", 120, L"Setting Language"),
              u"qor_trace: C:\\src\\manager.cpp (120) c=Setting Language\n");
    EXPECT_EQ(traceLine(L"manager.cpp", -7, L""), u"qor_trace: manager.cpp (-7)\n");

    // "qor_trace: f (1) c=" is 19 units; the comment fills the buffer to 1022 units and then
    // brings a character that needs two: it is cut whole, and so is the newline.
    const std::u16string filler(1022 - 19, u'x');
    const std::u16string cut = traceLine("f", 1, (filler + u"\U0001F600tail").c_str());
    EXPECT_EQ(cut.size(), 1022u);
    EXPECT_EQ(cut.substr(19), filler);
    EXPECT_EQ(traceLine("f", 1, std::u16string(2000, u'y').c_str()).size(), kTraceBufferSize - 1);
}

} // namespace
