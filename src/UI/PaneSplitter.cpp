// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/PaneSplitter.h"

#include "Widgets/AccessibleRole.h"

#include <QPainter>

namespace {

class Divider final : public QSplitterHandle {
public:
    Divider(Qt::Orientation orientation, PaneSplitter &splitter) : QSplitterHandle(orientation, &splitter), m_splitter(splitter)
    {
        setAccessibleRole(*this, QAccessible::Separator);
    }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        // It reaches beyond what is seen of it, so that a pointer finds it.
        QPainter painter(this);
        const QRect seen =
            orientation() == Qt::Horizontal ? QRect((width() - 1) / 2, 0, 1, height()) : QRect(0, (height() - 1) / 2, width(), 1);
        painter.fillRect(seen, m_splitter.dividerColor());
    }

private:
    PaneSplitter &m_splitter;
};

} // namespace

PaneSplitter::PaneSplitter(QWidget *parent) : QSplitter(Qt::Horizontal, parent)
{
    setHandleWidth(1);
    setChildrenCollapsible(false);
}

void PaneSplitter::setDividerColor(const QColor &color)
{
    m_dividerColor = color;
    for (int index = 1; index < count(); ++index) {
        handle(index)->update();
    }
}

QSplitterHandle *PaneSplitter::createHandle()
{
    return new Divider(orientation(), *this);
}
