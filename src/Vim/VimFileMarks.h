// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <map>
#include <optional>
#include <vector>

/// The marks A–Z, each a place in one of all texts, as long as the process runs. Whoever has the text in which one was set holds it, and
/// moves it with changes; when that goes, line and column are what is left of it. Main thread only.
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
    };
    struct Mark {
        char16_t name;
        Place place;
    };
    class Holder {
    public:
        /// None when its line was deleted.
        [[nodiscard]] virtual std::optional<Place> heldMark(char16_t name) const = 0;

    protected:
        ~Holder() = default;
    };

    [[nodiscard]] static bool isName(char16_t name) { return name >= u'A' && name <= u'Z'; }

    /// `holder` holds it from now on, till release().
    void set(char16_t name, const Holder &holder);
    void remove(char16_t name) { m_marks.erase(name); }
    void release(const Holder &holder);
    /// None when nobody does.
    [[nodiscard]] const Holder *holder(char16_t name) const;
    /// None where it is not set.
    [[nodiscard]] std::optional<Place> place(char16_t name) const;
    [[nodiscard]] std::vector<Mark> all() const;

private:
    struct Kept {
        const Holder *holder = nullptr;
        /// Where nobody holds it.
        Place place = {};
    };

    std::map<char16_t, Kept> m_marks;
};
