// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/SystemPasteboard.h"

#include "Desktop/LazyTextMimeData.h"

#include <QClipboard>
#include <QGuiApplication>

#include <utility>

SystemPasteboard::SystemPasteboard() : m_clipboard(QGuiApplication::clipboard())
{
    connect(m_clipboard, &QClipboard::dataChanged, this, &SystemPasteboard::noticeChange);
}

QString SystemPasteboard::text() const
{
    return m_clipboard->text(QClipboard::Clipboard);
}

bool SystemPasteboard::hasText() const
{
    if (m_askedAt != m_changeCount) {
        m_askedAt = m_changeCount;
        const QMimeData *data = m_clipboard->mimeData(QClipboard::Clipboard);
        m_hasText = data && data->hasText();
    }
    return m_hasText;
}

void SystemPasteboard::setText(const QString &text)
{
    setLazyText([text] { return text; });
}

void SystemPasteboard::setLazyText(Provider provider)
{
    ++m_changeCount;
    auto *data = new LazyTextMimeData(std::move(provider));
    m_own = data;
    m_clipboard->setMimeData(data, QClipboard::Clipboard);
}

bool SystemPasteboard::supportsPrimary() const
{
    return m_clipboard->supportsSelection();
}

void SystemPasteboard::setPrimary(Provider provider)
{
    if (supportsPrimary()) {
        m_clipboard->setMimeData(new LazyTextMimeData(std::move(provider)), QClipboard::Selection);
    }
}

QString SystemPasteboard::primaryText() const
{
    return supportsPrimary() ? m_clipboard->text(QClipboard::Selection) : QString();
}

bool SystemPasteboard::ownsPrimary() const
{
    return supportsPrimary() && m_clipboard->ownsSelection();
}

void SystemPasteboard::noticeChange()
{
    // The desktop reports our own content too, on some platforms more than once.
    if (m_own && m_clipboard->mimeData(QClipboard::Clipboard) == m_own) {
        return;
    }
    ++m_changeCount;
}
