// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Diff/DiffTextView.h"
#include "Editor/EditorViewController.h"
#include "Highlighting/SyntaxHighlighter.h"
#include "Text/DiffControl.h"

class DiffOverview;
class ElidedLabel;
class QCheckBox;
class QLabel;
class QPushButton;
class QSplitter;

/// Two texts side by side: headers, the columns with line numbers, a strip that shows where the changes are, and a footer to go from one to
/// the next. The texts stay as they were when it was made; long ones are compared on a worker. Main thread only.
class DiffViewController final : public QWidget, public Responder {
    Q_OBJECT

public:
    struct Side {
        QString title;
        QString subtitle;
        Rope text;
    };

    /// Texts that are longer together are compared on a worker.
    static constexpr qsizetype comparedAtOnce = qsizetype(256) * 1024;
    /// A longer column has no colours.
    static constexpr qsizetype longestColoured = 524288;

    /// The services must outlive it.
    DiffViewController(const EditorServices &services, Side left, Side right, const Language &language, QWidget *parent = nullptr);
    ~DiffViewController() override;

    /// Null until the texts have been compared.
    [[nodiscard]] const LineDiff::Result *result() const { return m_result.get(); }
    /// Of the result's changes; -1 when the user went to none yet.
    [[nodiscard]] int currentChange() const { return m_currentChange; }
    [[nodiscard]] DiffTextView &leftView() const { return *m_columns[0]->view; }
    [[nodiscard]] DiffTextView &rightView() const { return *m_columns[1]->view; }
    [[nodiscard]] QString summary() const;

    void nextChange();
    void previousChange();
    void toggleIgnoreWhitespace();

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override;

protected:
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    struct Column {
        LineDiff::Side side;
        Side content;
        TextStorage storage;
        UndoManager undoManager;
        DiffTextView *view = nullptr;
        TextFinder *finder = nullptr;
        FindBar *findBar = nullptr;
        ElidedLabel *header = nullptr;
        QWidget *widget = nullptr;
        std::unique_ptr<SyntaxHighlighter> highlighter;
        /// Where it was when the columns were last brought together.
        QPointF position;

        Column(LineDiff::Side side, Side content, Scheduler &scheduler);
    };

    void makeColumn(Column &column);
    [[nodiscard]] QWidget *makeHeader();
    [[nodiscard]] QWidget *makeFooter();
    void retranslate();
    void applyPreferences();
    void applyTheme();

    void compare();
    void show(LineDiff::Result result);
    void fill(Column &column);
    void updateSummary();
    void showSummary();
    void goTo(int change);
    void scrollBothTo(qsizetype row, double fraction);
    void follow(Column &moved);
    void showSameBars();
    [[nodiscard]] Column &other(const Column &column) { return *m_columns[column.side == LineDiff::Side::left ? 1 : 0]; }
    [[nodiscard]] Column &focusedColumn() const;
    void performTextFinderAction(const ActionSender &sender);
    [[nodiscard]] ActionState textFinderActionState(const ActionSender &sender) const;
    [[nodiscard]] bool hasChanges() const { return m_result && !m_result->changeStarts().empty(); }

    EditorServices m_services;
    Language m_language;
    std::array<std::unique_ptr<Column>, 2> m_columns;
    std::shared_ptr<const LineDiff::Result> m_result;
    int m_currentChange = -1;
    Whitespace m_whitespace = Whitespace::counts;
    bool m_isFollowing = false;
    bool m_hasPositionedDivider = false;

    BackgroundTask m_comparing;
    std::shared_ptr<std::atomic<qsizetype>> m_processed;
    RepeatingTimer m_progressTimer;

    QWidget *m_headerBar = nullptr;
    QSplitter *m_splitter = nullptr;
    DiffOverview *m_overview = nullptr;
    QWidget *m_footerBar = nullptr;
    QLabel *m_summaryLabel = nullptr;
    QCheckBox *m_ignoresWhitespace = nullptr;
    QPushButton *m_previousButton = nullptr;
    QPushButton *m_nextButton = nullptr;
    std::vector<NotificationCenter::Token> m_observers;
};
