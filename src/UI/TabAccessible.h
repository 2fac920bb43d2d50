// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessibleWidget>

class TabItemView;

/// A tab for screen readers: pressing selects it.
class TabItemAccessible final : public QAccessibleWidget {
public:
    /// Makes every TabItemView known as what it is; the first call counts.
    static void install();

    explicit TabItemAccessible(TabItemView &item);

    [[nodiscard]] QAccessible::State state() const override;
    [[nodiscard]] QStringList actionNames() const override;
    void doAction(const QString &name) override;

private:
    [[nodiscard]] TabItemView &item() const;
};
