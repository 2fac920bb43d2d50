// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimRegisters.h"

#include "Base/Pasteboard.h"
#include "Settings/Preferences.h"
#include "Text/PasteboardText.h"

#include <QChar>

namespace {

char16_t lowerCase(char16_t name)
{
    return char16_t(QChar::toLower(name));
}

bool isClipboard(char16_t name)
{
    return name == u'+' || name == u'*';
}

void append(const VimRegisterContents &contents, VimRegisterContents &kept)
{
    // Whole lines stay whole.
    if (kept.isLinewise || contents.isLinewise) {
        if (kept.text.at(kept.text.length() - 1) != u'\n') {
            kept.text.replace({kept.text.length(), 0}, u"\n");
        }
        kept.isLinewise = true;
        kept.isBlock = false;
    }
    kept.text.replace({kept.text.length(), 0}, contents.text);
    if (kept.isLinewise && kept.text.at(kept.text.length() - 1) != u'\n') {
        kept.text.replace({kept.text.length(), 0}, u"\n");
    }
}

void continueLastLine(const Rope &text, Rope &kept)
{
    const bool isWhole = kept.at(kept.length() - 1) == u'\n';
    kept.replace({kept.length() - (isWhole ? 1 : 0), 0}, text);
}

} // namespace

bool VimRegisters::isExactName(char16_t key)
{
    return (key < 0x80 && QChar::isLetterOrNumber(key)) || QStringView(u"\"-_+*.:%#/").contains(key);
}

void VimRegisters::set(const VimRegisterContents &contents, std::optional<char16_t> name)
{
    if (name ? isClipboard(*name) : m_preferences.value(Settings::vimSharesClipboard)) {
        writeToClipboard(contents.text);
    }
    m_unnamed = contents;
    m_unnamedName.reset();
    noteChange();
    if (!name || isClipboard(*name)) {
        return;
    }
    VimRegisterContents &kept = m_named[lowerCase(*name)];
    if (QChar::isUpper(*name)) {
        kept.text.replace({kept.text.length(), 0}, contents.text);
        kept.isLinewise = kept.isLinewise || contents.isLinewise;
        kept.isPrivate = kept.isPrivate || contents.isPrivate;
    } else {
        kept = contents;
    }
}

void VimRegisters::keep(const VimRegisterContents &contents, std::optional<char16_t> wanted, Taken taken)
{
    const auto name = wanted == u'"' ? std::optional(u'0') : wanted;
    if (name == u'_') {
        return;
    }
    if (name && !isClipboard(*name)) {
        store(contents, *name, Appending::lines);
    } else if (name || m_preferences.value(Settings::vimSharesClipboard)) {
        writeToClipboard(contents.text);
    }
    m_unnamedName = name && !isClipboard(*name) ? std::optional(lowerCase(*name)) : std::nullopt;
    m_unnamed = m_unnamedName ? m_named[*m_unnamedName] : contents;
    if (taken == Taken::removedLines || taken == Taken::removedFar) {
        for (char16_t number = u'9'; number > u'1'; --number) {
            const auto before = m_named.find(char16_t(number - 1));
            if (before == m_named.end()) {
                m_named.erase(number);
            } else {
                m_named[number] = before->second;
            }
        }
        m_named[u'1'] = contents;
        if (name && !QChar::isUpper(*name)) {
            m_unnamedName.reset();
        }
    }
    if (taken != Taken::removedLines && !name) {
        m_named[taken == Taken::yanked ? u'0' : u'-'] = contents;
    }
    noteChange();
}

void VimRegisters::store(const VimRegisterContents &contents, char16_t name)
{
    store(contents, name, Appending::characters);
}

void VimRegisters::store(const VimRegisterContents &contents, char16_t name, Appending appending)
{
    noteChange();
    VimRegisterContents &kept = m_named[lowerCase(name)];
    if (QChar::isUpper(name) && !kept.text.isEmpty()) {
        kept.isPrivate = kept.isPrivate || contents.isPrivate;
        if (appending == Appending::characters && !contents.isLinewise) {
            continueLastLine(contents.text, kept.text);
        } else {
            append(contents, kept);
        }
    } else {
        kept = contents;
    }
    if (m_unnamedName == lowerCase(name)) {
        m_unnamed = kept;
    }
}

void VimRegisters::restore(char16_t name, const VimRegisterContents &contents)
{
    if (VimRegisterContents &kept = name == unnamedName ? m_unnamed : m_named[lowerCase(name)]; kept.text.isEmpty()) {
        kept = contents;
    }
}

void VimRegisters::noteChange() const
{
    if (m_changed) {
        m_changed();
    }
}

VimRegisterContents VimRegisters::contents(std::optional<char16_t> name) const
{
    if (!name) {
        const bool isOthers = m_preferences.value(Settings::vimSharesClipboard) && m_pasteboard.changeCount() != m_lastWrittenChangeCount;
        return isOthers ? clipboard() : m_unnamed;
    }
    if (isClipboard(*name)) {
        return clipboard();
    }
    const auto kept = m_named.find(lowerCase(*name));
    return kept == m_named.end() ? VimRegisterContents() : kept->second;
}

void VimRegisters::writeToClipboard(const Rope &text)
{
    if (text.isEmpty()) {
        return;
    }
    ::setText(m_pasteboard, text);
    m_lastWrittenChangeCount = m_pasteboard.changeCount();
}

VimRegisterContents VimRegisters::clipboard() const
{
    const QString text = withLineFeeds(m_pasteboard.text());
    return {.text = Rope(text), .isLinewise = text.endsWith(u'\n')};
}
