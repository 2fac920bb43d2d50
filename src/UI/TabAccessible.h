// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessibleWidget>
#include <QWidget>

class TabItemView;

/// What holds the items of a TabBarView; a class of its own so that screen readers can be told that it is a list of tabs.
class TabStrip final : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;
};

/// A tab for screen readers: pressing selects it.
class TabItemAccessible final : public QAccessibleWidget {
public:
    /// Makes every TabItemView and TabStrip known as what it is; the first call counts.
    static void install();

    explicit TabItemAccessible(TabItemView &item);

    [[nodiscard]] QAccessible::State state() const override;
    [[nodiscard]] QStringList actionNames() const override;
    void doAction(const QString &name) override;

private:
    [[nodiscard]] TabItemView &item() const;
};
