// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QMimeData>

#include <functional>

/// Plain text for a clipboard or a drag that is made only when somebody asks for it: selecting or dragging 100 MB costs nothing.
class LazyTextMimeData : public QMimeData {
    Q_OBJECT

public:
    explicit LazyTextMimeData(std::function<QString()> provider) : m_provider(std::move(provider)) {}

    [[nodiscard]] bool hasFormat(const QString &mimeType) const override;
    [[nodiscard]] QStringList formats() const override;

protected:
    [[nodiscard]] QVariant retrieveData(const QString &mimeType, QMetaType type) const override;

private:
    std::function<QString()> m_provider;
};
