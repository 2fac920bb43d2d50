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

} // namespace

void VimRegisters::set(const VimRegisterContents &contents, std::optional<char16_t> name)
{
    if (name ? isClipboard(*name) : m_preferences.value(Settings::vimSharesClipboard)) {
        writeToClipboard(contents.text);
    }
    m_unnamed = contents;
    if (!name || isClipboard(*name)) {
        return;
    }
    VimRegisterContents &kept = m_named[lowerCase(*name)];
    if (QChar::isUpper(*name)) {
        kept.text.replace({kept.text.length(), 0}, contents.text);
        kept.isLinewise = kept.isLinewise || contents.isLinewise;
    } else {
        kept = contents;
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
    setText(m_pasteboard, text);
    m_lastWrittenChangeCount = m_pasteboard.changeCount();
}

VimRegisterContents VimRegisters::clipboard() const
{
    const QString text = withLineFeeds(m_pasteboard.text());
    return {.text = Rope(text), .isLinewise = text.endsWith(u'\n')};
}
