// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What the thread sanitizer has to know of Qt, which is not built with it: a call that is queued for another thread happens after all
// that its sender did before. Without this everything that travels so would look like a race. Linked into the tests of the preset
// "thread" only. What threads share in any other way stays under its eye.
#include <private/qobject_p.h>
#include <sanitizer/tsan_interface.h>

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
