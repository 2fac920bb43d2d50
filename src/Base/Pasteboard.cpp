// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/Pasteboard.h"

#include <utility>

namespace {

Pasteboard::Provider providerOf(const QString &text)
{
    return [text] { return text; };
}

} // namespace

QString MemoryPasteboard::text() const
{
    return m_text ? m_text() : QString();
}

void MemoryPasteboard::setText(const QString &text)
{
    setLazyText(providerOf(text));
}

void MemoryPasteboard::setLazyText(Provider provider)
{
    m_text = std::move(provider);
    ++m_changeCount;
}

void MemoryPasteboard::setPrimary(Provider provider)
{
    if (supportsPrimary()) {
        m_primary = std::move(provider);
        m_ownsPrimary = true;
    }
}

QString MemoryPasteboard::primaryText() const
{
    return m_primary ? m_primary() : QString();
}

void MemoryPasteboard::setPrimaryFromElsewhere(const QString &text)
{
    setPrimary(providerOf(text));
    m_ownsPrimary = false;
}

void MemoryPasteboard::clear()
{
    m_text = nullptr;
    ++m_changeCount;
}
