// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimPlaces.h"

#include <QtGlobal>

#include <map>
#include <utility>

class VimMarkedLines;

/// The marks of one text: a–z and A–Z, which the user sets, and ' [ ] < > ^ . " which follow what is done. ` is ' as well. Offsets are
/// UTF-16 units. A value.
class VimMarks final {
public:
    struct Mark {
        char16_t name;
        qsizetype place;
    };

    /// Whether there can be a mark of that name.
    [[nodiscard]] static bool isName(char16_t name);
    /// Whether it is the user who sets it.
    [[nodiscard]] static bool isUsers(char16_t name);

    /// None where it is not set, or went with its line.
    [[nodiscard]] std::optional<qsizetype> place(char16_t name) const;
    /// What is no name is left alone.
    void set(char16_t name, const VimPlace &place);
    void set(char16_t name, qsizetype place) { set(name, VimPlace{.offset = place}); }
    /// Has ' at `place`, from where a command leads the caret somewhere; arrive() says when it is done.
    void leave(qsizetype place);
    /// At the same place, or without the line that was left, nobody went anywhere: ' is where it was before.
    void arrive(qsizetype caret);
    void remove(char16_t name);
    /// Of a–z, as `:delmarks!` does.
    void deleteAll();
    /// A mark goes with its line; those of lines that are deleted are gone.
    void follow(const TextChange &change, VimPlace::Kind kind = VimPlace::Kind::change);
    /// In Vim's order.
    [[nodiscard]] std::vector<Mark> all() const;

    /// What began at `start` was joined to a line before, however it looks: followed lines leave it out.
    void noteJoined(qsizetype start);

    /// While it lives, `lines` follow changes as well. Both must outlive it.
    class Following final {
    public:
        Following(VimMarks &marks, VimMarkedLines &lines) : m_marks(marks), m_before(std::exchange(marks.m_lines, &lines)) {}
        ~Following() { m_marks.m_lines = m_before; }
        Q_DISABLE_COPY_MOVE(Following)

    private:
        VimMarks &m_marks;
        VimMarkedLines *m_before;
    };

private:
    std::map<char16_t, VimPlace> m_places;
    /// Of the mark ', while a command goes on; none where that was not set.
    std::optional<VimPlace> m_leftBefore;
    VimMarkedLines *m_lines = nullptr;
};
