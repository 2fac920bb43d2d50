// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Administrator.h"

/// The administrator whom polkit asks for: its pkexec runs our helper when somebody has given a password that will do, for this one file.
class PolkitAdministrator final : public Administrator {
public:
    /// Absolute paths.
    struct Programs {
        QString pkexec;
        QString helper;

        /// Where they are on this system; the helper lies beside the program.
        [[nodiscard]] static Programs standard();
    };

    explicit PolkitAdministrator(Programs programs) : m_programs(std::move(programs)) {}

    [[nodiscard]] bool isAvailable() const override;
    [[nodiscard]] Result<FileState, AtomicFile::WriteError> write(const Request &request, QByteArrayView text,
                                                                  const std::stop_token &stop) override;

private:
    const Programs m_programs;
};
