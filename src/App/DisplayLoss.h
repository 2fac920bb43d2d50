// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

/// Calls something, once, when the display is gone: the toolkit then ends the program from where it is, without a signal and without taking
/// anything down. It does so at other calls of exit() as well. There is one at a time; made, called and gone on the main thread.
class DisplayLoss final {
public:
    /// `action` must not need the event loop.
    explicit DisplayLoss(std::function<void()> action);
    DisplayLoss(const DisplayLoss &) = delete;
    DisplayLoss &operator=(const DisplayLoss &) = delete;
    ~DisplayLoss();
};
