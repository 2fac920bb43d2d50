// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessibleWidget>

class MainWindowController;
class ToolbarStrip;

/// A window for screen readers. A toolbar beside the menus is a child of their bar, which reports its menus only; so the window has it as
/// its first child.
class WindowAccessible final : public QAccessibleWidget {
public:
    /// Makes every MainWindowController and ToolbarStrip known as what it is; the first call counts.
    static void install();

    explicit WindowAccessible(MainWindowController &window);

    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface *child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override;

private:
    /// The one that stands beside the menus; null when there is none.
    [[nodiscard]] QAccessibleInterface *toolbar() const;
};

/// A toolbar for screen readers; in a bar of its own that one is the toolbar.
class ToolbarAccessible final : public QAccessibleWidget {
public:
    explicit ToolbarAccessible(ToolbarStrip &strip);

    [[nodiscard]] QAccessible::Role role() const override;
    [[nodiscard]] QAccessibleInterface *parent() const override;

private:
    [[nodiscard]] bool isBesideMenus() const;
};
