// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <array>
#include <optional>

class QKeyEvent;

/// Keyboards that write another script than Latin. Commands have Latin letters and a Latin keyboard's signs, so there they are found by
/// where a US keyboard has them. What a keyboard writes is known from the last letter that came from it: all windows share one of these.
class ForeignKeyboard final {
public:
    /// Keeps in mind what is written, as far as this key tells.
    void note(const QKeyEvent &event);
    /// Whether the keyboard that a key comes from writes another script.
    [[nodiscard]] bool wrote(const QKeyEvent &event) const;

    /// What a key of a US keyboard writes.
    struct Signs {
        char16_t plain;
        char16_t shifted;

        [[nodiscard]] bool isLetter() const { return plain >= u'a' && plain <= u'z'; }
    };
    /// In the place of a key; nothing where that writes nothing.
    [[nodiscard]] static std::optional<Signs> signsInPlaceOf(const QKeyEvent &event);
    /// With Shift as it is held and letters in the case that the key wrote.
    [[nodiscard]] static std::optional<QString> textInPlaceOf(const QKeyEvent &event);

private:
    static constexpr size_t mostLayouts = 4;
    [[nodiscard]] static size_t layoutOf(const QKeyEvent &event);

    std::array<bool, mostLayouts> m_writesForeign{};
};
