// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QVariant>

class QInputMethodEvent;
class QKeyEvent;
class TextView;

/// A text view and the input methods: dead keys, Compose, and whole sentences composed before they become text.
///
/// What is being composed (the preedit) is shown in the view and never enters the storage or the undo history. An input method may ask
/// for the text around the caret; it gets an excerpt, since some protocols break at 4000 bytes and a line may have ten million.
class TextViewInput final {
public:
    explicit TextViewInput(TextView &view) : m_view(view) {}

    void handle(QInputMethodEvent &event);
    [[nodiscard]] QVariant answer(Qt::InputMethodQuery query) const;
    /// What was typed, or an input method has shown so far, becomes text.
    void commit();
    /// True when the key gave up what an input method had shown so far. It comes here only from one that does not do that itself.
    bool isCancelledBy(const QKeyEvent &event);
    /// To where the caret is.
    void movePreedit();

    [[nodiscard]] bool isComposing() const;
    /// In the preedit text.
    [[nodiscard]] qsizetype caret() const { return m_caret; }
    [[nodiscard]] bool isCaretShown() const { return m_isCaretShown; }

private:
    void insert(const QInputMethodEvent &event);
    void endComposing();

    TextView &m_view;
    qsizetype m_caret = 0;
    bool m_isCaretShown = true;
};
