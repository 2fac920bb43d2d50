// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextTree.h"

#include <QString>
#include <QStringView>

#include <functional>
#include <span>

struct TextEdit;

extern template class TextTree<4096, 32>;

/// The text of a document as a persistent B+tree of short leaves.
///
/// Units are UTF-16 code units. A leaf holds at most 4096 bytes, one byte a unit when all of its units are below U+0100, two
/// otherwise; no leaf begins with the second half of a surrogate pair. Copies share their leaves: a copy costs O(1), stays as it is
/// while the other goes on changing, and may be read and destroyed on any thread. One object must not be changed and read at once.
///
/// Lines end after LF, CR LF or a lone CR; a pair split across leaves counts once. Lines are numbered from 0 here.
class Rope final {
public:
    /// Whole leaves in place; `narrow` or `wide` points at the first unit, valid until the rope is changed or destroyed.
    struct Chunk {
        qsizetype location = 0;
        qsizetype length = 0;
        const uchar *narrow = nullptr;
        const char16_t *wide = nullptr;

        [[nodiscard]] char16_t at(qsizetype index) const { return narrow ? narrow[index] : wide[index]; }
    };

    Rope() = default;
    explicit Rope(QStringView text) : m_tree(text) {}

    [[nodiscard]] qsizetype length() const { return m_tree.length(); }
    [[nodiscard]] bool isEmpty() const { return length() == 0; }
    /// Line breaks plus one. O(1).
    [[nodiscard]] qsizetype lineCount() const { return m_tree.lineCount(); }
    /// Offset at which line `line` begins; `line` is clamped to the lines there are. O(log n).
    [[nodiscard]] qsizetype lineStart(qsizetype line) const { return m_tree.lineStart(line); }
    /// The line that holds `offset` (0 … length, clamped). O(log n).
    [[nodiscard]] qsizetype lineAt(qsizetype offset) const { return m_tree.lineAt(offset); }
    /// Units of the longest line, its break counted in. O(1).
    [[nodiscard]] qsizetype longestLine() const { return m_tree.longestLine(); }
    /// Where a surrogate pair counts as one. O(1).
    [[nodiscard]] qsizetype characterCount() const { return m_tree.characterCount(); }
    /// How many such characters stand before `offset` (0 … length, clamped), whole or in part. O(log n).
    [[nodiscard]] qsizetype characterAt(qsizetype offset) const { return m_tree.characterAt(offset); }
    /// Offset at which such a character begins; `character` is clamped to 0 … characterCount. O(log n).
    [[nodiscard]] qsizetype characterStart(qsizetype character) const { return m_tree.characterStart(character); }

    /// O(log n); for a walk use RopeCursor.
    [[nodiscard]] char16_t at(qsizetype offset) const { return m_tree.at(offset); }
    /// Whether `offset` (0 … length) stands between the halves of a surrogate pair.
    [[nodiscard]] bool splitsPair(qsizetype offset) const;
    void copy(TextRange range, char16_t *out) const { m_tree.copy(range, out); }
    [[nodiscard]] QString toString(TextRange range) const;
    [[nodiscard]] QString toString() const { return toString({0, length()}); }
    /// The chunk that holds `offset`, which must be below `length()`.
    [[nodiscard]] Chunk chunkAt(qsizetype offset) const;
    /// Calls `visit` for the chunks that cover `range`, cut to it, until it returns false.
    void forEachChunk(TextRange range, const std::function<bool(const Chunk &)> &visit) const;

    [[nodiscard]] Rope slice(TextRange range) const { return Rope(m_tree.slice(range)); }
    /// `range` must lie in the text. O(log n + text).
    void replace(TextRange range, QStringView text) { m_tree.replace(range, text); }
    /// Shares the leaves of `text`: O(log n) whatever its length.
    void replace(TextRange range, const Rope &text) { m_tree.replace(range, text.m_tree); }
    /// All at once: `edits` are of the text as it is, ascending and apart.
    void replace(std::span<const TextEdit> edits);

    /// Same units; shared leaves are not compared.
    friend bool operator==(const Rope &a, const Rope &b) { return a.m_tree == b.m_tree; }

    /// O(n), for tests and debug builds.
    [[nodiscard]] bool checkInvariants() const { return m_tree.checkInvariants(); }

private:
    friend class RopeBuilder;
    using Tree = TextTree<4096, 32>;

    explicit Rope(Tree tree) : m_tree(std::move(tree)) {}

    Tree m_tree;
};

/// Makes a rope front to back without a second copy of the text. Append in any portions; a pair may be split between two of them.
class RopeBuilder final {
public:
    void append(QStringView text) { m_builder.append(text); }
    /// Shares the leaves of a text that is longer than one of them.
    void append(const Rope &text) { m_builder.append(text.m_tree); }
    /// ISO Latin 1, so plain ASCII too.
    void appendLatin1(const uchar *text, qsizetype length) { m_builder.appendLatin1(text, length); }
    [[nodiscard]] qsizetype length() const { return m_builder.length(); }
    /// Ends the building and leaves the builder empty.
    [[nodiscard]] Rope build() { return Rope(m_builder.build()); }

private:
    Rope::Tree::Builder m_builder;
};

/// Reads a rope by offset; neighbouring offsets cost O(1). The rope must outlive it unchanged.
class RopeCursor final {
public:
    explicit RopeCursor(const Rope &rope) : m_rope(&rope) {}
    /// 0 … length - 1.
    [[nodiscard]] char16_t at(qsizetype offset)
    {
        const qsizetype inChunk = offset - m_chunk.location;
        if (quint64(inChunk) < quint64(m_chunk.length))
            return m_chunk.at(inChunk);
        m_chunk = m_rope->chunkAt(offset);
        return m_chunk.at(offset - m_chunk.location);
    }

private:
    const Rope *m_rope;
    Rope::Chunk m_chunk;
};
