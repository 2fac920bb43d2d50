// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Print/PagePainter.h"
#include "UI/PageView.h"
#include "UI/PrintOptions.h"

#include <QDialog>

#include <memory>

class QLabel;
class QSpinBox;
class QToolButton;

/// The pages of a text before they are printed, beside what can be chosen for them. Pages are laid out as they are looked at; how many
/// there are is found by a worker if they are not few. Main thread only.
class PrintPreview final : public QDialog {
    Q_OBJECT

public:
    /// All must outlive it, but `window`.
    PrintPreview(Preferences &preferences, NotificationCenter &notifications, Workers &workers, const PrintSource &source, QWidget *window);

    [[nodiscard]] PrintedText text() const { return m_options->text(); }

signals:
    void printRequested();
    void exportRequested();

private:
    /// So many pages are looked for at once.
    static constexpr size_t pagesAtOnce = 40;

    void arrange();
    [[nodiscard]] QLayout *makePageBar();
    [[nodiscard]] QLayout *makeButtons();
    void rebuild();
    void findPages(const PrintStyle &style, QSizeF area);
    bool show(int page);
    bool step(PageView::Step step);
    void updateBar();

    Preferences &m_preferences;
    Workers &m_workers;
    PrintOptionsForm *m_options;
    PageView *m_view;
    QToolButton *m_previous;
    QToolButton *m_next;
    QSpinBox *m_number;
    QLabel *m_count;
    QPageLayout m_paper;
    std::unique_ptr<PagePainter> m_painter;
    /// Of the first pages, or of all.
    std::vector<qsizetype> m_starts;
    bool m_areAllKnown = false;
    /// Of that shown, from 1.
    int m_page = 1;
    BackgroundTask m_counting;
    NotificationCenter::Token m_observer;
};
