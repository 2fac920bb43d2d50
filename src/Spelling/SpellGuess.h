// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Spelling/SpellDictionary.h"

#include <QStringList>

#include <stop_token>
#include <vector>

class SpellLibrary;

/// Which dictionaries a text is written by, as far as `words`, some of its words, tell.
namespace SpellGuess {

struct Candidates {
    /// Of the languages of the user.
    std::vector<SpellDictionaryFiles> likely;
    /// Looked into when the text is in none of these.
    std::vector<SpellDictionaryFiles> others;
};

/// The one that knows most of the words first; then those that know a good part of what the ones before do not. All that are likely when
/// there are too few words, or too few of them are known. Takes as long as loading what is looked into; stops early, with anything, once
/// the token says so. Any thread.
[[nodiscard]] QStringList dictionaries(const QStringList &words, const Candidates &candidates, SpellLibrary &library,
                                       const std::stop_token &stop = {});

} // namespace SpellGuess
