// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QWidget>

#include <functional>
#include <optional>

class FlatButton;
struct Theme;

/// What a tab shows of its document.
struct TabDescriptor {
    QString title;
    QString tooltip;
    /// What tells it apart from other tabs of its title; mostly nothing.
    QString detail = {};
    /// What takes its time, in words; mostly nothing.
    QString activity;
    /// The user may not write to the file.
    bool isReadOnly = false;
    bool isDirty = false;
    /// The file was changed or deleted by others.
    bool hasExternalChange = false;

    /// The title and what tells it apart, on one line.
    [[nodiscard]] QString fullTitle() const;

    friend bool operator==(const TabDescriptor &, const TabDescriptor &) = default;
};

/// Whether the pane is the one of its window that commands go to.
enum class PaneActivity { active, inactive };

/// One tab of a TabBarView: its title, a dot when there is something to save or to know, a button that closes it while the pointer is over
/// it. It may be dragged along the row and takes others that are. Main thread only.
class TabItemView final : public QWidget {
    Q_OBJECT

public:
    /// Where the keyboard goes from an item.
    enum class Step { previous, next, first, last };
    enum class Selection { selected, other };

    /// The format of a dragged tab: its index as a decimal number.
    static QString mimeType();

    explicit TabItemView(QWidget *parent = nullptr);

    /// What the item is asked for; set by the bar. Each may destroy the item.
    std::function<void()> onSelect;
    std::function<void()> onClose;
    /// Gets the index that the dragged tab had where it comes from, which may be any number.
    std::function<void(int from)> onDrop;
    std::function<void(Step step)> onStep;
    std::function<void(QPoint globalPosition)> onContextMenu;
    /// The keyboard came to the item or left it.
    std::function<void()> onFocusChange;

    /// A screen reader is notified of what is new.
    void setContent(const TabDescriptor &descriptor, int index, Selection selection);
    void setLook(const Theme &theme, PaneActivity activity);
    void retranslate();

    [[nodiscard]] int index() const { return m_index; }
    [[nodiscard]] const TabDescriptor &descriptor() const { return m_descriptor; }
    [[nodiscard]] bool isSelected() const { return m_selection == Selection::selected; }

    /// As wide as the title wants, whether selected or not, so that selecting moves nothing.
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    enum class Edge { left, right };

    void setHovering(bool isHovering);
    void setInsertionMark(std::optional<Edge> edge);
    void updateAccessibleTexts();
    void startDrag();
    [[nodiscard]] bool hasMark() const { return m_descriptor.isDirty || m_descriptor.hasExternalChange; }
    [[nodiscard]] QColor textColor() const;
    [[nodiscard]] quint32 ground() const;
    [[nodiscard]] QFont titleFont() const;
    void paintGround(QPainter &painter) const;
    [[nodiscard]] int activityWidth(const QFont &font) const;
    [[nodiscard]] int lockWidth() const;
    void paintLock(QPainter &painter) const;
    [[nodiscard]] int detailWidth(const QFont &font) const;
    void paintTitle(QPainter &painter) const;
    void paintMarks(QPainter &painter) const;

    TabDescriptor m_descriptor;
    int m_index = 0;
    Selection m_selection = Selection::other;
    const Theme *m_theme;
    PaneActivity m_activity = PaneActivity::active;
    bool m_isHovering = false;
    std::optional<Edge> m_insertionMark;
    /// Where the primary button went down, until a drag begins.
    std::optional<QPoint> m_pressPosition;
    FlatButton *m_closeButton;
};
