// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimKeys.h"

namespace {

constexpr char16_t lastControl = 0x1F;
constexpr char16_t control = 0x40;

} // namespace

QString VimKeys::text(const VimKeyEvent &event)
{
    const QString &key = event.charactersIgnoringModifiers;
    if (key.isEmpty()) {
        return {};
    }
    const char16_t unit = key.front().unicode();
    if (event.control && key.size() == 1) {
        const char16_t upper = QChar(unit).toUpper().unicode();
        return upper >= control && upper <= control + lastControl ? QString(QChar(char16_t(upper - control))) : QString();
    }
    if (event.option && key.size() == 1 && unit < 0x80) {
        return QString(QChar(char16_t(alt + unit)));
    }
    return event.characters.isEmpty() ? key : event.characters;
}

VimKeyEvent VimKeys::next(QStringView keys, qsizetype &place)
{
    const qsizetype length = keys[place].isHighSurrogate() && place + 1 < keys.size() ? 2 : 1;
    QString key = keys.sliced(place, length).toString();
    place += length;
    const char16_t unit = key.front().unicode();
    if (unit >= alt && unit < alt + 0x80) {
        return {.characters = {}, .charactersIgnoringModifiers = QString(QChar(char16_t(unit - alt))), .option = true};
    }
    if (unit <= lastControl && unit != VimKey::escape && unit != u'\r' && unit != u'\t') {
        const QChar letter = QChar(char16_t(unit + control)).toLower();
        return {.characters = {}, .charactersIgnoringModifiers = QString(letter), .control = true};
    }
    return {.characters = VimKey::isNamed(unit) ? QString() : key, .charactersIgnoringModifiers = key};
}
