// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

class VimMarks;

/// The user's marks beyond one view. Those of a–z are the same in all views of a text. A–Z are places in one of all texts. Whoever has the
/// text in which one was set holds it, and moves it with changes; when that goes, line and column are what is left of it. Main thread only.
class VimFileMarks final {
public:
    struct Place {
        /// VimTextName::lasting()
        QString text;
        /// As it was shown then.
        QString title;
        /// From 1.
        qsizetype line = 1;
        /// UTF-16 units, from 0.
        qsizetype column = 0;
        /// In a private file: forgotten when the program ends.
        bool isPrivate = false;
    };
    struct Mark {
        char16_t name;
        Place place;
    };
    class Holder {
    public:
        /// None when its line was deleted.
        [[nodiscard]] virtual std::optional<Place> heldMark(char16_t name) const = 0;
        /// VimTextName::id; empty for a text that nobody else shows.
        [[nodiscard]] virtual QString heldText() const = 0;
        [[nodiscard]] virtual VimMarks &heldMarks() = 0;

    protected:
        ~Holder() = default;
    };

    [[nodiscard]] static bool isName(char16_t name) { return name >= u'A' && name <= u'Z'; }

    /// `holder` has those of other views of its text from now on, and gives them its own, till release().
    void join(Holder &holder);
    [[nodiscard]] bool isShared(const Holder &holder) const;
    /// Has the mark, one of a–z, in the other views of the text as `holder` has it.
    void share(char16_t name, Holder &holder);
    /// `holder` holds it from now on, till release().
    void set(char16_t name, const Holder &holder);
    void remove(char16_t name);
    /// A place of an earlier run, for a mark that is not set; what is no name is left alone.
    void restore(char16_t name, const Place &place);
    void release(const Holder &holder);
    /// None when nobody does.
    [[nodiscard]] const Holder *holder(char16_t name) const;
    /// None where it is not set.
    [[nodiscard]] std::optional<Place> place(char16_t name) const;
    [[nodiscard]] std::vector<Mark> all() const;
    /// Instead of what it called before; of marks that are set and removed, not of those that move with their text.
    void whenChanged(std::function<void()> action) { m_changed = std::move(action); }

private:
    struct Kept {
        const Holder *holder = nullptr;
        /// Where nobody holds it.
        Place place = {};
    };

    void noteChange() const;

    std::map<char16_t, Kept> m_marks;
    std::vector<Holder *> m_holders;
    std::function<void()> m_changed;
};
