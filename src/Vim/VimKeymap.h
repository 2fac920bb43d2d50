// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimKey.h"
#include "Vim/VimMappings.h"

#include <QList>

#include <map>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

class VimEngine;
struct Action;
enum class VimKeymapPreset;

/// What a mapping does: a call of the engine, or an action for the responder chain.
using VimKeymapAction = std::variant<void (VimEngine::*)(), const Action *>;

/// Shortcuts of several keys on top of Vim's own: those of a preset, in normal and visual modes, and before them the mappings of the user.
/// A prefix waits for the next key without a limit of time, but with mappings of the user till expire(); keys that complete no mapping are
/// handed back, to be what they are without it.
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
    /// What a mapping of the user makes of keys: first `before` are what they are, then `action`, if there is one, is done or `keys`, text
    /// of one unit a key, are typed, of which the first `unmapped` are no keys of mappings; `rest` are consumed once more.
    struct Fed {
        QList<VimKeyStroke> before = {};
        std::optional<VimKeymapAction> action = std::nullopt;
        QString keys = {};
        qsizetype unmapped = 0;
        QList<VimKeyStroke> rest = {};
    };
    using Outcome = std::variant<VimKeymapAction, Passthrough, Pending, Fed>;
    /// In the order of VimMappings::Mode.
    enum class Table { normal, visual, operatorPending, insert, commandLine };

    /// Without `users` there are none, and no key of theirs takes another way than without them. They come with exact modal editing, in
    /// which the preset's keys for panes go by where these are.
    explicit VimKeymap(VimKeymapPreset preset, std::shared_ptr<const VimMappings> users = nullptr);

    [[nodiscard]] Outcome consume(const VimKeyStroke &stroke, Table table);
    /// The time for the next key is over: what the keys so far are without it. None when it does not wait, or waits for keys of the preset
    /// alone, which may take any time.
    [[nodiscard]] std::optional<Outcome> expire(Table table);
    /// No key follows those that wait, of which there is one at least: what they are without it.
    [[nodiscard]] Outcome release(Table table);
    /// So many keys wait for another.
    [[nodiscard]] qsizetype waiting() const { return m_buffer.size(); }
    [[nodiscard]] bool isWaiting() const { return !m_buffer.isEmpty(); }
    /// A mapping of the user may come of those that wait.
    [[nodiscard]] bool awaitsUsers(Table table) const;
    void forget() { m_buffer.clear(); }
    [[nodiscard]] VimKeymapPreset preset() const { return m_preset; }
    /// The mappings that the keys so far may become, in the order of the reference, with the keys that are still to come; none when it does
    /// not wait.
    [[nodiscard]] std::vector<Mapping> continuations(Table table) const;
    /// Whether a mapping begins with, or goes on with, this stroke now.
    [[nodiscard]] bool wants(const VimKeyStroke &stroke, Table table) const;
    /// Whether a mapping ends with this stroke now.
    [[nodiscard]] bool completes(const VimKeyStroke &stroke, Table table) const;
    /// The keys so far as the status bar shows them.
    [[nodiscard]] QString pendingDescription() const;

    /// For the reference of keys: those of normal mode, then those that only the visual modes have.
    [[nodiscard]] static std::vector<Mapping> mappings(VimKeymapPreset preset);
    [[nodiscard]] static QString describe(const QList<VimKeyStroke> &keys);

private:
    using Mappings = std::map<QList<VimKeyStroke>, VimKeymapAction>;

    [[nodiscard]] const Mappings &mappingsOf(Table table) const;
    [[nodiscard]] static bool hasLonger(const Mappings &mappings, const QList<VimKeyStroke> &keys);
    [[nodiscard]] bool hasUsers(Table table) const { return m_users && !m_users->isEmpty(VimMappings::Mode(table)); }
    [[nodiscard]] bool usersGoOn(const QList<VimKeyStroke> &keys, Table table) const;
    [[nodiscard]] const VimMapping *users(const QList<VimKeyStroke> &keys, Table table) const;
    [[nodiscard]] Fed fed(const VimMapping &mapping, qsizetype length);
    [[nodiscard]] Outcome longestOfUsers(Table table);

    VimKeymapPreset m_preset;
    Mappings m_normal;
    Mappings m_visual;
    std::shared_ptr<const VimMappings> m_users;
    QList<VimKeyStroke> m_buffer;
};
