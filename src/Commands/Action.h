// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <span>
#include <string_view>

/// A command: what it is called, its keys, its symbol, wherever it is offered. All of them are in Actions.h; what it does is said by the
/// responders that carry it out, and by no other.
struct Action {
    /// Its name for tools and tests. Commands that one function carries out have one name and are told apart by the tag.
    std::string_view id;
    /// English, the key of the language tables; "%d" stands for the tag. Null for what no menu offers.
    const char16_t *title = nullptr;
    /// As QKeySequence reads them, several with "; " between; empty for none. The first is shown.
    const char *keys = "";
    /// For toolbars; empty for none.
    const char *symbol = "";
    int tag = 0;
    /// Is shown as on or off.
    bool isCheckable = false;
    /// A sentence for tool tips, English as well, where the title does not say it all; null for none.
    const char16_t *help = nullptr;

    [[nodiscard]] constexpr bool isNamedLike(const Action &other) const { return id == other.id; }
    [[nodiscard]] QString name() const { return QString::fromLatin1(id.data(), qsizetype(id.size())); }
};

struct MenuLayout;

/// What stands in one place of a menu.
struct MenuRow {
    enum class Kind {
        item,
        /// Between two groups; none where one of them is empty.
        separator,
        submenu,
        languages,
        themes,
        recentDocuments,
        openDocuments,
        /// What this desktop has no use for: a command that is known and not shown.
        unavailable,
    };

    constexpr MenuRow(const Action &item, Kind rowKind = Kind::item) : kind(rowKind), action(&item) {}
    constexpr MenuRow(const MenuLayout &menu) : kind(Kind::submenu), submenu(&menu) {}
    constexpr explicit MenuRow(Kind rowKind) : kind(rowKind) {}

    Kind kind;
    /// Of all but separators and submenus.
    const Action *action = nullptr;
    const MenuLayout *submenu = nullptr;
};

struct MenuLayout {
    /// English, the key of the language tables.
    const char16_t *title;
    std::span<const MenuRow> rows;
};
