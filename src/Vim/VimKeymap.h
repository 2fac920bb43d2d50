// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimKey.h"

#include <QList>

#include <map>
#include <variant>
#include <vector>

class VimEngine;
struct Action;
enum class VimKeymapPreset;

/// What a mapping does: a call of the engine, or an action for the responder chain.
using VimKeymapAction = std::variant<void (VimEngine::*)(), const Action *>;

/// Shortcuts of several keys on top of Vim's own, in normal and visual modes. A prefix waits for the next key without a limit of time;
/// keys that complete no mapping are handed back, to be what they are without it.
class VimKeymap final {
public:
    struct Mapping {
        QList<VimKeyStroke> keys;
        /// In the language of the interface.
        QString label;
        VimKeymapAction action;
        QString section;
    };
    /// Waiting for more keys.
    struct Pending {};
    /// Keys that no mapping takes, in order.
    using Passthrough = QList<VimKeyStroke>;
    using Outcome = std::variant<VimKeymapAction, Passthrough, Pending>;
    enum class Table { normal, visual };

    explicit VimKeymap(VimKeymapPreset preset);

    [[nodiscard]] Outcome consume(const VimKeyStroke &stroke, Table table);
    [[nodiscard]] bool isWaiting() const { return !m_buffer.isEmpty(); }
    void forget() { m_buffer.clear(); }
    [[nodiscard]] VimKeymapPreset preset() const { return m_preset; }
    /// The mappings that the keys so far may become, in the order of the reference, with the keys that are still to come; none when it does
    /// not wait.
    [[nodiscard]] std::vector<Mapping> continuations(Table table) const;
    /// Whether a mapping begins with, or goes on with, this stroke now.
    [[nodiscard]] bool wants(const VimKeyStroke &stroke, Table table) const;
    /// Whether a mapping ends with this stroke now.
    [[nodiscard]] bool completes(const VimKeyStroke &stroke, Table table) const
    {
        return mappingsOf(table).contains(m_buffer + QList{stroke});
    }
    /// The keys so far as the status bar shows them.
    [[nodiscard]] QString pendingDescription() const;

    /// For the reference of keys: those of normal mode, then those that only the visual modes have.
    [[nodiscard]] static std::vector<Mapping> mappings(VimKeymapPreset preset);
    [[nodiscard]] static QString describe(const QList<VimKeyStroke> &keys);

private:
    using Mappings = std::map<QList<VimKeyStroke>, VimKeymapAction>;

    [[nodiscard]] const Mappings &mappingsOf(Table table) const { return table == Table::visual ? m_visual : m_normal; }
    [[nodiscard]] static bool hasLonger(const Mappings &mappings, const QList<VimKeyStroke> &keys);

    VimKeymapPreset m_preset;
    Mappings m_normal;
    Mappings m_visual;
    QList<VimKeyStroke> m_buffer;
};
