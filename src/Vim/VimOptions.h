// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <memory>

class Preferences;
class VimMappings;
enum class VimKeymapPreset;

/// What the user has set about modal editing: a value, so that the engine looks nothing up while keys are typed.
struct VimOptions {
    VimKeymapPreset preset;
    /// Vim's documented behaviour decides wherever this program's own differs. The others count with this alone.
    bool isExact = false;
    bool ignoresCase = false;
    /// Not where a pattern has capitals.
    bool smartCase = false;
    /// What `:s` does without "g".
    bool substitutesAll = false;
    /// A search goes on at the other end of the text.
    bool wrapsSearch = true;
    bool searchesWhileTyping = true;
    bool marksHits = false;
    /// Jumps go to the first character that is no blank.
    bool startsAtFirst = true;
    /// Columns; 0 for no width.
    int textWidth = 0;
    /// Of the text's own conventions, where the user has set no width.
    int longestLine = 0;
    /// Rows kept above and below the caret.
    int scrollOffset = 0;
    /// Milliseconds that the next key of a user's mapping may take.
    int mappingTimeout = 1000;
    /// That one press may come to; more are a macro that goes round and that nobody stops.
    qsizetype mostKeys = 1'000'000'000;
    /// Of the user; null for none.
    std::shared_ptr<const VimMappings> mappings = nullptr;

    /// The one that a test or a tool has without preferences.
    explicit VimOptions(VimKeymapPreset keymap) : preset(keymap) {}
    [[nodiscard]] static VimOptions of(const Preferences &preferences);
};
