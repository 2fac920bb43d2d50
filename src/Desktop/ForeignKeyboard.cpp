// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/ForeignKeyboard.h"

#include <QKeyEvent>

#include <array>

namespace {

/// By the kernel's key codes, which X and Wayland pass on with 8 added.
struct Row {
    quint32 firstCode;
    QStringView plain;
    QStringView shifted;
};
constexpr auto rows = std::to_array<Row>({
    {2, u"1234567890-=", u"!@#$%^&*()_+"},
    {16, u"qwertyuiop[]", u"QWERTYUIOP{}"},
    {30, u"asdfghjkl;'`", u"ASDFGHJKL:\"~"},
    {43, u"\\zxcvbnm,./", u"|ZXCVBNM<>?"},
});
constexpr quint32 codeOffset = 8;

bool isLatinLetter(quint32 symbol)
{
    return (symbol >= 'A' && symbol <= 'Z') || (symbol >= 'a' && symbol <= 'z');
}

/// As X and Wayland number what keys write: in a chord the text is what the toolkit has made of it.
bool isForeignSymbol(quint32 symbol)
{
    // Kana, Arabic, Cyrillic, Greek, Hebrew, Thai and Korean.
    static constexpr auto sets = std::to_array<quint32>({0x04, 0x05, 0x06, 0x07, 0x0c, 0x0d, 0x0e});
    constexpr quint32 firstOfUnicode = 0x0100'0100;
    constexpr quint32 unicodeBase = 0x0100'0000;
    return std::ranges::find(sets, symbol >> 8U) != sets.end() || (symbol >= firstOfUnicode && QChar::isLetter(symbol - unicodeBase) &&
                                                                   QChar::script(symbol - unicodeBase) != QChar::Script_Latin);
}

bool isForeignLetter(const QString &text)
{
    return !text.isEmpty() && text.front().isLetter() && text.front().script() != QChar::Script_Latin;
}

} // namespace

/// X tells which of the user's layouts a key comes from in two bits of its modifiers.
size_t ForeignKeyboard::layoutOf(const QKeyEvent &event)
{
    constexpr int layoutShift = 13;
    return (event.nativeModifiers() >> layoutShift) % mostLayouts;
}

void ForeignKeyboard::note(const QKeyEvent &event)
{
    const QString text = event.text();
    const quint32 symbol = event.nativeVirtualKey();
    if (isForeignLetter(text) || isForeignSymbol(symbol)) {
        m_writesForeign[layoutOf(event)] = true;
    } else if ((!text.isEmpty() && text.front().isLetter()) || isLatinLetter(symbol)) {
        m_writesForeign[layoutOf(event)] = false;
    }
}

bool ForeignKeyboard::wrote(const QKeyEvent &event) const
{
    return m_writesForeign[layoutOf(event)];
}

std::optional<ForeignKeyboard::Signs> ForeignKeyboard::signsInPlaceOf(const QKeyEvent &event)
{
    if (event.nativeScanCode() < codeOffset) {
        return {};
    }
    const quint32 code = event.nativeScanCode() - codeOffset;
    for (const Row &row : rows) {
        if (code >= row.firstCode && code - row.firstCode < quint32(row.plain.size())) {
            const auto place = qsizetype(code - row.firstCode);
            return Signs{row.plain[place].unicode(), row.shifted[place].unicode()};
        }
    }
    return {};
}

std::optional<QString> ForeignKeyboard::textInPlaceOf(const QKeyEvent &event)
{
    const auto signs = signsInPlaceOf(event);
    if (!signs) {
        return {};
    }
    const QString text = event.text();
    const bool followsLock = signs->isLetter() && !text.isEmpty() && text.front().isLetter();
    const bool isShifted = followsLock ? text.front().isUpper() : event.modifiers().testFlag(Qt::ShiftModifier);
    return QString(QChar(isShifted ? signs->shifted : signs->plain));
}
