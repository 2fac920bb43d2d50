// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <variant>
#include <vector>

/// A key of the keyboard with what it types.
struct KeyPress {
    Qt::Key key = Qt::Key_unknown;
    Qt::KeyboardModifiers modifiers = {};
    QString text = {};

    friend bool operator==(const KeyPress &, const KeyPress &) = default;
};

/// An action that goes up the responder chain, by its name.
struct ActionWord {
    QByteArray name;
};

struct WaitWord {
    int milliseconds = 0;
};

using KeyWord = std::variant<KeyPress, ActionWord, WaitWord>;

/// Keys as Vim users write them: every character is that key, `<Esc>`, `<CR>`, `<S-Tab>`, `<C-x>`, `<A-x>` and the like are named ones,
/// `<Cmd:save:>` is an action and `<Wait:50>` a pause. None when something in angle brackets is none of these.
[[nodiscard]] std::optional<std::vector<KeyWord>> parseKeyWords(const QString &keys);
