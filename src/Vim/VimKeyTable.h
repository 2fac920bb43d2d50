// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

// The keys of modal editing: one row each, from which they are carried out and which the reference shows. Private to the sources of the
// engine and its tests.

#include "Vim/VimExactMotion.h"
#include "Vim/VimParts.h"

#include <array>
#include <optional>

/// One key where it may come, in normal and visual modes. A key in several places has a row for each.
struct VimEngine::KeyRow {
    /// Leads the caret somewhere. It fails by itself when that is where the caret is, unless it says otherwise.
    struct Motion {
        Moving::Target target;
        Unmoved unmoved = Unmoved::fails;
    };
    /// Anything else that the engine does, among it motions that depend on what was typed before, or on the screen.
    struct Command {
        void (*perform)(VimEngine &engine, qsizetype count);
        /// What a smaller count, or none, stands for.
        qsizetype leastCount = 1;
    };
    /// The same as Vim has it.
    struct ExactMotion {
        VimExactMotion::Motion motion;
    };
    /// Waits for a motion or an object, or to be typed once more for whole lines; in visual modes it takes the selection.
    using Operator = OperatorKind;
    /// Waits for one key more; for that of an object only where an object makes sense.
    using Prefix = Awaited;

    char16_t key;
    std::variant<Motion, Command, Operator, Prefix, const Action *, ExactMotion> function;
    VimKeyHelp help = {};
    KeyPlace place = KeyPlace::plain;
    /// Where operators wait for a motion, only what moves makes sense.
    enum class Modes { all, notPending, normalOnly, visualOnly };
    Modes modes = Modes::all;
    /// Of a key that is there with this key map alone.
    std::optional<VimKeymapPreset> preset = std::nullopt;

    [[nodiscard]] bool isThereWith(const VimOptions &options) const { return preset.value_or(options.preset) == options.preset; }
    [[nodiscard]] QString written() const;
    [[nodiscard]] bool awaitsObject() const
    {
        const auto *prefix = std::get_if<Prefix>(&function);
        return prefix && prefix->what == Awaiting::textObject;
    }
};

/// Keys that stand for others in normal and visual modes: arrows and their like.
struct VimEngine::NavigationRow {
    char16_t key;
    char16_t standsFor;
    KeyPlace place = KeyPlace::plain;

    static const std::array<NavigationRow, 9> all;
};
