// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <qnamespace.h>

#include <memory>
#include <vector>

class TextDocument;

/// What a window shows: its panes in a row or a column, the tabs of each and which one is selected, and which pane is active.
///
/// A value. Operations return what is shown after them; widgets do nothing but show it. A document may be in several panes, in each of them
/// once. A window that is not filled yet has no panes; in any other layout one pane is active and every pane has a tab: a pane goes with
/// its last tab, and then its neighbour is active, the left one if there is one.
///
/// Panes and tabs are named by their places, from 0. A place where there is nothing changes nothing.
class PaneLayout final {
public:
    using Document = std::shared_ptr<TextDocument>;
    using Documents = std::vector<Document>;

    struct Pane {
        /// Of no other pane of this window, before or after.
        int id = 0;
        Documents tabs = {};
        int selected = 0;

        [[nodiscard]] int count() const { return int(tabs.size()); }
        /// -1 when it is not here.
        [[nodiscard]] int indexOf(const TextDocument &document) const;
        [[nodiscard]] bool holds(const TextDocument &document) const { return indexOf(document) >= 0; }
        [[nodiscard]] const Document &selectedTab() const { return tabs.at(size_t(selected)); }

        friend bool operator==(const Pane &, const Pane &) = default;
    };

    [[nodiscard]] bool isEmpty() const { return m_panes.empty(); }
    [[nodiscard]] const std::vector<Pane> &panes() const { return m_panes; }
    [[nodiscard]] int paneCount() const { return int(m_panes.size()); }
    /// Of all panes.
    [[nodiscard]] int tabCount() const;
    /// -1 when there are no panes.
    [[nodiscard]] int activeIndex() const { return m_active; }
    /// Null when there are no panes.
    [[nodiscard]] const Pane *active() const { return isEmpty() ? nullptr : &m_panes[size_t(m_active)]; }
    /// The document that commands are about: that of the active pane. Null when there are no panes.
    [[nodiscard]] Document current() const { return isEmpty() ? nullptr : active()->selectedTab(); }
    [[nodiscard]] Qt::Orientation orientation() const { return m_orientation; }
    /// Those of all panes in order, each once.
    [[nodiscard]] Documents documents() const;
    /// The first pane that has the document; -1 when none has.
    [[nodiscard]] int paneShowing(const TextDocument &document) const;
    /// In how many panes it is.
    [[nodiscard]] int countOf(const TextDocument &document) const;
    /// -1 when it is gone.
    [[nodiscard]] int paneWithId(int id) const;

    /// Each document is selected where it has a tab, in the first pane that has it; else it gets one at the end of the active pane. That
    /// pane is active then. The last document is what the user sees.
    [[nodiscard]] PaneLayout showing(const Documents &documents) const;
    /// At the end of the active pane, selected, also when another pane has it.
    [[nodiscard]] PaneLayout adding(const Document &document) const;
    /// At `tab` of `pane`, or at the end of the active pane when there is none of that number; selected there, and that pane is active.
    /// What has a tab there already is only selected.
    [[nodiscard]] PaneLayout inserting(const Document &document, int pane, int tab) const;
    /// The last one, active only if it is the first as well. `documents` has one at least.
    [[nodiscard]] PaneLayout addingPane(const Documents &documents, int selected) const;
    /// Without selecting anything; what is there already stays where it is.
    [[nodiscard]] PaneLayout appending(const Documents &documents) const;
    /// The current document in a further pane, the last one, which is active.
    [[nodiscard]] PaneLayout split(Qt::Orientation orientation) const;
    [[nodiscard]] PaneLayout turned(Qt::Orientation orientation) const;
    [[nodiscard]] PaneLayout activating(int pane) const;
    /// Round and round.
    [[nodiscard]] PaneLayout activatingNext(int step) const;
    [[nodiscard]] PaneLayout selecting(int pane, int tab) const;
    /// In the active pane, round and round.
    [[nodiscard]] PaneLayout selectingNext(int step) const;
    /// The tab at `from` is at `to` afterwards; what was selected is selected.
    [[nodiscard]] PaneLayout moving(int pane, int from, int to) const;
    /// What is selected when a tab left of it closes: the tab that comes into its place, or what was selected before.
    enum class Selected { place, tab };
    /// When the selected tab closes, its right neighbour is selected, or else the last one. No panes are left when it was the only tab.
    [[nodiscard]] PaneLayout closing(int pane, int tab, Selected kept = Selected::place) const;
    /// In every pane.
    [[nodiscard]] PaneLayout closing(const TextDocument &document, Selected kept = Selected::place) const;
    /// Gives what no other pane shows to the neighbour, which is active. The only pane stays.
    [[nodiscard]] PaneLayout removing(int pane) const;
    [[nodiscard]] PaneLayout removingOthers() const;

    [[nodiscard]] bool checkInvariants() const;

    friend bool operator==(const PaneLayout &, const PaneLayout &) = default;

private:
    [[nodiscard]] bool hasPane(int index) const { return index >= 0 && index < paneCount(); }
    [[nodiscard]] Pane &at(int index) { return m_panes[size_t(index)]; }
    void addPane(const Documents &documents, int selected);
    void show(const Document &document);
    void erase(int pane);
    void closeTab(int pane, int tab, Selected kept);
    void remove(int pane);

    std::vector<Pane> m_panes;
    int m_active = -1;
    int m_lastId = 0;
    Qt::Orientation m_orientation = Qt::Horizontal;
};

/// The layouts of all windows. A window's own must stay where it is for as long as it takes part.
class PaneLayouts final {
public:
    void add(const PaneLayout &layout) { m_layouts.push_back(&layout); }
    void remove(const PaneLayout &layout) { std::erase(m_layouts, &layout); }
    /// In how many panes the document is.
    [[nodiscard]] int countOf(const TextDocument &document) const;

private:
    std::vector<const PaneLayout *> m_layouts;
};
