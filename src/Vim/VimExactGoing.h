// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimExactPart.h"

#include <functional>

/// Where the caret goes that is no motion of the text alone: marks, jumps, searches, the screen.
class VimEngine::Going final : public ExactPart {
public:
    using ExactPart::ExactPart;

    void go(VimExactMotion::Motion motion);
    void find(QStringView key, VimMotion::FindKind kind);
    void findAgain(bool isReversed);
    void toVisibleLine(VisibleLine line);
    void scrollHalf(qsizetype direction);
    void scrollPage(qsizetype direction, qsizetype count);
    void scrollRows(qsizetype rows);
    void reveal(std::optional<VimTextView::Edge> edge, bool toFirstNonBlank);
    /// By rows of the screen, of which a line that is wrapped has several.
    void goRows(qsizetype rows);
    enum class RowEdge { start, firstNonBlank, end };
    void toRowEdge(RowEdge edge);
    void toMark(char16_t name, bool isExact);
    void setMark(char16_t name);
    /// The one before, or of the tab with the count for its number.
    void toOtherText();
    void jump(bool isOlder, qsizetype count);
    void toChange(bool isOlder, qsizetype count);
    void search(const QString &typed, SearchDirection direction);
    void searchAgain(bool isReversed);
    void searchWord(SearchDirection direction, bool isWhole);
    /// To where the word is first named, which is not in a comment.
    enum class Scope { function, text };
    void toDeclaration(Scope scope);
    /// From where it is about to be left by a jump.
    void rememberJump();
    /// Before a text object is looked for, of which brackets are jumps.
    void rememberObject(char16_t key);

private:
    /// Where a search leads from a place in a text, if it does within so many units.
    using Route =
        std::function<std::optional<VimSearchMove>(const Rope &text, qsizetype from, const std::stop_token &stop, qsizetype most)>;
    void seek(qsizetype from, const VimSearch &search, const Route &route);
    void arriveAtHit(const VimSearchMove &move);
    void say(const QString &message);

    /// Lines of Control-D and Control-U; 0 for half of the screen.
    qsizetype m_scroll = 0;
    /// Where rows of the screen led, and what is kept for the next one.
    VimTextView::RowPlace m_row;
    struct LastFind {
        char32_t character;
        VimMotion::FindKind kind;
    };
    std::optional<LastFind> m_last;
};
