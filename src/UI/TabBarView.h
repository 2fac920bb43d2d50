// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UI/TabItemView.h"

#include <QWidget>

#include <vector>

class FlatButton;
class QActionGroup;
class QMenu;
class TabBarView;
struct Theme;

/// The tabs above a pane, the button for a new one, and where they do not all fit: buttons that scroll, and a menu of all tabs.
///
/// An item belongs to a place in the row, not to a document: when the tabs change, items are given what to show, and only as many are made
/// or dropped as the row grows or shrinks by. So the pointer stays over an item when the tab under it is closed. With the keyboard the row
/// is one stop: the arrows, Home and End go along it, Space and Enter select. The bar reports what the user chose and changes nothing by
/// itself; what becomes of it is shown by `setTabs`, at once or later. Main thread only.
class TabBarView final : public QWidget {
    Q_OBJECT

public:
    explicit TabBarView(QWidget *parent = nullptr);
    ~TabBarView() override;

    /// `theme` must outlive the bar, as the built-in ones do.
    void setTheme(const Theme &theme);
    void setActivePane(PaneActivity activity);
    /// The tabs from left to right. Without tabs, or with an index outside of them, none is selected.
    void setTabs(const std::vector<TabDescriptor> &tabs, int selectedIndex);
    /// In the next turn of the event loop, when everything has its place.
    void scrollSelectedTabIntoView();
    /// Looks all texts of its own up anew; the titles are the pane's.
    void retranslate();

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

signals:
    // Indexes are those of tabs that the bar has.
    void tabChosen(int index);
    void closeRequested(int index);
    void newTabRequested();
    /// Of the tab; the position is global.
    void menuRequested(int index, QPoint globalPosition);
    /// The tab at `from` shall be at `to` when it is back in; the two differ.
    void moveRequested(int from, int to);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;

private:
    void addItem();
    void dropLastItem();
    void updateTabStop();
    void updateFonts();
    void applyPalette();

    void layOut();
    void reveal(int index);
    [[nodiscard]] bool isInView(int index) const;
    void scrollTo(int offset);
    /// The last scroll position.
    [[nodiscard]] int greatestOffset() const;

    void select(int index);
    void requestClose(int index);
    void requestMenu(int index, QPoint globalPosition);
    void move(int from, int to);
    void moveFocus(TabItemView::Step step, int from);
    void fillMenuOfTabs();

    const Theme *m_theme;
    PaneActivity m_activity = PaneActivity::active;
    int m_selectedIndex = -1;
    /// How many pixels of the row lie left of what is seen.
    int m_offset = 0;
    bool m_shallReveal = false;

    /// What is seen of the row; the strip in it holds the items.
    QWidget *m_viewport;
    QWidget *m_strip;
    std::vector<TabItemView *> m_items;
    FlatButton *m_scrollLeftButton;
    FlatButton *m_scrollRightButton;
    FlatButton *m_allTabsButton;
    FlatButton *m_newTabButton;
    QMenu *m_allTabsMenu;
    QActionGroup *m_allTabsChoice;
};
