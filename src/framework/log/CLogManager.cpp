#include "framework/log/CLogManager.h"

#include "framework/errors/CInvalidArgError.h"
#include "framework/log/Trace.h"
#include "framework/objects/CGlobalObjFactory.h"
#include "framework/sync/IMutexFactory.h"
#include "framework/values/CValueList.h"

#include <exception>
#include <memory>
#include <string>

namespace kore {

namespace {

P<CLogManager> create()
{
    return make<CLogManager>();
}

// A failing sink must not take the caller or the other sinks down with it.
template <class Call>
void callSink(ILog& sink, const Call& call) noexcept
{
    try {
        call(sink);
    } catch (const CException& e) {
        debugTrace(__FILE__, __LINE__, *keepText("log sink failed: ")->concat(e.getDescription()));
    } catch (const std::exception& e) {
        debugTrace(__FILE__, __LINE__, ("log sink failed: " + std::string(e.what())).c_str());
    } catch (...) {
        debugTrace(__FILE__, __LINE__, "log sink failed");
    }
}

} // namespace

// --- LogList

CLogManager::LogList::~LogList()
{
    Node* node = head;
    head = nullptr;
    while (node) {
        Node* next = node->next;
        delete node;
        node = next;
    }
}

void CLogManager::LogList::addFront(ILog* sink)
{
    head = new Node{P<ILog>(sink), head};
}

bool CLogManager::LogList::remove(const ILog* sink)
{
    for (Node** link = &head; *link; link = &(*link)->next) {
        Node* node = *link;
        if (node->sink.get() != sink)
            continue;
        if (walks > 0) {
            // A walk may stand on this node: empty it now, unlink it when the walks are over.
            node->sink = nullptr;
            hasRemoved = true;
        } else {
            *link = node->next;
            delete node;
        }
        return true;
    }
    return false;
}

void CLogManager::LogList::purge() noexcept
{
    hasRemoved = false;
    for (Node** link = &head; *link;) {
        Node* node = *link;
        if (node->sink) {
            link = &node->next;
        } else {
            *link = node->next;
            delete node;
        }
    }
}

template <class Call>
void CLogManager::LogList::forEach(const Call& call)
{
    ++walks;
    for (Node* node = head; node; node = node->next) {
        // The sink stays alive for its call even if it removes itself.
        if (P<ILog> sink = node->sink)
            callSink(*sink, call);
    }
    if (--walks == 0 && hasRemoved)
        purge();
}

// --- CLogManager

P<CLogManager>& CLogManager::instance()
{
    return CGlobalObjFactory::accessor<CLogManager, &create>();
}

CLogManager::CLogManager() : m_mutex(createMutexFactory()->createMutex())
{
}

CLogManager::~CLogManager()
{
    m_modules.forEach([](const P<IString>&, LogList*& list) {
        delete list;
        list = nullptr;
    });
}

template <class Call>
void CLogManager::dispatch(const IString& module, const Call& call)
{
    // The list pointer stays valid even if a sink adds a module meanwhile: lists live apart from
    // the table and are freed only with the manager.
    if (LogList** list = m_modules.find(module))
        (*list)->forEach(call);
    m_global.forEach(call);
}

void CLogManager::write(const CStringArg& module, const CStringArg& record)
{
    CMutexLock lock(*m_mutex);
    dispatch(module.get(), [&](ILog& sink) { sink.write(module, record); });
}

void CLogManager::setLevel(int32_t level)
{
    CMutexLock lock(*m_mutex);
    m_level = level;
}

int32_t CLogManager::getLevel() const
{
    CMutexLock lock(*m_mutex);
    return m_level;
}

void CLogManager::log(int32_t level, const CStringArg& module, const CStringArg& text, int32_t code, int32_t line)
{
    CMutexLock lock(*m_mutex);
    if (level < m_level)
        return;
    dispatch(module.get(), [&](ILog& sink) { sink.log(level, module, text, code, line); });
}

void CLogManager::addLog(const CStringArg& module, ILog* sink)
{
    if (!sink)
        throw CInvalidArgError(nullptr, "CLogManager::addLog", "sink (null)", "CLogManager");
    if (sink == static_cast<ILog*>(this))
        throw CInvalidArgError(nullptr, "CLogManager::addLog", "sink (the manager itself)", "CLogManager");
    CMutexLock lock(*m_mutex);
    if (module->getLength() == 0) {
        m_global.addFront(sink);
        return;
    }
    if (LogList** list = m_modules.find(module.get())) {
        (*list)->addFront(sink);
        return;
    }
    auto fresh = std::make_unique<LogList>();
    fresh->addFront(sink);
    m_modules.set(CValueList::copyText(module.get()), fresh.get());
    static_cast<void>(fresh.release()); // the table owns it now
}

bool CLogManager::removeLog(const CStringArg& module, ILog* sink)
{
    CMutexLock lock(*m_mutex);
    if (module->getLength() == 0)
        return m_global.remove(sink);
    LogList** list = m_modules.find(module.get());
    return list && (*list)->remove(sink);
}

} // namespace kore
