// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimCommandLine.h"

#include "Text/TextBoundaries.h"
#include "Vim/VimRegisters.h"

#include <algorithm>
#include <array>

namespace {

/// Nobody reads more in one line; what comes in from a register is cut there.
constexpr qsizetype longest = 0x10000;

enum class Class { blank, word, other };

Class classOf(QChar unit)
{
    return unit.isSpace() ? Class::blank : unit.isLetterOrNumber() || unit == u'_' || unit.isSurrogate() ? Class::word : Class::other;
}

} // namespace

/// A key with Control.
struct VimCommandLine::ControlRow {
    char16_t key;
    Outcome (VimCommandLine::*function)();

    static const std::array<ControlRow, 5> all;
};

const std::array<VimCommandLine::ControlRow, 5> VimCommandLine::ControlRow::all = {{
    {u'c', &VimCommandLine::leave},
    {u'h', &VimCommandLine::deleteLetter},
    {u'w', &VimCommandLine::deleteWord},
    {u'u', &VimCommandLine::deleteAll},
    {u'r', &VimCommandLine::awaitRegister},
}};

VimCommandLine::Outcome VimCommandLine::handle(const VimKeyEvent &event, const VimRegisters &registers)
{
    const char16_t key = event.charactersIgnoringModifiers.isEmpty() ? 0 : event.charactersIgnoringModifiers.front().unicode();
    if (std::exchange(m_awaitsRegister, false)) {
        put(registers, key);
        return Outcome::goesOn;
    }
    if (event.control && key == u'v') {
        put(registers, u'+');
        return Outcome::goesOn;
    }
    if (event.control) {
        const auto row = std::ranges::find(ControlRow::all, key, &ControlRow::key);
        return row == ControlRow::all.end() ? Outcome::goesOn : (this->*row->function)();
    }
    if (key == VimKey::backspace) {
        return deleteLetter();
    }
    if (event.characters == QChar(u'\r') || event.characters == QChar(u'\n')) {
        return Outcome::isEntered;
    }
    m_text += event.characters;
    return Outcome::goesOn;
}

/// Behind the prefix there is nothing to delete but the line itself.
VimCommandLine::Outcome VimCommandLine::deleteLetter()
{
    if (m_text.isEmpty()) {
        return Outcome::isLeft;
    }
    m_text.truncate(TextBoundaries::previousGrapheme(Rope(m_text), m_text.size()));
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::deleteWord()
{
    const auto chop = [this](Class kind) {
        while (!m_text.isEmpty() && classOf(m_text.back()) == kind) {
            m_text.chop(1);
        }
    };
    chop(Class::blank);
    if (!m_text.isEmpty()) {
        chop(classOf(m_text.back()));
    }
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::deleteAll()
{
    m_text.clear();
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::awaitRegister()
{
    m_awaitsRegister = true;
    return Outcome::goesOn;
}

/// As into any field of one line: a break at the end goes, others become blanks.
void VimCommandLine::put(const VimRegisters &registers, char16_t name)
{
    const Rope text = registers.contents(name == u'"' ? std::nullopt : std::optional(name)).text;
    QString put = text.toString(TextRange{0, std::min(text.length(), longest)});
    if (put.endsWith(u'\n')) {
        put.chop(1);
    }
    m_text += put.replace(u'\n', u' ');
}
