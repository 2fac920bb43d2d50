// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <array>
#include <map>
#include <vector>

/// What the user has keys stand for.
struct VimMapping {
    /// As text of one unit a key; empty for nothing.
    QString result;
    /// The keys it stands for may be keys of mappings.
    bool isRecursive = true;
    bool isSilent = false;
};

/// The mappings of the user, a table a mode, by keys as text of one unit a key (VimKey).
class VimMappings final {
public:
    enum class Mode { normal, visual, operatorPending, insert, commandLine };
    static constexpr size_t modeCount = 5;

    /// Several of them.
    class Modes {
    public:
        constexpr Modes() = default;
        constexpr Modes(Mode mode) : m_bits(1U << unsigned(mode)) {}
        [[nodiscard]] constexpr bool has(Mode mode) const { return (m_bits & (1U << unsigned(mode))) != 0; }
        friend constexpr Modes operator|(Modes one, Modes other)
        {
            one.m_bits |= other.m_bits;
            return one;
        }

    private:
        unsigned m_bits = 0;
    };

    void set(Modes modes, const QString &keys, const VimMapping &mapping);
    /// False when there was none in any of them.
    bool remove(Modes modes, const QString &keys);
    void clear(Modes modes);

    [[nodiscard]] bool isEmpty(Mode mode) const { return table(mode).empty(); }
    /// Null when there is none.
    [[nodiscard]] const VimMapping *find(Mode mode, const QString &keys) const;
    /// Whether others begin with these keys.
    [[nodiscard]] bool goOn(Mode mode, const QString &keys) const;

    struct Listed {
        Modes modes;
        QString keys;
        const VimMapping *mapping;
    };
    /// Those of one of the modes whose keys begin with `keys`, each once, by keys.
    [[nodiscard]] std::vector<Listed> list(Modes modes, QStringView keys) const;

private:
    using Table = std::map<QString, VimMapping>;

    [[nodiscard]] const Table &table(Mode mode) const { return m_tables[size_t(mode)]; }

    std::array<Table, modeCount> m_tables;
};
