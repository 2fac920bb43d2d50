// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Editor/ChangeMarks.h"
#include "Editor/ChangePanel.h"
#include "Editor/StretchRound.h"

#include <QObject>
#include <QPointer>

#include <functional>

class EditorTextView;
struct Theme;

/// What one does with the marks of changed lines in a view: sees them beside the line numbers and on the scroll bar, goes from one to the
/// next, reads what was there, brings it back as one step of undo. Main thread only.
class ChangeNavigator final : public QObject {
    Q_OBJECT

public:
    struct Services {
        ChangeMarks::Services marks;
        Pasteboard &pasteboard;
        /// The sound for "there is none".
        std::function<void()> beep;
    };

    /// Both must outlive it. The panel comes over the view, in the widget that holds that.
    ChangeNavigator(EditorTextView &view, TextDocument &document, const Services &services, QObject *parent = nullptr);
    ~ChangeNavigator() override;

    [[nodiscard]] const ChangeMarks &marks() const { return *m_marks; }
    [[nodiscard]] bool hasChanges() const { return !m_marks->changes().empty(); }
    /// From the caret's line; behind the last change comes the first.
    void goToNext();
    void goToPrevious();
    /// Of the caret's line.
    void showChange();
    /// Null while nothing is shown.
    [[nodiscard]] ChangePanel *panel() const { return m_panel; }
    void applyTheme(const Theme &theme);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    struct CaretLine {
        qsizetype start = 0;
        qsizetype end = 0;
    };
    [[nodiscard]] CaretLine caretLine() const;
    void markScrollBar();
    void arriveAt(std::optional<size_t> index);
    void open(size_t index);
    void close();
    void place();
    void restore();

    EditorTextView &m_view;
    TextDocument &m_document;
    Services m_services;
    StretchRound m_round;
    ChangeMarks *m_marks;
    const Theme *m_theme;
    QPointer<ChangePanel> m_panel;
    /// What the panel shows.
    LineChange m_shown;
};
