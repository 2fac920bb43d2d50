// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QtGlobal>

#include <optional>
#include <vector>

/// Names one set of attributes in a StyleTable; 0 is plain text.
using StyleId = quint16;
inline constexpr StyleId plainStyle = 0;

/// How a stretch of text looks, apart from font and tab width, which belong to the view. Colours are 0xAARRGGBB; none means the view's.
struct TextAttributes {
    std::optional<quint32> foreground = {};
    std::optional<quint32> background = {};
    bool isBold = false;
    bool isItalic = false;
    bool isUnderlined = false;

    friend bool operator==(const TextAttributes &, const TextAttributes &) = default;
};

[[nodiscard]] size_t qHash(const TextAttributes &attributes, size_t seed = 0);

/// Gives equal attributes one number, so that a run costs four bytes. Numbers stay valid as long as the table.
class StyleTable final {
public:
    StyleTable() : m_attributes(1) {}

    /// Plain text once 65535 sets are in use.
    [[nodiscard]] StyleId intern(const TextAttributes &attributes);
    /// `style` must come from this table. The reference is valid until the next `intern()`.
    [[nodiscard]] const TextAttributes &attributes(StyleId style) const { return m_attributes[style]; }
    [[nodiscard]] qsizetype count() const { return qsizetype(m_attributes.size()); }

private:
    std::vector<TextAttributes> m_attributes;
    QHash<TextAttributes, StyleId> m_ids;
};
