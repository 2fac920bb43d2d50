// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UI/ToolbarAction.h"

#include <QToolButton>

struct ActionState;

/// The button of one action: a flat one with the action's symbol, and its label beside it if labels are shown. What it does when it is
/// pressed is its owner's to say.
class ToolbarActionItem final : public QToolButton {
    Q_OBJECT

public:
    enum class Labels { hidden, shown };
    /// Of what is destructive.
    enum class Tint { none, red };

    /// `spec` must outlive the button.
    ToolbarActionItem(const ToolbarAction &spec, Labels labels, Tint tint, QWidget *parent);

    [[nodiscard]] const ToolbarAction &spec() const { return m_spec; }
    /// In the language of the interface at the time when the button was made.
    [[nodiscard]] const QString &label() const { return m_label; }
    /// Costs nothing when it is shown so already.
    void setState(const ActionState &state);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void changeEvent(QEvent *event) override;

private:
    void applyColor();

    const ToolbarAction &m_spec;
    QString m_label;
    bool m_isRed;
    /// The red; invalid before and for all else.
    QColor m_color;
};
