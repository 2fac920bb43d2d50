// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Result.h"

#include <QByteArray>
#include <QList>

#include <span>
#include <stop_token>

/// What a program that was run to its end printed and how it ended.
struct ProgramRun {
    /// Its exit code, or -1 when a signal ended it.
    int status = -1;
    /// What it printed, of each stream the beginning.
    QByteArray output;
    QByteArray errors;

    /// Runs `command`, whose first word is the absolute path of the program, gives it the pieces of `input` one after the other, and waits
    /// until it has ended. A stop asks it to end. Fails with the `errno` of a program that cannot be started. Any thread.
    [[nodiscard]] static Result<ProgramRun, int> run(const QList<QByteArray> &command, std::span<const QByteArrayView> input,
                                                     const std::stop_token &stop);
};
