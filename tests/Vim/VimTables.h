// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimKeyTable.h"

#include <set>

/// Looks into the table of the engine for keys that no case has.
struct VimTables {
    template<typename Function>
    static std::set<char16_t> keysOf()
    {
        std::set<char16_t> keys;
        for (const VimEngine::KeyRow &row : VimEngine::keys()) {
            if (std::holds_alternative<Function>(row.function) && row.place != VimEngine::KeyPlace::anyMode) {
                keys.insert(row.key);
            }
        }
        return keys;
    }
    static std::set<char16_t> motions() { return keysOf<VimEngine::KeyRow::Motion>(); }
    static std::set<char16_t> operators() { return keysOf<VimEngine::OperatorKind>(); }
    static std::set<char16_t> others()
    {
        std::set<char16_t> keys = keysOf<VimEngine::KeyRow::Command>();
        keys.merge(keysOf<VimEngine::Awaited>());
        return keys;
    }
};
