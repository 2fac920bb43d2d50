// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <functional>
#include <memory>

/// A call that can pause in the midst of itself, however deep, and goes on when it is told to, so that the event loop turns meanwhile: it
/// has a stack of its own on the thread of the caller. What is between need not know. One thread only.
class PausableCall final {
public:
    PausableCall();
    /// It must not be paused: what it was at would never end.
    ~PausableCall();
    Q_DISABLE_COPY_MOVE(PausableCall)

    /// Returns when `call`, which must not throw, is done or has paused. Nothing must be under way.
    void start(std::function<void()> call);
    /// Goes on where it paused; returns as start() does.
    void resume();
    /// From within the call: returns when it is resumed.
    void pause();
    [[nodiscard]] bool isPaused() const;
    /// What runs now is the call.
    [[nodiscard]] bool isWithin() const;

private:
    struct Stack;
    /// Made by the first call.
    std::unique_ptr<Stack> m_stack;
};
