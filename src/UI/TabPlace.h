// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Commands/Responder.h"
#include "Model/PaneLayout.h"

#include <QMetaType>
#include <QUuid>

/// A tab that a menu item stands for: what the item does is about this one instead of the current one.
struct TabPlace {
    /// Its id in the layout.
    int pane = 0;
    QUuid document;
};
Q_DECLARE_METATYPE(TabPlace)

/// Where a tab is in a layout. -1 for one that is gone.
struct TabIndex {
    int pane = -1;
    int tab = -1;

    [[nodiscard]] bool exists() const { return tab >= 0; }
};

/// The tab that a command is about: the one that the item stands for, or the current one.
[[nodiscard]] TabIndex tabOf(const PaneLayout &layout, const ActionSender &sender);
/// Its document; null when it is gone.
[[nodiscard]] PaneLayout::Document documentOf(const PaneLayout &layout, const ActionSender &sender);
