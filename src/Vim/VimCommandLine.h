// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimKey.h"

#include <QString>

class VimRegisters;

/// The line that is typed behind ":", "/" or "?". It knows the keys that change it, and nothing of what it is for.
class VimCommandLine final {
public:
    enum class Outcome { goesOn, isEntered, isLeft };

    void begin(char16_t prefix) { *this = {}, m_prefix = prefix; }
    void clear() { begin(m_prefix); }
    /// Takes any key but Escape. What has no meaning here does nothing.
    Outcome handle(const VimKeyEvent &event, const VimRegisters &registers);

    [[nodiscard]] char16_t prefix() const { return m_prefix; }
    /// Without the prefix.
    [[nodiscard]] const QString &text() const { return m_text; }

private:
    struct ControlRow;

    Outcome deleteLetter(const VimRegisters &registers);
    Outcome deleteWord(const VimRegisters &registers);
    Outcome deleteAll(const VimRegisters &registers);
    Outcome leave(const VimRegisters & /*registers*/) { return Outcome::isLeft; }
    Outcome awaitRegister(const VimRegisters &registers);
    Outcome paste(const VimRegisters &registers);
    void put(const VimRegisters &registers, char16_t name);

    char16_t m_prefix = u':';
    QString m_text;
    /// The next key is the name of a register whose text comes in.
    bool m_awaitsRegister = false;
};
