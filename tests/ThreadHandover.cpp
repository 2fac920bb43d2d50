// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What the thread sanitizer has to know of Qt, which is not built with it: a call that is queued for another thread happens after all
// that its sender did before, a job of a pool after all that was done before it was started, and who has waited for a pool comes after
// its jobs. Without this everything that travels so would look like a race. Linked into the tests of the preset
// "thread" only. What threads share in any other way stays under its eye.
#include <QThreadPool>
#include <private/qobject_p.h>
#include <sanitizer/tsan_interface.h>

#include <cstdarg>
#include <dlfcn.h>
#include <sched.h>

/// The compiler's header for it is not installed with it.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*allocated)(const volatile void *, size_t),
                                                         void (*released)(const volatile void *));

namespace {

/// The event is allocated when the call is complete, so all of the sender's work for it is done.
void noteAllocation(const volatile void *memory, size_t size)
{
    if (size == sizeof(QMetaCallEvent)) {
        __tsan_release(const_cast<void *>(memory));
    }
}

void ignoreRelease(const volatile void *) {}

bool noteDelivery(void **receiverAndEvent)
{
    __tsan_acquire(receiverAndEvent[1]);
    return false;
}

[[maybe_unused]] const bool isInstalled = QInternal::registerCallback(QInternal::EventNotifyCallback, noteDelivery) &&
                                          __sanitizer_install_malloc_and_free_hooks(noteAllocation, ignoreRelease) != 0;

} // namespace

namespace {

class Job final : public QRunnable {
public:
    Job(std::function<void()> work, QThreadPool &pool) : m_work(std::move(work)), m_pool(pool) { __tsan_release(this); }

    void run() override
    {
        __tsan_acquire(this);
        std::exchange(m_work, nullptr)();
        __tsan_release(&m_pool);
    }

private:
    std::function<void()> m_work;
    QThreadPool &m_pool;
};

} // namespace

// In place of the library's own.

void QThreadPool::start(std::function<void()> work, int priority)
{
    start(new Job(std::move(work), *this), priority);
}

bool QThreadPool::waitForDone(int milliseconds)
{
    using Waiting = bool (*)(QThreadPool *, int);
    static const auto waiting = reinterpret_cast<Waiting>(dlsym(RTLD_NEXT, "_ZN11QThreadPool11waitForDoneEi"));
    const bool isDone = waiting(this, milliseconds);
    __tsan_acquire(this);
    return isDone;
}

/// Starts a process with memory of its own: the sanitizer's clone() ends the program when the new process shares that of its parent,
/// as those that QProcess starts do.
extern "C" int clone(int (*start)(void *), void *stack, int flags, void *argument, ...)
{
    using Cloning = int (*)(int (*)(void *), void *, int, void *, ...);
    static const auto cloning = reinterpret_cast<Cloning>(dlsym(RTLD_NEXT, "clone"));
    va_list more;
    va_start(more, argument);
    auto *const parent = va_arg(more, pid_t *);
    auto *const storage = va_arg(more, void *);
    auto *const child = va_arg(more, pid_t *);
    va_end(more);
    return cloning(start, stack, flags & ~(CLONE_VM | CLONE_VFORK), argument, parent, storage, child);
}
