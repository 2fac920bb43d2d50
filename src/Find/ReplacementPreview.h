// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextRange.h"

#include <QPointer>
#include <QWidget>

class TextView;

/// Shows beside a hit in a text what will come in its place. Takes no pointer and no focus, and stays at its hit when the text scrolls.
class ReplacementPreview final : public QWidget {
public:
    /// Above the text of `view`, which owns it.
    explicit ReplacementPreview(TextView &view);

    /// `replacement` may be empty, and of its lines only the first are shown.
    void showFor(TextRange hit, const QString &replacement);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void place();

    TextView &m_view;
    TextRange m_hit;
    QString m_text;
};
