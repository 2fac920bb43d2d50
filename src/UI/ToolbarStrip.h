// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include <functional>
#include <vector>

class ElidedLabel;
class QMenu;
class QMenuBar;
class QToolButton;
class ToolbarActionItem;

/// One row: the title at its start, the buttons at its end. Where it is too narrow the title is shortened and then left out; then the last
/// buttons make room for one with a menu of them.
class ToolbarStrip final : public QWidget {
    Q_OBJECT

public:
    explicit ToolbarStrip(QWidget *parent = nullptr);

    /// Adds `item`, a child of the strip, at the end.
    void addItem(ToolbarActionItem &item);
    [[nodiscard]] const std::vector<ToolbarActionItem *> &items() const { return m_items; }
    /// What puts an item's place into the extension menu, which is about to open.
    void setExtensionFiller(std::function<void(QMenu &menu, ToolbarActionItem &item)> filler) { m_fill = std::move(filler); }
    /// Empty for none.
    void setTitle(const QString &title);
    /// Asks only for what the titles of `menuBar` leave. The strip must not outlive it.
    void setRoomBeside(QMenuBar &menuBar) { m_menuBar = &menuBar; }

    /// Where the keyboard enters the toolbar: the first button that can be used; null when none can.
    [[nodiscard]] QWidget *entry() const;
    [[nodiscard]] QToolButton &extension() const { return *m_extension; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

signals:
    /// The keyboard leaves the toolbar by Escape.
    void left();

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void contentChanged();
    void arrange();
    void fillExtension();
    void moveFocus(int step);
    [[nodiscard]] std::vector<QWidget *> stops() const;
    [[nodiscard]] int itemsWidth() const;
    [[nodiscard]] int titleWidth() const;

    ElidedLabel *m_title;
    std::vector<ToolbarActionItem *> m_items;
    /// How many of them are shown; the others are in the extension's menu.
    size_t m_shownCount = 0;
    QToolButton *m_extension;
    QMenu *m_extensionMenu;
    std::function<void(QMenu &menu, ToolbarActionItem &item)> m_fill;
    QMenuBar *m_menuBar = nullptr;
};

/// Takes everything out of `menu`. Its submenus go too, which clear() would keep.
void emptyMenu(QMenu &menu);
