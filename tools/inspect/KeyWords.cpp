// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "KeyWords.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

struct NamedKey {
    QLatin1StringView name;
    Qt::Key key;
    QLatin1StringView text = {};
};

constexpr auto namedKeys = std::to_array<NamedKey>({
    {"Esc"_L1, Qt::Key_Escape, "\x1B"_L1},
    {"CR"_L1, Qt::Key_Return, "\r"_L1},
    {"BS"_L1, Qt::Key_Backspace, "\b"_L1},
    {"Tab"_L1, Qt::Key_Tab, "\t"_L1},
    {"Del"_L1, Qt::Key_Delete, "\x7F"_L1},
    {"Left"_L1, Qt::Key_Left},
    {"Right"_L1, Qt::Key_Right},
    {"Up"_L1, Qt::Key_Up},
    {"Down"_L1, Qt::Key_Down},
    {"Home"_L1, Qt::Key_Home},
    {"End"_L1, Qt::Key_End},
    {"PageUp"_L1, Qt::Key_PageUp},
    {"PageDown"_L1, Qt::Key_PageDown},
    {"Space"_L1, Qt::Key_Space, " "_L1},
    {"lt"_L1, Qt::Key_Less, "<"_L1},
});

KeyPress keyOf(const QString &character)
{
    const QChar first = character.front();
    if (first == u'\n') {
        return {Qt::Key_Return, {}, u"\r"_s};
    }
    KeyPress press{.text = character};
    if (character.size() == 1) {
        press.key = Qt::Key(first.toUpper().unicode());
        press.modifiers = first.isUpper() ? Qt::ShiftModifier : Qt::NoModifier;
    }
    return press;
}

/// What Control and a letter type.
QString controlText(const KeyPress &press)
{
    const int code = int(press.key);
    return code >= '@' && code <= '_' ? QString(QChar(code - '@')) : press.text;
}

std::optional<KeyPress> chord(QStringView word)
{
    Qt::KeyboardModifiers modifiers;
    while (word.size() > 2 && word[1] == u'-') {
        switch (word[0].unicode()) {
        case u'C':
            modifiers |= Qt::ControlModifier;
            break;
        case u'S':
            modifiers |= Qt::ShiftModifier;
            break;
        case u'A':
            modifiers |= Qt::AltModifier;
            break;
        default:
            return std::nullopt;
        }
        word = word.sliced(2);
    }
    KeyPress press;
    if (const auto *named = std::ranges::find_if(namedKeys, [word](const NamedKey &row) { return row.name == word; });
        named != namedKeys.end()) {
        press = KeyPress{.key = named->key, .text = QString(named->text)};
    } else if (word.size() == 1 && modifiers) {
        press = keyOf(word.toString());
    } else {
        return std::nullopt;
    }
    press.modifiers |= modifiers;
    if (press.key == Qt::Key_Tab && modifiers.testFlag(Qt::ShiftModifier)) {
        press.key = Qt::Key_Backtab;
    }
    if (modifiers.testFlag(Qt::ControlModifier)) {
        press.text = controlText(press);
    }
    return press;
}

std::optional<KeyWord> wordOf(QStringView word)
{
    constexpr auto action = u"Cmd:";
    constexpr auto wait = u"Wait:";
    if (word.startsWith(action)) {
        return ActionWord{word.sliced(4).toUtf8()};
    }
    if (word.startsWith(wait)) {
        bool isNumber = false;
        const int milliseconds = word.sliced(5).toInt(&isNumber);
        return isNumber && milliseconds >= 0 ? std::optional<KeyWord>(WaitWord{milliseconds}) : std::nullopt;
    }
    const auto press = chord(word);
    return press ? std::optional<KeyWord>(*press) : std::nullopt;
}

} // namespace

std::optional<std::vector<KeyWord>> parseKeyWords(const QString &keys)
{
    std::vector<KeyWord> words;
    for (qsizetype at = 0; at < keys.size();) {
        const qsizetype end = keys[at] == u'<' ? keys.indexOf(u'>', at) : -1;
        if (keys[at] == u'<') {
            const auto word = end < 0 ? std::nullopt : wordOf(QStringView(keys).sliced(at + 1, end - at - 1));
            if (!word) {
                return std::nullopt;
            }
            words.push_back(*word);
            at = end + 1;
            continue;
        }
        const bool isPair = keys[at].isHighSurrogate() && at + 1 < keys.size();
        words.emplace_back(keyOf(keys.mid(at, isPair ? 2 : 1)));
        at += isPair ? 2 : 1;
    }
    return words;
}
