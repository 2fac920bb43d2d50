// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <span>
#include <vector>

struct LanguageRow;
struct SpanRule;
struct TokenRule;

/// What opens something and what closes it: a pair of brackets, a block comment.
struct DelimiterPair {
    QStringView open;
    QStringView close;

    friend bool operator==(const DelimiterPair &, const DelimiterPair &) = default;
};

/// What the editor knows about one language: how its files are recognised, commented, indented and coloured.
///
/// A value that never changes; copies share it, so that copying costs a pointer. Everything may be read from any thread. The expressions
/// are compiled at the first call of `spans()` or `rules()`, all of a language's at once; an expression that does not compile is left out
/// and the others keep their order. What is reached through a Language lives as long as any copy of it does.
class Language final {
public:
    /// Plain text.
    Language();
    /// `row` and all it refers to must outlive every copy; the tables are constants of the program.
    explicit Language(const LanguageRow &row);
    // No moves: a language that was moved from would be none.
    Language(const Language &) = default;
    Language &operator=(const Language &) = default;

    /// The language of whatever is recognised as nothing else: no comments, no rules, indented as the user likes.
    [[nodiscard]] static const Language &plainText();

    /// Lower case; sessions and preferences keep it.
    [[nodiscard]] const QString &id() const;
    /// For menus.
    [[nodiscard]] const QString &name() const;

    /// Without the dot, lower case.
    [[nodiscard]] const QStringList &extensions() const;
    /// Whole names of files, lower case.
    [[nodiscard]] const QStringList &filenames() const;
    /// Patterns that are looked for in a first line that begins with "#!".
    [[nodiscard]] const QStringList &shebangPatterns() const;
    /// Whether one of the shebang patterns is found anywhere in `line`, which the caller knows to begin with "#!".
    [[nodiscard]] bool matchesShebang(QStringView line) const;

    /// What begins a comment that ends with its line; none when the language has no such comments.
    [[nodiscard]] std::optional<QStringView> lineComment() const;
    [[nodiscard]] std::optional<DelimiterPair> blockComment() const;
    [[nodiscard]] std::span<const DelimiterPair> bracketPairs() const;

    /// None where the user's setting counts.
    [[nodiscard]] std::optional<int> defaultIndentWidth() const;
    [[nodiscard]] std::optional<bool> defaultInsertSpaces() const;
    /// Lines that are indented with spaces mean something else, whoever wants them.
    [[nodiscard]] bool needsTabs() const;

    /// By priority, the first goes before all others. Searching changes an expression, so whoever searches clones it.
    [[nodiscard]] const std::vector<SpanRule> &spans() const;
    [[nodiscard]] const std::vector<TokenRule> &rules() const;

    /// Languages are the same when their ids are.
    friend bool operator==(const Language &left, const Language &right) { return left.id() == right.id(); }

private:
    struct Definition;

    [[nodiscard]] const Definition &compiled() const;

    std::shared_ptr<const Definition> m_definition;
};
