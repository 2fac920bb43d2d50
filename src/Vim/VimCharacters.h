// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Which characters make words in exact mode: those that have no other class make up the words of most languages, scripts that are written
/// without blanks have classes of their own. Any thread.
namespace VimCharacters {

/// Those from `word` on belong to words; a word ends where the class changes.
enum class Class { blank, punctuation, word, emoji, braille, hiragana, katakana, han, hangul };

[[nodiscard]] Class classOf(char32_t character);
[[nodiscard]] inline bool isKeyword(char32_t character)
{
    return classOf(character) >= Class::word;
}
/// Of an expression in ICU syntax.
[[nodiscard]] const QString &setOf(Class characterClass);
/// All from `word` on.
[[nodiscard]] const QString &keywordSet();
/// What stands between two characters of which the second begins a word, or the first ends one.
[[nodiscard]] const QString &wordStart();
[[nodiscard]] const QString &wordEnd();

} // namespace VimCharacters
