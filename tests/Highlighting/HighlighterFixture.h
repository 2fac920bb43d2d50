// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Highlighting/SyntaxHighlighter.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// A letter for each scope, in the order of the scopes; plain text has a dot.
inline constexpr std::string_view scopeLetters = ".csenkbtfvapuohmlx";
static_assert(scopeLetters.size() == scopes.size());

/// A document with a highlighter, and what one would see of it.
struct Document {
    explicit Document(const Language &language, const QString &text = {})
        : highlighter(storage, language, Theme::dark(), scheduler, notifications)
    {
        storage.apply({{0, 0}, text});
        for (const ScopeRow &row : scopes) {
            letters[storage.styles().intern(Theme::dark().attributes(row.scope))] = scopeLetters[size_t(row.scope)];
        }
        letters[plainStyle] = scopeLetters[0];
        QObject::connect(&storage, &TextStorage::stylesChanged,
                         [this](const std::vector<TextRange> &ranges) { restyled.insert(restyled.end(), ranges.begin(), ranges.end()); });
        refreshes = notifications.observe(SyntaxHighlighter::needsVisibleRefresh, &highlighter, [this] { ++refreshCount; });
        highlighter.rehighlightAll();
        restyled.clear();
        refreshCount = 0;
    }

    void ensureAll() { highlighter.ensureHighlighted({0, storage.length()}); }
    /// Chunk by chunk: those that count as coloured are left as they are.
    void ensureEach()
    {
        for (qsizetype offset = 0; offset < storage.length(); offset += SyntaxHighlighter::chunkSize) {
            highlighter.ensureHighlighted({offset, 1});
        }
    }
    void type(qsizetype location, const QString &text) { storage.apply({{location, 0}, text}); }
    void erase(qsizetype location, qsizetype length) { storage.apply({{location, length}, u""}); }

    /// A letter for each unit; "?" for a style that is no scope's.
    [[nodiscard]] std::string colours(TextRange range) const
    {
        std::string shown;
        storage.forEachStyle(range, [&](TextRange run, StyleId style) {
            const auto letter = letters.find(style);
            shown.append(size_t(run.length), letter == letters.end() ? '?' : letter->second);
        });
        return shown;
    }
    [[nodiscard]] std::string colours() const { return colours({0, storage.length()}); }

    /// Whether the chunk of `offset` counts as coloured: a stain on it then stays when it is asked for.
    [[nodiscard]] bool isFresh(qsizetype offset)
    {
        const StyleId before = storage.styleAt(offset);
        const StyleId stain = storage.styles().intern({.background = 0xFF123456});
        storage.setStyle({offset, 1}, stain);
        highlighter.ensureHighlighted({offset, 1});
        const bool isStained = storage.styleAt(offset) == stain;
        if (isStained) {
            storage.setStyle({offset, 1}, before);
        }
        return isStained;
    }

    TextStorage storage;
    ManualScheduler scheduler;
    NotificationCenter notifications;
    SyntaxHighlighter highlighter;
    std::map<StyleId, char> letters;
    std::vector<TextRange> restyled;
    NotificationCenter::Token refreshes;
    int refreshCount = 0;
};
