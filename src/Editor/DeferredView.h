// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/EditSteps.h"
#include "View/TextView.h"

#include <functional>
#include <optional>

class EditorTextView;

/// A text view as modal editing has it: while keys run by themselves, what they do to the text and the caret is put together, and comes to
/// the view as one change and one selection when somebody else is to see it. Main thread only; the view must outlive it.
class DeferredView final {
public:
    using CaretShape = TextLooks::CaretShape;

    /// `changed` is called for each change of the text as it is to be seen here, whoever makes it, once.
    DeferredView(EditorTextView &view, std::function<void(const TextChange &change)> changed);
    ~DeferredView();
    Q_DISABLE_COPY_MOVE(DeferredView)

    /// Calls nest; the outermost end() brings everything to the view.
    void begin();
    void end();
    [[nodiscard]] bool isDeferring() const { return m_depth > 0; }
    /// One caret that types nothing but what it is given, so that changes can be put off.
    [[nodiscard]] bool mayType() const;
    /// The view has not all of the changes yet.
    [[nodiscard]] bool hasEdits() const { return !m_edits.isEmpty(); }
    /// Brings the view up to date.
    void flush();
    /// The view, for all else: up to date, and what it has selected afterwards counts.
    [[nodiscard]] EditorTextView &direct();

    [[nodiscard]] const Rope &text() const;
    [[nodiscard]] TextSelection selection() const;

    // While it defers.

    /// The caret is shown at `shown`.
    void select(TextSelection selection, qsizetype shown);
    /// False when the text is read-only. The caret is left where the edits begin.
    bool apply(const TextEdits &edits);
    /// Over what is selected, the caret behind it.
    void type(const QString &text);
    void setCaretShape(CaretShape shape) { m_shape = shape; }
    /// At the next flush.
    void center() { m_reveal = TextView::Reveal::center; }

private:
    void follow(const TextChange &change);

    struct Selected {
        TextSelection selection;
        qsizetype shown = 0;
    };
    EditorTextView &m_view;
    std::function<void(const TextChange &change)> m_changed;
    QMetaObject::Connection m_connection;
    int m_depth = 0;
    bool m_isFlushing = false;
    Rope m_text;
    EditSteps m_edits{EditSteps::Order::behind};
    /// None while the view's own counts.
    std::optional<Selected> m_selected;
    std::optional<CaretShape> m_shape;
    TextView::Reveal m_reveal = TextView::Reveal::nearest;
};
