// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LineNumber.h"
#include "Text/TextRange.h"

#include <QRect>
#include <QWidget>

#include <vector>

class Rope;
class TextView;
struct VimSubstituteHit;

/// What lines would become, over the lower end of a text, or the upper one where a hit is seen below: their numbers and their texts, with
/// what came in on a ground of its own. It takes neither keys nor clicks. What does not fit into a third of the view is left out.
class SubstitutionPanel final : public QWidget {
    Q_OBJECT

public:
    struct Row {
        LineNumber number = LineNumber::first;
        QString text;
        /// Of the text, in UTF-16 units.
        std::vector<TextRange> replaced;

        friend bool operator==(const Row &, const Row &) = default;
    };

    /// `view` must outlive it.
    explicit SubstitutionPanel(TextView &view);

    /// A row for each line in which hits begin, at most so many. Of long lines there is what is around the first hit. A pure function;
    /// `hits` ascend.
    [[nodiscard]] static std::vector<Row> rows(const Rope &text, const std::vector<VimSubstituteHit> &hits, size_t most);
    /// That fit.
    [[nodiscard]] size_t mostRows() const;
    /// None hides it. `hit` is to be seen beside it, in pixels of the viewport.
    void show(std::vector<Row> rows, QRect hit = {});

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] int rowHeight() const;
    void place();

    TextView &m_view;
    std::vector<Row> m_rows;
    QRect m_hit;
};
