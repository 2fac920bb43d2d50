// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/ToolbarActionItem.h"

#include "Base/Translation.h"
#include "Commands/ActionKeys.h"
#include "Commands/Responder.h"
#include "Widgets/SymbolIcon.h"

#include <QEvent>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace {

/// The red of what destroys something, readable on the buttons of the palette.
QColor destructiveColor()
{
    const bool isDark = QGuiApplication::palette().color(QPalette::Button).lightness() < 128;
    return isDark ? QColor(255, 105, 97) : QColor(200, 30, 30);
}

} // namespace

ToolbarActionItem::ToolbarActionItem(const ToolbarAction &spec, Labels labels, Tint tint, QWidget *parent)
    : QToolButton(parent), m_spec(spec), m_label(localized(spec.label)), m_isRed(spec.isDestructive && tint == Tint::red)
{
    setAutoRaise(true);
    // A click leaves the focus in the text; with keys one comes here all the same.
    setFocusPolicy(Qt::TabFocus);
    setIcon(symbolIcon(spec.symbol()));
    setToolButtonStyle(labels == Labels::shown ? Qt::ToolButtonTextBesideIcon : Qt::ToolButtonIconOnly);
    setText(QString(m_label).replace('&'_L1, "&&"_L1));
    setToolTip(toolTipOf(spec.action, m_label));
    setAccessibleName(m_label);
    setCheckable(spec.action.isCheckable);
    if (spec.hasMenu) {
        setPopupMode(QToolButton::InstantPopup);
    }
    applyColor();
}

void ToolbarActionItem::setState(const ActionState &state)
{
    // The setters compare before they act.
    setEnabled(state.isEnabled);
    if (isCheckable()) {
        setChecked(state.checkMark != CheckMark::none);
    }
}

QSize ToolbarActionItem::sizeHint() const
{
    QSize size = QToolButton::sizeHint();
    if (toolButtonStyle() == Qt::ToolButtonTextBesideIcon) {
        // It is asked for as much room on both sides of the text, but the text begins at the symbol.
        size.rwidth() -= 2 * fontMetrics().horizontalAdvance(u' ');
    }
    return size;
}

void ToolbarActionItem::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange) {
        applyColor();
    }
    QToolButton::changeEvent(event);
}

void ToolbarActionItem::applyColor()
{
    const QColor color = destructiveColor();
    if (!m_isRed || color == m_color) {
        return;
    }
    m_color = color;
    setIcon(symbolIcon(m_spec.symbol(), color));
    // Only these: disabled it looks like any other.
    QPalette own;
    own.setColor(QPalette::Active, QPalette::ButtonText, color);
    own.setColor(QPalette::Inactive, QPalette::ButtonText, color);
    setPalette(own);
}
