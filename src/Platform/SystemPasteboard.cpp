// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Platform/SystemPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Promises text and makes it when another program, or this one, asks.
class LazyTextData final : public QMimeData {
public:
    explicit LazyTextData(Pasteboard::Provider provider) : m_provider(std::move(provider)) {}

    [[nodiscard]] QStringList formats() const override { return {u"text/plain"_s, u"text/plain;charset=utf-8"_s}; }
    [[nodiscard]] bool hasFormat(const QString &mimeType) const override { return formats().contains(mimeType); }

protected:
    [[nodiscard]] QVariant retrieveData(const QString &mimeType, QMetaType type) const override
    {
        if (!hasFormat(mimeType)) {
            return {};
        }
        const QString text = m_provider();
        return type.id() == QMetaType::QByteArray ? QVariant(text.toUtf8()) : QVariant(text);
    }

private:
    Pasteboard::Provider m_provider;
};

} // namespace

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
    auto *data = new LazyTextData(std::move(provider));
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
        m_clipboard->setMimeData(new LazyTextData(std::move(provider)), QClipboard::Selection);
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
