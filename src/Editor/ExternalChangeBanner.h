// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Model/TextDocument.h"

#include <QWidget>

#include <functional>
#include <vector>

class ElidedLabel;
class QBoxLayout;
class QPushButton;
struct Theme;

/// A bar above a text whose file was changed or deleted by others, or does not come, that looks wrong, for which a program waits, or
/// which was brought back beside what it belongs to: a sentence and what can be done about it. It only shows and reports.
class ExternalChangeBanner final : public QWidget {
public:
    explicit ExternalChangeBanner(QWidget *parent = nullptr);

    /// "Reload from Disk".
    std::function<void()> onReload;
    /// "Keep Mine", "Dismiss" and "Keep".
    std::function<void()> onKeep;
    /// "Save Again".
    std::function<void()> onSave;
    /// "Compare".
    std::function<void()> onCompare;
    /// "Done".
    std::function<void()> onDone;
    /// "Abort".
    std::function<void()> onAbort;
    /// "Reopen".
    std::function<void()> onReopen;
    /// "Other…".
    std::function<void()> onChoose;

    /// Says what happened to the file of the document called `filename`; nothing for `none`. A screen reader is notified of what is new.
    void configure(TextDocument::ExternalState state, const QString &filename);
    /// Says where the text comes from.
    void configure(const TextOrigin &origin);
    /// Says that a program waits until that document is closed.
    void configureAwaited(const QString &filename);
    /// Says that the text looks like one in another encoding.
    void configureSuggestion(const QString &encoding);
    void applyTheme(const Theme &theme);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    struct ButtonRow;
    struct StateRow;
    [[nodiscard]] static const StateRow *rowOf(TextDocument::ExternalState state);
    void say(const StateRow *row, const QString &filename);
    void addButton(const QString &title, std::function<void()> ExternalChangeBanner::*callback);
    /// Where sentence or buttons would be cut off beside each other, they stand below each other.
    void arrange();

    QBoxLayout *m_stack;
    QBoxLayout *m_buttonStack;
    ElidedLabel *m_label;
    std::vector<QPushButton *> m_buttons;
};
