// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/TabPlace.h"

#include "Model/TextDocument.h"

#include <algorithm>

TabIndex tabOf(const PaneLayout &layout, const ActionSender &sender)
{
    if (!sender.represented.canConvert<TabPlace>()) {
        return layout.isEmpty() ? TabIndex() : TabIndex{layout.activeIndex(), layout.active()->selected};
    }
    const auto place = sender.represented.value<TabPlace>();
    const int pane = layout.paneWithId(place.pane);
    if (pane < 0) {
        return {};
    }
    const PaneLayout::Documents &tabs = layout.panes()[size_t(pane)].tabs;
    const auto found = std::ranges::find(tabs, place.document, [](const auto &document) { return document->id(); });
    return found == tabs.end() ? TabIndex() : TabIndex{pane, int(found - tabs.begin())};
}

PaneLayout::Document documentOf(const PaneLayout &layout, const ActionSender &sender)
{
    const TabIndex index = tabOf(layout, sender);
    return index.exists() ? layout.panes()[size_t(index.pane)].tabs[size_t(index.tab)] : nullptr;
}
