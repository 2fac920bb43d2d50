// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/PausableCall.h"

#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

#include <new>
#include <utility>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUILLET_CHECKS_ADDRESSES
#endif
#if __has_feature(thread_sanitizer)
#define QUILLET_CHECKS_THREADS
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define QUILLET_CHECKS_ADDRESSES
#endif
#if defined(__SANITIZE_THREAD__)
#define QUILLET_CHECKS_THREADS
#endif

#if defined(QUILLET_CHECKS_ADDRESSES)
#include <sanitizer/asan_interface.h>
#endif
#if defined(QUILLET_CHECKS_THREADS)
#include <sanitizer/tsan_interface.h>
#endif

namespace {

/// As much as the main thread usually has; what is not used takes no memory.
constexpr size_t stackSize = size_t(8) << 20;

/// One of the two places between which the thread goes, and where its stack is, which sanitizers want to know.
struct Place {
    ucontext_t context{};
    const void *bottom = nullptr;
    size_t size = 0;
    [[maybe_unused]] void *hidden = nullptr;
    [[maybe_unused]] void *fiber = nullptr;
};

/// The thread has come to `to`, which it left by leave().
void arrive([[maybe_unused]] Place &to, [[maybe_unused]] Place &from)
{
#if defined(QUILLET_CHECKS_ADDRESSES)
    __sanitizer_finish_switch_fiber(to.hidden, &from.bottom, &from.size);
#endif
}

/// Goes to another place, and comes back when somebody goes here. Not by swapcontext(), of which the sanitizers have their own opinion.
void leave(Place &from, Place &to)
{
#if defined(QUILLET_CHECKS_ADDRESSES)
    __sanitizer_start_switch_fiber(&from.hidden, to.bottom, to.size);
#endif
#if defined(QUILLET_CHECKS_THREADS)
    from.fiber = __tsan_get_current_fiber();
    __tsan_switch_to_fiber(to.fiber, 0);
#endif
    volatile bool isBack = false;
    getcontext(&from.context);
    if (!isBack) {
        isBack = true;
        setcontext(&to.context);
    }
    arrive(from, to);
}

} // namespace

struct PausableCall::Stack {
    Stack()
    {
        // A page that nobody may touch is below.
        const auto page = size_t(sysconf(_SC_PAGESIZE));
        size = stackSize + page;
        memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
        if (memory == MAP_FAILED) {
            throw std::bad_alloc();
        }
        mprotect(memory, page, PROT_NONE);
        getcontext(&inside.context);
        inside.bottom = static_cast<char *>(memory) + page;
        inside.size = stackSize;
        inside.context.uc_stack.ss_sp = static_cast<char *>(memory) + page;
        inside.context.uc_stack.ss_size = stackSize;
        makecontext(&inside.context, &Stack::begin, 0);
#if defined(QUILLET_CHECKS_THREADS)
        inside.fiber = __tsan_create_fiber(0);
#endif
    }
    ~Stack()
    {
#if defined(QUILLET_CHECKS_THREADS)
        __tsan_destroy_fiber(inside.fiber);
#endif
#if defined(QUILLET_CHECKS_ADDRESSES)
        // The marks of what never returns would be found on whatever comes to lie here.
        __asan_unpoison_memory_region(memory, size);
#endif
        munmap(memory, size);
    }
    Q_DISABLE_COPY_MOVE(Stack)

    /// What makecontext() calls takes no pointer.
    static inline thread_local Stack *begun = nullptr;
    static void begin()
    {
        begun->carryOut();
    }

    /// Never returns; between two calls it holds nothing.
    void carryOut()
    {
        arrive(inside, outside);
        for (;;) {
            std::exchange(call, nullptr)();
            isUnderWay = false;
            go(inside, outside);
        }
    }
    void go(Place &from, Place &to)
    {
        isWithin = &to == &inside;
        begun = this;
        leave(from, to);
    }

    void *memory = nullptr;
    size_t size = 0;
    Place inside;
    Place outside;
    std::function<void()> call;
    bool isUnderWay = false;
    bool isWithin = false;
};

PausableCall::PausableCall() = default;

PausableCall::~PausableCall()
{
    Q_ASSERT(!m_stack || !m_stack->isUnderWay);
}

void PausableCall::start(std::function<void()> call)
{
    if (!m_stack) {
        m_stack = std::make_unique<Stack>();
    }
    Q_ASSERT(!m_stack->isUnderWay);
    m_stack->call = std::move(call);
    m_stack->isUnderWay = true;
    resume();
}

void PausableCall::resume()
{
    Q_ASSERT(m_stack && m_stack->isUnderWay && !m_stack->isWithin);
    m_stack->go(m_stack->outside, m_stack->inside);
}

void PausableCall::pause()
{
    Q_ASSERT(isWithin());
    m_stack->go(m_stack->inside, m_stack->outside);
}

bool PausableCall::isPaused() const
{
    return m_stack && m_stack->isUnderWay && !m_stack->isWithin;
}

bool PausableCall::isWithin() const
{
    return m_stack && m_stack->isWithin;
}
