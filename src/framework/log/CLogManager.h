#pragma once
// The process's dispatcher of log records (one per process, from the global object factory).
// It writes nothing itself: each record goes to the sinks registered for its module, newest
// first, then to the sinks registered for all modules, newest first. Records below the level
// threshold (1 at creation, so debug records are dropped) reach no sink; write() bypasses the
// threshold. A sink's own level is the sink's business.
//
// Every operation, the calls into the sinks included, runs under the manager's re-entrant mutex,
// so records from several threads never interleave inside a sink. A sink may log, add or remove
// sinks (itself included) from inside its own call. An exception thrown by a sink is caught:
// the other sinks still get the record, and the failure goes to the debugger trace.
//
// A host sends every record to standard error with
//     CLogManager::instance()->addLog("", make<CStdErrLog>().get());
// and one module's records to a file with
//     CLogManager::instance()->addLog("qor_lang::manager", make<CFileLog>(path).get());

#include "framework/containers/TSimpleHashTable.h"
#include "framework/log/ILog.h"
#include "framework/log/ILogManager.h"
#include "framework/objects/CObject.h"
#include "framework/objects/P.h"
#include "framework/sync/IMutex.h"
#include "framework/text/IString.h"

#include <cstdint>

namespace kore {

class CLogManager : public CObject, public ILog, public ILogManager {
public:
    // The sinks of one module, or of all modules: a singly linked list, newest in front.
    struct LogList {
        struct Node {
            P<ILog> sink;
            Node* next;
        };

        LogList() = default;
        LogList(const LogList&) = delete;
        LogList& operator=(const LogList&) = delete;
        ~LogList();

        void addFront(ILog* sink);
        bool remove(const ILog* sink);
        // Calls `call(ILog&)` for every sink, front to back. A sink removed meanwhile is not
        // called; its node is unlinked only when the last walk over the list has ended.
        template <class Call>
        void forEach(const Call& call);

        Node* head = nullptr;
        int32_t walks = 0;
        bool hasRemoved = false;

    private:
        void purge() noexcept;
    };

    // The process-wide manager, as ILog and ILogManager both.
    static P<CLogManager>& instance();

    CLogManager();
    ~CLogManager() override;
    CLogManager(const CLogManager&) = delete;
    CLogManager& operator=(const CLogManager&) = delete;

    void write(const CStringArg& module, const CStringArg& record) override;
    void setLevel(int32_t level) override;
    int32_t getLevel() const override;
    void log(int32_t level, const CStringArg& module, const CStringArg& text, int32_t code, int32_t line) override;

    // Throws CInvalidArgError for a null sink or the manager itself.
    void addLog(const CStringArg& module, ILog* sink) override;
    bool removeLog(const CStringArg& module, ILog* sink) override;

private:
    template <class Call>
    void dispatch(const IString& module, const Call& call);

    TSimpleHashTable<P<IString>, LogList*> m_modules;
    int32_t m_level = 1;
    LogList m_global;
    P<IMutex> m_mutex;
};

} // namespace kore
