// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

#include <vector>

class VimChords;
struct VimOptions;

/// The keys of modal editing for those who read, in the language of the interface.
namespace VimReference {

struct Row {
    /// Each one key, or several as they are typed.
    QStringList keys;
    QString text;
};

struct Section {
    QString heading;
    /// May be empty.
    QString intro;
    std::vector<Row> rows;
};

/// The name of the document.
inline constexpr QLatin1StringView title("Vim Keys.md");

/// Without the keys of a key map; those of exact modal editing while that is on.
[[nodiscard]] std::vector<Section> sections(const VimOptions &options);
/// With those of the key map and of insert mode, without chords that are not Vim's, and keys named as on the keyboard: "Ctrl+D", not "⌃D".
[[nodiscard]] std::vector<Section> overview(const VimOptions &options, const VimChords &chords);
/// All of it as Markdown, with columns that line up; says whether the key map has the keys of LazyVim.
[[nodiscard]] QString markdown(const VimOptions &options);
/// `markdown` with the cells of every table as wide as the widest of their column, in characters.
[[nodiscard]] QString aligningTables(const QString &markdown);

} // namespace VimReference
