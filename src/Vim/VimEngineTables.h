// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

// The keys of modal editing, one table for each place where a key may come. Private to the sources of the engine and its tests.

#include "Commands/Actions.h"
#include "Vim/VimEngine.h"

#include <array>

struct VimEngine::OperatorRow {
    OperatorKind kind;
    /// Also that which, typed once more, takes whole lines.
    char16_t key;
    bool followsG = false;
};

struct VimEngine::PrefixRow {
    char16_t key;
    Awaited awaited;
};

struct VimEngine::ControlRow {
    char16_t key;
    void (*perform)(VimEngine &engine);
};

/// Where a key leads. The result fails by itself when it is where the caret is, unless it says otherwise.
struct VimEngine::MotionRow {
    enum class Unmoved { fails, succeeds };

    char16_t key;
    VimMotion::Result (*target)(const VimMotion::Request &request);
    Unmoved unmoved = Unmoved::fails;
};

struct VimEngine::CommandRow {
    enum class Modes { all, visual };

    char16_t key;
    void (*perform)(VimEngine &engine, qsizetype count);
    Modes modes = Modes::all;
};

struct VimEngine::Tables {
    struct NavigationRow {
        char16_t key;
        char16_t standsFor;
        bool isControl;
    };
    /// Arrows and their like, in normal and visual modes.
    static constexpr auto navigationKeys = std::to_array<NavigationRow>({
        {VimKey::left, u'h', false},
        {VimKey::down, u'j', false},
        {VimKey::up, u'k', false},
        {VimKey::right, u'l', false},
        {VimKey::home, u'0', false},
        {VimKey::end, u'$', false},
        {VimKey::pageUp, u'b', true},
        {VimKey::pageDown, u'f', true},
        {VimKey::forwardDelete, u'x', false},
    });

    struct WindowRow {
        char16_t key;
        const Action &action;
    };
    /// After Control-w. Panes are a flat list: left and up is the one before, right and down the next.
    static constexpr auto windowKeys = std::to_array<WindowRow>({
        {u'v', Actions::splitEditorRight},
        {u's', Actions::splitEditorDown},
        {u'S', Actions::splitEditorDown},
        {u'c', Actions::closeSplit},
        {u'q', Actions::closeSplit},
        {u'o', Actions::closeOtherSplits},
        {u'w', Actions::focusNextPane},
        {u'j', Actions::focusNextPane},
        {u'l', Actions::focusNextPane},
        {u'W', Actions::focusPreviousPane},
        {u'p', Actions::focusPreviousPane},
        {u'h', Actions::focusPreviousPane},
        {u'k', Actions::focusPreviousPane},
    });

    static const std::array<OperatorRow, 8> operators;
    static const std::array<PrefixRow, 9> prefixKeys;
    static const std::array<ControlRow, 6> controlKeys;
    static const std::array<MotionRow, 13> motions;
    static const std::array<CommandRow, 35> commands;
};
