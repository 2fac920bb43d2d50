// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LineEditing.h"
#include "Vim/VimRunning.h"

#include <QStringList>

#include <functional>
#include <optional>
#include <stop_token>
#include <vector>

struct Action;

/// How the caret looks.
enum class VimCaret { bar, block, underline };

/// What goes before the caret while text is typed.
enum class VimDeletion { letter, word, toLineStart };

/// Of a text.
struct VimTextName {
    /// Of its file, absolute; empty while it has none.
    QString path;
    /// As its tab shows it.
    QString title;
    /// Of no other text of the process.
    QString id;
    /// It has changes that its file has not.
    bool isUnsaved = false;
    /// Another program has changed the file since, and what is to become of that has not been said.
    bool isInConflict = false;

    /// What a place in it is kept by: the file may be opened again.
    [[nodiscard]] const QString &lasting() const { return path.isEmpty() ? id : path; }
};

/// Words that may come in place of the one before the caret, to be seen beside it.
struct VimOffer {
    /// Where that word begins; UTF-16 units. None for one in a command line.
    std::optional<qsizetype> place;
    QStringList words;
    /// None while what was typed stands there.
    std::optional<qsizetype> chosen;

    friend bool operator==(const VimOffer &, const VimOffer &) = default;
};

/// What the modal editing of a text needs of the view that shows it. Offsets are UTF-16 units.
class VimTextView : public VimRunning {
public:
    [[nodiscard]] virtual const Rope &text() const = 0;
    [[nodiscard]] virtual VimTextName name() const = 0;
    [[nodiscard]] virtual TextRange selectedRange() const = 0;
    /// Selects, and shows the caret at `caret`, one of the ends of `range` or the character before its end.
    virtual void select(TextRange range, qsizetype caret) = 0;

    /// Several stretches at once, ascending and apart, of which `primary` has the caret, which alone is shown; or places where text is
    /// typed, each with a caret, while there is no `caret`.
    virtual void selectSeveral(const std::vector<TextRange> &ranges, size_t primary, std::optional<qsizetype> caret = std::nullopt) = 0;

    /// One change of the text. False when it was refused.
    virtual bool apply(const TextEdits &edits) = 0;
    /// As if it had been typed over the selection.
    virtual void insertText(const QString &text) = 0;
    /// Over the selection, as it is.
    virtual void putText(const QString &text) = 0;
    /// As the view's own keys do it.
    virtual void deleteBackward(VimDeletion what) = 0;
    virtual void undo() = 0;
    virtual void redo() = 0;
    /// Steps that can be undone.
    [[nodiscard]] virtual qsizetype undoSteps() const = 0;
    /// Changes till the end are one step of undo. Calls nest.
    virtual void beginUndoGroup() = 0;
    virtual void endUndoGroup() = 0;

    /// Lines that fit on the screen, at least 1.
    [[nodiscard]] virtual qsizetype visibleLineCount() const = 0;
    /// From the first to the last unit that is seen.
    [[nodiscard]] virtual TextRange visibleRange() const = 0;
    virtual void centerSelection() = 0;
    virtual void revealSelection() = 0;
    /// The caret's line comes to an edge of the screen, as far as it can.
    enum class Edge { top, bottom };
    virtual void revealAt(Edge edge) = 0;
    /// A place in a row of the screen, of which a line that is wrapped has several.
    struct RowPlace {
        qsizetype place = 0;
        /// Pixels along the row, to be kept from one row to the next.
        std::optional<double> x = std::nullopt;
    };
    /// So many rows down, or up when negative, as far as there are rows; none when there is not one.
    [[nodiscard]] virtual std::optional<RowPlace> movedByRows(const RowPlace &from, qsizetype rows) const = 0;
    /// The row that has the character at `place`, without a line break.
    [[nodiscard]] virtual TextRange rowAt(qsizetype place) const = 0;
    /// Moves what is seen by so many rows; the caret stays where it is.
    virtual void scrollRows(qsizetype rows) = 0;
    /// Looks for a hit; any thread.
    using Seeking = std::function<std::optional<TextRange>(const std::stop_token &stop)>;
    /// Has a hit looked for on a worker, and calls `arrive` with it, unless the caret is moved or the user stops it by then. Keys that come
    /// meanwhile are handled after that. `prepare` is called for the text as it is, and once more when that is another by then.
    virtual void seek(std::function<Seeking()> prepare, std::function<void(TextRange hit)> arrive) = 0;
    /// Draws the eye to a search's hit.
    virtual void showIndicator(TextRange range) = 0;

    [[nodiscard]] virtual Indentation indentation() const = 0;
    virtual void toggleComment() = 0;
    virtual void setCaretLook(VimCaret look) = 0;
    /// Other texts that are open, for words in them.
    [[nodiscard]] virtual std::vector<Rope> otherTexts() const = 0;
    /// Until the next call; none takes it back.
    virtual void showOffer(const std::optional<VimOffer> &offer) = 0;
    /// Up the responder chain.
    virtual void perform(const Action &action) = 0;
    virtual void beep() = 0;

protected:
    ~VimTextView() = default;
};
