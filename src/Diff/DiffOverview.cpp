// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Diff/DiffOverview.h"

#include "Diff/DiffText.h"
#include "Highlighting/Theme.h"

#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int stripWidth = 12;
constexpr int leastMark = 2;
constexpr int margin = 2;

} // namespace

DiffOverview::DiffOverview(QWidget *parent) : QWidget(parent), m_theme(&Theme::light())
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    setCursor(Qt::PointingHandCursor);
}

QSize DiffOverview::sizeHint() const
{
    return {stripWidth, 0};
}

void DiffOverview::setResult(std::shared_ptr<const LineDiff::Result> result)
{
    m_result = std::move(result);
    update();
}

void DiffOverview::applyTheme(const Theme &theme)
{
    m_theme = &theme;
    update();
}

std::vector<DiffOverview::Mark> DiffOverview::marks(const LineDiff::Result &result, int height)
{
    std::vector<Mark> all;
    const auto rows = double(std::max<qsizetype>(result.rowCount(), 1));
    for (const LineDiff::Run &run : result.runs()) {
        if (run.kind == LineDiff::Row::Kind::equal) {
            continue;
        }
        const int top = std::min(int(double(run.firstRow) / rows * height), std::max(height - leastMark, 0));
        const int bottom = std::max(int(double(run.firstRow + run.rowCount) / rows * height), std::min(top + leastMark, height));
        // Where there is room for one only, it is the first.
        if (!all.empty() && bottom <= all.back().bottom) {
            continue;
        }
        all.push_back({run.kind, all.empty() ? top : std::max(top, all.back().bottom), bottom});
    }
    return all;
}

void DiffOverview::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor::fromRgb(m_theme->gutterBackground));
    painter.fillRect(QRect(0, 0, 1, height()), QColor::fromRgb(m_theme->gutterSeparator));
    if (m_result) {
        for (const Mark &mark : marks(*m_result, height())) {
            painter.fillRect(QRect(1 + margin, mark.top, width() - 1 - 2 * margin, mark.bottom - mark.top),
                             QColor::fromRgb(DiffText::markColor(*m_theme, mark.kind)));
        }
    }
}

void DiffOverview::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        mouseMoveEvent(event);
    }
}

void DiffOverview::mouseMoveEvent(QMouseEvent *event)
{
    if (m_result && m_result->rowCount() > 0 && event->buttons() & Qt::LeftButton) {
        const double place = std::clamp(event->position().y() / std::max(height(), 1), 0.0, 1.0);
        emit rowWanted(std::min(qsizetype(place * double(m_result->rowCount())), m_result->rowCount() - 1));
    }
}
