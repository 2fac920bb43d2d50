// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimCommandLine.h"

#include "Text/TextBoundaries.h"
#include "Vim/VimBuffer.h"
#include "Vim/VimRegisters.h"

#include <algorithm>
#include <array>

namespace {

/// Nobody reads more in one line; what comes in from a register is cut there.
constexpr qsizetype longest = 0x10000;

} // namespace

/// A key with Control.
struct VimCommandLine::ControlRow {
    char16_t key;
    Outcome (VimCommandLine::*function)(const VimRegisters &registers);

    static const std::array<ControlRow, 6> all;
};

const std::array<VimCommandLine::ControlRow, 6> VimCommandLine::ControlRow::all = {{
    {u'c', &VimCommandLine::leave},
    {u'h', &VimCommandLine::deleteLetter},
    {u'w', &VimCommandLine::deleteWord},
    {u'u', &VimCommandLine::deleteAll},
    {u'r', &VimCommandLine::awaitRegister},
    {u'v', &VimCommandLine::paste},
}};

VimCommandLine::Outcome VimCommandLine::handle(const VimKeyEvent &event, const VimRegisters &registers)
{
    const char16_t key = event.charactersIgnoringModifiers.isEmpty() ? 0 : event.charactersIgnoringModifiers.front().unicode();
    if (std::exchange(m_awaitsRegister, false)) {
        put(registers, key);
        return Outcome::goesOn;
    }
    if (event.control) {
        const auto row = std::ranges::find(ControlRow::all, key, &ControlRow::key);
        return row == ControlRow::all.end() ? Outcome::goesOn : (this->*row->function)(registers);
    }
    if (key == VimKey::backspace) {
        return deleteLetter(registers);
    }
    if (event.characters == QChar(u'\r') || event.characters == QChar(u'\n')) {
        return Outcome::isEntered;
    }
    m_text += event.characters;
    return Outcome::goesOn;
}

/// Behind the prefix there is nothing to delete but the line itself.
VimCommandLine::Outcome VimCommandLine::deleteLetter(const VimRegisters & /*registers*/)
{
    if (m_text.isEmpty()) {
        return Outcome::isLeft;
    }
    m_text.truncate(TextBoundaries::previousGrapheme(Rope(m_text), m_text.size()));
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::deleteWord(const VimRegisters & /*registers*/)
{
    using Class = VimBuffer::CharacterClass;
    const auto last = [this] { return VimBuffer::classOf(m_text.back().unicode()); };
    const auto chop = [&](Class kind) {
        while (!m_text.isEmpty() && last() == kind) {
            m_text.chop(1);
        }
    };
    chop(Class::blank);
    if (!m_text.isEmpty()) {
        chop(last());
    }
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::deleteAll(const VimRegisters & /*registers*/)
{
    m_text.clear();
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::awaitRegister(const VimRegisters & /*registers*/)
{
    m_awaitsRegister = true;
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::paste(const VimRegisters &registers)
{
    put(registers, u'+');
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
