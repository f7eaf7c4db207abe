#include "framework/posix/CGlobalMutexImpl.h"

#include "framework/errors/CException.h"
#include "framework/text/CString.h"

#include <atomic>
#include <cerrno>
#include <ctime>
#include <map>
#include <mutex>

#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace kore::posix {

namespace {

constexpr uint32_t kInfinite = 0xFFFFFFFF;
constexpr char kPrefix[] = "/kore.mutex.";
// glibc refuses shared-memory names of 254 bytes and more; the prefix takes 11 of them.
constexpr size_t kMaxNameBytes = 240;

constexpr uint32_t kMagic = 0x4B4D5458;
// Layout version and mutex size: a process of another ABI (32-bit, another libc) must refuse
// the object instead of misreading it.
constexpr uint32_t kLayout = (1u << 16) | static_cast<uint32_t>(sizeof(pthread_mutex_t));

// The shared-memory object's content. `magic` is written last, once the mutex is initialised.
struct SharedRecord {
    uint32_t magic;
    uint32_t layout;
    pthread_mutex_t mutex;
};

uint32_t loadMagic(SharedRecord& record)
{
    return std::atomic_ref<uint32_t>(record.magic).load(std::memory_order_acquire);
}

[[noreturn]] void throwCreationError(const IString& name)
{
    throw CException("", keepText("Error createing global mutex ")->concat(name));
}

// Unlocks and closes a descriptor on every path out of the opening code. The unlock must be
// explicit: a mapping keeps the open file, and with it the flock, alive after close().
class CFd {
public:
    explicit CFd(int fd) : m_fd(fd) {}
    ~CFd()
    {
        if (m_fd < 0)
            return;
        if (m_locked)
            flock(m_fd, LOCK_UN);
        close(m_fd);
    }
    CFd(const CFd&) = delete;
    CFd& operator=(const CFd&) = delete;
    int get() const { return m_fd; }
    bool lockExclusive()
    {
        while (flock(m_fd, LOCK_EX) != 0) {
            if (errno != EINTR)
                return false;
        }
        m_locked = true;
        return true;
    }

private:
    int m_fd;
    bool m_locked = false;
};

bool initialise(SharedRecord& record)
{
    pthread_mutexattr_t attr;
    if (pthread_mutexattr_init(&attr) != 0)
        return false;
    bool ok = pthread_mutexattr_setpshared(&attr, PTHREAD_PROCESS_SHARED) == 0 &&
              pthread_mutexattr_settype(&attr, PTHREAD_MUTEX_RECURSIVE) == 0 &&
              pthread_mutexattr_setrobust(&attr, PTHREAD_MUTEX_ROBUST) == 0 &&
              pthread_mutex_init(&record.mutex, &attr) == 0;
    pthread_mutexattr_destroy(&attr);
    if (ok) {
        record.layout = kLayout;
        std::atomic_ref<uint32_t>(record.magic).store(kMagic, std::memory_order_release);
    }
    return ok;
}

// Opens, and initialises if nobody has, the shared record of `systemName`. Every opener holds an
// exclusive flock on the object while it looks at it, so exactly one initialises and the others
// wait for it; the kernel drops the flock of a process that dies midway, and a record whose magic
// was never written is then initialised by the next opener (nobody can have used it).
SharedRecord* openRecord(const std::string& systemName, const IString& name)
{
    int raw;
    do {
        raw = shm_open(systemName.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    } while (raw < 0 && errno == EINTR);
    CFd fd(raw);
    if (fd.get() < 0)
        throwCreationError(name);
    if (!fd.lockExclusive())
        throwCreationError(name);
    struct stat st;
    if (fstat(fd.get(), &st) != 0)
        throwCreationError(name);
    const bool fresh = st.st_size == 0;
    if (fresh && ftruncate(fd.get(), sizeof(SharedRecord)) != 0)
        throwCreationError(name);
    // Smaller than a record: not ours, or of another ABI.
    if (!fresh && static_cast<size_t>(st.st_size) < sizeof(SharedRecord))
        throwCreationError(name);
    void* address = mmap(nullptr, sizeof(SharedRecord), PROT_READ | PROT_WRITE, MAP_SHARED, fd.get(), 0);
    if (address == MAP_FAILED)
        throwCreationError(name);
    auto* record = static_cast<SharedRecord*>(address);
    const uint32_t magic = loadMagic(*record);
    bool usable;
    if (magic == 0)
        usable = initialise(*record);
    else
        usable = magic == kMagic && record->layout == kLayout;
    if (!usable) {
        munmap(address, sizeof(SharedRecord));
        throwCreationError(name);
    }
    return record;
}

} // namespace

// One mapping per name and process. Mapping a name twice would let a thread hold the mutex through
// one mapping while the other is unmapped, leaving the thread's robust list (which the kernel and
// glibc walk) pointing at unmapped memory.
struct CSharedMutexMapping {
    std::string systemName;
    SharedRecord* record = nullptr;
    // Objects of this process using the mapping; changed under the registry's lock.
    size_t users = 0;
    // The thread of this process that owns the mutex (0: none) and its recursion depth. Written
    // only by the owner; read by unlock and by the last object's destructor, which must keep the
    // mapping while any thread still holds the mutex through it.
    std::atomic<pid_t> owner{0};
    std::atomic<uint32_t> depth{0};
};

namespace {

struct Registry {
    std::mutex lock;
    std::map<std::string, CSharedMutexMapping*> mappings;
};

// Never freed: mutexes held by process-wide services are destroyed during teardown, possibly after
// this file's statics would have been.
Registry& registry()
{
    static Registry* r = new Registry;
    return *r;
}

CSharedMutexMapping* acquireMapping(const std::string& systemName, const IString& name)
{
    Registry& reg = registry();
    std::lock_guard guard(reg.lock);
    auto it = reg.mappings.find(systemName);
    if (it == reg.mappings.end()) {
        SharedRecord* record = openRecord(systemName, name);
        auto* mapping = new CSharedMutexMapping;
        mapping->systemName = systemName;
        mapping->record = record;
        it = reg.mappings.emplace(systemName, mapping).first;
    }
    ++it->second->users;
    return it->second;
}

void releaseMapping(CSharedMutexMapping* mapping)
{
    Registry& reg = registry();
    std::lock_guard guard(reg.lock);
    if (--mapping->users != 0)
        return;
    // An object destroyed while its thread still holds the mutex (a programming error) leaves the
    // mapping in place, so the robust list stays valid; a later object of the same name reuses it.
    if (mapping->depth.load() != 0)
        return;
    reg.mappings.erase(mapping->systemName);
    munmap(mapping->record, sizeof(SharedRecord));
    delete mapping;
}

// 0, EOWNERDEAD (acquired, previous owner died), or another error number (not acquired).
int acquire(pthread_mutex_t* mutex, uint32_t timeoutMs)
{
    if (timeoutMs == kInfinite)
        return pthread_mutex_lock(mutex);
    if (timeoutMs == 0)
        return pthread_mutex_trylock(mutex);
    // The monotonic clock: a change of the wall clock must not stretch or cut the wait.
    timespec deadline;
    clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_sec += static_cast<time_t>(timeoutMs / 1000);
    deadline.tv_nsec += static_cast<long>(timeoutMs % 1000) * 1000000L;
    if (deadline.tv_nsec >= 1000000000L) {
        deadline.tv_sec += 1;
        deadline.tv_nsec -= 1000000000L;
    }
#if defined(__SANITIZE_THREAD__)
    // gcc's ThreadSanitizer has no interceptor for pthread_mutex_clocklock: without these notes
    // it would take a mutex acquired here for free and report its unlock.
    __tsan_mutex_pre_lock(mutex, __tsan_mutex_try_lock);
    const int rc = pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &deadline);
    const bool acquired = rc == 0 || rc == EOWNERDEAD;
    __tsan_mutex_post_lock(mutex, __tsan_mutex_try_lock | (acquired ? 0 : __tsan_mutex_try_lock_failed), 0);
    return rc;
#else
    return pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &deadline);
#endif
}

// The caller inherited the mutex from a dead owner: mark it usable again and give it back, so that
// the caller asks for it anew like everybody else (the same sequence as for an abandoned Windows
// mutex).
void handBack(CSharedMutexMapping& mapping)
{
    // The dead owner may have been a thread of this process.
    mapping.owner.store(0);
    mapping.depth.store(0);
    pthread_mutex_consistent(&mapping.record->mutex);
    pthread_mutex_unlock(&mapping.record->mutex);
}

// Acquires with at most one hand-back. A second dead owner in a row is handed back as well, then
// reported, so that a failed attempt never leaves the caller owning the mutex.
int acquireAnew(CSharedMutexMapping& mapping, uint32_t timeoutMs)
{
    int rc = acquire(&mapping.record->mutex, timeoutMs);
    if (rc == EOWNERDEAD) {
        handBack(mapping);
        rc = acquire(&mapping.record->mutex, timeoutMs);
        if (rc == EOWNERDEAD)
            handBack(mapping);
    }
    if (rc == 0) {
        const pid_t self = gettid();
        if (mapping.owner.load() == self) {
            mapping.depth.fetch_add(1);
        } else {
            mapping.owner.store(self);
            mapping.depth.store(1);
        }
    }
    return rc;
}

} // namespace

CGlobalMutexImpl::CGlobalMutexImpl(const CStringArg& name)
    : m_name(keepText(name)), m_mapping(acquireMapping(systemName(*m_name), *m_name))
{
}

CGlobalMutexImpl::~CGlobalMutexImpl()
{
    releaseMapping(m_mapping);
}

void CGlobalMutexImpl::lock()
{
    if (acquireAnew(*m_mapping, kInfinite) != 0)
        throw CException("", keepText("Error locking global mutex ")->concat(m_name));
}

void CGlobalMutexImpl::unlock()
{
    CSharedMutexMapping& mapping = *m_mapping;
    if (mapping.owner.load() != gettid())
        return;
    if (mapping.depth.fetch_sub(1) == 1)
        mapping.owner.store(0);
    pthread_mutex_unlock(&mapping.record->mutex);
}

bool CGlobalMutexImpl::tryLock(uint32_t timeoutMs)
{
    return acquireAnew(*m_mapping, timeoutMs) == 0;
}

std::string CGlobalMutexImpl::systemName(const CStringArg& name)
{
    const IString& text = name.get();
    std::string utf8 = text.toUTF8();
    std::string_view rest = utf8;
    for (std::string_view ns : {"Global\\", "Local\\"}) {
        if (rest.starts_with(ns)) {
            rest.remove_prefix(ns.size());
            break;
        }
    }
    std::string result = kPrefix;
    const size_t prefixLength = result.size();
    for (char c : rest) {
        if (c == '\0' || c == '\\')
            throwCreationError(text);
        if (c == '%')
            result += "%25";
        else if (c == '/')
            result += "%2F";
        else
            result += c;
    }
    const size_t length = result.size() - prefixLength;
    if (length == 0 || length > kMaxNameBytes)
        throwCreationError(text);
    return result;
}

void CGlobalMutexImpl::removeSystemName(const CStringArg& name)
{
    shm_unlink(systemName(name).c_str());
}

} // namespace kore::posix
