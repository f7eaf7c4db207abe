// Abuses the named global mutex: an owner process takes it (every other round twice, recursively)
// and is killed with SIGKILL while holding it, round after round; the next waiter must get it
// every time. Half of the rounds have the waiter already blocked in lock() when the owner dies,
// the other half ask with tryLock after the death. Prints the figures; exits 1 on any miss.
//
//   global_mutex_abuse [rounds]        (default 1000)
#include "framework/errors/CException.h"
#include "framework/posix/CGlobalMutexImpl.h"
#include "framework/sync/IMutex.h"
#include "framework/sync/IMutexFactory.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

// The owner: takes the mutex `depth` times, tells the parent through `fd`, then waits for death.
int hold(const char* name, int depth, int fd)
{
    kore::P<kore::IMutex> mutex = kore::createMutexFactory()->createGlobalMutex(name);
    for (int i = 0; i < depth; ++i)
        mutex->lock();
    const char held = 'h';
    if (write(fd, &held, 1) != 1)
        return 2;
    for (;;)
        pause();
}

// Starts an owner and returns once it holds the mutex; 0 when it could not be started.
pid_t startOwner(const char* self, const std::string& name, int depth)
{
    int fds[2];
    if (pipe(fds) != 0)
        return 0;
    const pid_t pid = fork();
    if (pid == 0) {
        close(fds[0]);
        const std::string depthText = std::to_string(depth), fdText = std::to_string(fds[1]);
        execl(self, self, "--hold", name.c_str(), depthText.c_str(), fdText.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    close(fds[1]);
    char held = 0;
    const bool ok = pid > 0 && read(fds[0], &held, 1) == 1;
    close(fds[0]);
    if (!ok && pid > 0) {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
        return 0;
    }
    return pid;
}

double percentile(std::vector<double> values, double p)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, static_cast<size_t>(p * static_cast<double>(values.size())))];
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 5 && std::strcmp(argv[1], "--hold") == 0)
        return hold(argv[2], std::atoi(argv[3]), std::atoi(argv[4]));
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 1000;
    const std::string name = "qor_mutex_abuse_" + std::to_string(getpid());
    const char* self = "/proc/self/exe";

    int acquired = 0, missed = 0, heldByOwner = 0, startFailures = 0;
    std::vector<double> waitMs;
    const auto start = Clock::now();
    try {
        kore::P<kore::IMutex> mutex = kore::createMutexFactory()->createGlobalMutex(name.c_str());
        for (int round = 0; round < rounds; ++round) {
            const pid_t owner = startOwner(self, name, 1 + round % 2);
            if (!owner) {
                ++startFailures;
                continue;
            }
            // While the owner lives the mutex is not to be had.
            if (!mutex->tryLock(0))
                ++heldByOwner;
            else
                mutex->unlock();
            const bool waiterBlocked = round % 4 < 2;
            bool got = false;
            Clock::time_point killed;
            if (waiterBlocked) {
                std::atomic<bool> waiting{false};
                std::thread waiter([&] {
                    waiting = true;
                    try {
                        mutex->lock();
                        got = true;
                    } catch (const kore::CException&) {
                    }
                });
                while (!waiting)
                    std::this_thread::yield();
                std::this_thread::sleep_for(std::chrono::milliseconds(1)); // let it block in lock()
                killed = Clock::now();
                kill(owner, SIGKILL);
                waiter.join();
            } else {
                kill(owner, SIGKILL);
                waitpid(owner, nullptr, 0);
                killed = Clock::now();
                got = mutex->tryLock(5000);
            }
            waitMs.push_back(std::chrono::duration<double, std::milli>(Clock::now() - killed).count());
            if (waiterBlocked)
                waitpid(owner, nullptr, 0);
            if (got) {
                ++acquired;
                mutex->unlock();
            } else {
                ++missed;
            }
        }
    } catch (const kore::CException& e) {
        std::fprintf(stderr, "failed: %s\n", e.what());
        kore::posix::CGlobalMutexImpl::removeSystemName(name.c_str());
        return 1;
    }
    kore::posix::CGlobalMutexImpl::removeSystemName(name.c_str());
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    std::printf("owners killed while holding: %d of %d rounds (%d could not be started)\n", rounds - startFailures,
                rounds, startFailures);
    std::printf("refused to others while the owner lived: %d\n", heldByOwner);
    std::printf("next waiter got the mutex: %d, missed: %d\n", acquired, missed);
    std::printf("kill to acquisition: median %.3f ms, p99 %.3f ms, max %.3f ms; total %.1f s\n",
                percentile(waitMs, 0.5), percentile(waitMs, 0.99), percentile(waitMs, 1.0), seconds);
    return missed == 0 && startFailures == 0 && heldByOwner == rounds ? 0 : 1;
}
