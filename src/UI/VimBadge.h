// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UI/StatusBarView.h"

#include <QLabel>

/// Which mode Vim is in and the keys it has so far, or its command line: white on a colour that tells the modes apart. Where it does not
/// fit, the end is seen, or what is at the cursor, which is where keys come to. Hidden without a state.
class VimBadge final : public QLabel {
    Q_OBJECT

public:
    explicit VimBadge(QWidget *parent = nullptr);

    void setState(const std::optional<StatusBarView::VimState> &state);
    void setTheme(const Theme &theme);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] bool hasCursor() const { return m_state && m_state->commandLine && m_state->cursor; }
    void paintLine(QPainter &painter) const;

    std::optional<StatusBarView::VimState> m_state;
    const Theme *m_theme;
};
