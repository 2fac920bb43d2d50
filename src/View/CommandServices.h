// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Scheduler.h"

#include <QString>

#include <functional>

class Workers;

/// What the commands of a text view use besides it; the objects must outlive whoever has this.
struct CommandServices {
    Scheduler &scheduler;
    Workers &workers;
    /// The sound for a command that finds nothing to do.
    std::function<void()> beep = [] {};
    /// Shows what there is to be said for so long.
    std::function<void(const QString &message, Scheduler::Milliseconds duration)> showMessage = [](const QString &,
                                                                                                   Scheduler::Milliseconds) {};
};
