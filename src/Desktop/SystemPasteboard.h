// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Pasteboard.h"

#include <QObject>
#include <QPointer>

class QClipboard;
class QMimeData;

/// The desktop's clipboard and primary selection. Needs the application object for as long as it lives.
class SystemPasteboard final : public QObject, public Pasteboard {
    Q_OBJECT

public:
    SystemPasteboard();

    [[nodiscard]] QString text() const override;
    [[nodiscard]] bool hasText() const override;
    void setText(const QString &text) override;
    void setLazyText(Provider provider) override;
    [[nodiscard]] int changeCount() const override { return m_changeCount; }

    [[nodiscard]] bool supportsPrimary() const override;
    void setPrimary(Provider provider) override;
    [[nodiscard]] QString primaryText() const override;
    [[nodiscard]] bool ownsPrimary() const override;

private:
    void noticeChange();

    QClipboard *m_clipboard;
    /// What this program put on the clipboard last; the desktop owns it. Its coming was counted when it was put there.
    QPointer<QMimeData> m_own;
    int m_changeCount = 0;
    /// The change count at which `m_hasText` was asked for.
    mutable int m_askedAt = -1;
    mutable bool m_hasText = false;
};
