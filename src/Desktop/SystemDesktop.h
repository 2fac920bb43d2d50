// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Desktop/Desktop.h"

/// The desktop that the program runs on.
class SystemDesktop final : public Desktop {
public:
    void reveal(const QString &path, Failure failed) override;
    [[nodiscard]] Result<void> moveToTrash(const QString &path) override;
    [[nodiscard]] Result<void> openTerminal(const QString &folder, const QString &preferredTerminal) override;

    /// The program and arguments that the line of an "Exec" key starts, without what stands for files; empty when it is no such line.
    [[nodiscard]] static QStringList commandOf(const QString &exec);
};
