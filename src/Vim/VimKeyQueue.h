// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimKeymap.h"

#include <deque>

/// Keys that are to be handled as if they were typed: those of mappings, `:normal`, macros. A value.
class VimKeyQueue final {
public:
    /// As often one mapping may lead to another before a key comes of it.
    static constexpr int deepest = 1000;

    struct Key {
        VimKeyStroke stroke;
        /// It may be a key of a mapping.
        bool isMapped = true;
    };

    [[nodiscard]] bool isEmpty() const { return m_keys.empty(); }
    void clear() { *this = {}; }
    /// The next one, which is gone then. There is one.
    [[nodiscard]] Key take();
    /// Before all others: of text of one unit a key, of which the first `unmapped` are no keys of mappings.
    void putFirst(QStringView keys, qsizetype unmapped);
    /// What a mapping made of keys, but for `before` and `action`. False, and the queue empty, when mappings led to others too often.
    [[nodiscard]] bool put(const VimKeymap::Fed &fed);
    /// A key came of it all.
    void noteKey() { m_depth = 0; }

private:
    std::deque<Key> m_keys;
    int m_depth = 0;
};
