// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Highlighting/BracketSearch.h"
#include "Text/CaretEditing.h"
#include "Text/LineEditing.h"
#include "Text/PairTyping.h"

#include <QObject>

class EditorTextView;

/// Completes brackets and quotes while they are typed, at every caret by itself: those of the view's language, in plain text brackets and
/// double quotes. Nothing is completed in what the language takes for a comment or a string.
///
/// A closing one that was written with its opening one is typed over as long as the caret has not left the two; any other is text.
/// Main thread only.
class AutoPairs final : public QObject {
public:
    /// Nobody asks for the scopes of more text at one key. At carets beyond nothing is completed.
    static constexpr qsizetype mostScoped = qsizetype(512) * 1024;

    /// `view`, and what `scopesOf` refers to, must outlive it.
    AutoPairs(EditorTextView &view, BracketSearch::Scopes scopesOf);

    /// Types `text`; false, and nothing is done, where there is nothing else to do than for any other text.
    bool type(QStringView text);
    /// Deletes backwards: both of an empty pair around a caret, otherwise as far as `otherEnd` says.
    [[nodiscard]] CaretStep removed(const std::function<qsizetype(const CaretSelection &)> &otherEnd);
    /// Breaks lines: where the caret is between two brackets so that they have a line between them, otherwise as `otherwise` does.
    [[nodiscard]] CaretStep broken(Indentation indentation, const std::function<TextStep(TextRange)> &otherwise);

private:
    /// Both as they were written, in the text as it is now.
    struct Pair {
        qsizetype opening = 0;
        qsizetype closing = 0;
    };

    void beginKey();
    [[nodiscard]] std::optional<TextStep> stepAt(const CaretSelection &one, char16_t typed);
    [[nodiscard]] bool isWritten(qsizetype closing, char16_t typed) const;
    [[nodiscard]] bool isCode(qsizetype offset);
    [[nodiscard]] bool endsOpen(qsizetype offset, BracketSearch::Kind kind) const;
    void follow(const TextChange &change);
    void forgetLeft();

    EditorTextView &m_view;
    BracketSearch::Scopes m_scopes;
    /// Whose pairs these are.
    Language m_language;
    TypingPairs m_pairs;
    /// By where they close.
    std::vector<Pair> m_written;

    // During one key.
    std::optional<OpenQuotes> m_quotes;
    TextRange m_scoped;
    qsizetype m_unitsScoped = 0;
};
