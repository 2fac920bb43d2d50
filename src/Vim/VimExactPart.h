// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

// What the engine does exactly as Vim is done by parts that share its keys and counts; VimExact.h has them all. Private to the sources of
// the engine. Positions are UTF-16 units. Main thread only.

#include "Vim/VimEngine.h"
#include "Vim/VimExactMotion.h"
#include "Vim/VimLines.h"

/// What all parts have: the text as Vim sees it, the caret, and how a command ends.
class VimEngine::ExactPart {
public:
    explicit ExactPart(Exact &exact);

protected:
    /// The text as it is now, to be looked at until the next change.
    struct Sight {
        Sight(const Rope &text, int tabWidth, VimLines::LastLine last) : lines(text, tabWidth, last) {}
        Q_DISABLE_COPY_MOVE(Sight)

        VimLines lines;
    };
    enum class Repeatable { no, yes };
    struct Form {
        int tabWidth;
        VimLines::LastLine last;
    };

    [[nodiscard]] Form form() const;
    [[nodiscard]] Sight see() const;
    /// What `function` makes of the lines of the text, on a worker where it is about much of it; none when the user has stopped it, or when
    /// the text is another one by then.
    template<class Function>
    [[nodiscard]] auto computed(TextRange about, Function function)
    {
        const Rope before = text();
        const auto make = [form = form(), function = std::move(function)](const Rope &rope, const std::stop_token & /*stop*/) {
            return function(VimLines(rope, form.tabWidth, form.last));
        };
        auto made = m_engine.m_view.computed(before, about.length, make);
        if (!(text() == before)) {
            made.reset();
        }
        return made;
    }
    [[nodiscard]] const Rope &text() const;
    [[nodiscard]] qsizetype caret() const;
    /// On a character where the mode wants one; the other end of a selection stays. `column` is to be kept for the next `j`.
    void setCaret(qsizetype place, std::optional<qsizetype> column = std::nullopt);
    bool edit(const TextEdits &edits);
    bool edit(TextRange range, QStringView text) { return edit(TextEdits(range, text)); }
    /// What was typed is done.
    void finish(Repeatable repeatable = Repeatable::no);
    /// It came to nothing: macros stop.
    void fail();
    [[nodiscard]] VimExactMotion::Request request(const Sight &sight) const;

    VimEngine &m_engine;
    Exact &m_exact;
};
