// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimTextView.h"

#include <QWidget>

class TextView;

/// Words that may come in place of the one before the caret, in a column below it, or above it where there is no room; of a
/// command line over the lower left corner of the text. It takes neither
/// keys nor clicks, scrolls to the word that is chosen, and goes with whatever moves the text.
class CompletionPanel final : public QWidget {
    Q_OBJECT

public:
    static constexpr qsizetype mostRows = 10;

    /// `view` must outlive it.
    explicit CompletionPanel(TextView &view);

    /// None hides it.
    void showOffer(const std::optional<VimOffer> &offer);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    /// False when the word cannot be seen.
    bool place();
    [[nodiscard]] int rowHeight() const;

    TextView &m_view;
    VimOffer m_offer;
    /// The first row that is seen.
    qsizetype m_first = 0;
};
