// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimEngineTables.h"

#include <set>

/// Looks into the tables of the engine for keys that no case has.
struct VimTables {
    template<typename Table>
    static void addKeys(const Table &table, std::set<char16_t> &keys)
    {
        for (const auto &row : table) {
            keys.insert(row.key);
        }
    }
    static std::set<char16_t> motions()
    {
        // Those of the second line have no row.
        std::set<char16_t> keys = {u'f', u't', u'F', u'T', u'`', u'\'', //
                                   u'j', u'k', u'G', u'%', u';', u',',  u'H', u'M', u'L'};
        addKeys(VimEngine::Tables::motions, keys);
        return keys;
    }
    static std::set<char16_t> commands()
    {
        std::set<char16_t> keys;
        addKeys(VimEngine::Tables::commands, keys);
        return keys;
    }
    /// Those behind Control-w.
    static std::set<char16_t> windows()
    {
        std::set<char16_t> keys;
        addKeys(VimEngine::Tables::windowKeys, keys);
        return keys;
    }
    /// Those typed with Control.
    static std::set<char16_t> controls()
    {
        std::set<char16_t> keys;
        addKeys(VimEngine::Tables::controlKeys, keys);
        return keys;
    }
    static std::set<char16_t> operatorsBehindG()
    {
        std::set<char16_t> keys;
        for (const auto &row : VimEngine::Tables::operators) {
            if (row.followsG) {
                keys.insert(row.key);
            }
        }
        return keys;
    }
    static std::set<char16_t> prefixes()
    {
        std::set<char16_t> keys;
        addKeys(VimEngine::Tables::prefixKeys, keys);
        return keys;
    }
    static std::set<char16_t> operators()
    {
        std::set<char16_t> keys;
        addKeys(VimEngine::Tables::operators, keys);
        return keys;
    }
};
