// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>

struct Theme;

/// The colours of the bars around a text, made of its theme and with its contrast. Opaque sRGB, 0xFFRRGGBB.
struct BarColors {
    /// Of the bars below a text, and what is written there.
    quint32 ground;
    quint32 text;
    quint32 border;

    /// Behind the tabs.
    quint32 tabBar;
    /// Of a tab that is pointed at.
    quint32 hoveredTab;
    quint32 tabBorder;
    /// Of tabs that are not selected.
    quint32 tabText;
    /// Of the tab that is selected in a pane that is not active.
    quint32 inactiveTabText;

    [[nodiscard]] static BarColors of(const Theme &theme);
};

/// The colour that stands out, as it can be read or seen on the bars and the text's own ground.
enum class AccentUse { text, mark };
[[nodiscard]] QColor accentOn(const Theme &theme, const QColor &accent, AccentUse use);
