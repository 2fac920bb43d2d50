// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/VimBadge.h"

#include "Base/ColorContrast.h"
#include "Highlighting/Theme.h"
#include "Widgets/AccessibleRole.h"
#include "Widgets/SystemColors.h"

#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr double cornerRadius = 3;
constexpr int heightMargin = 2;
/// How much of its colour the badge has.
constexpr double shareOnDark = 0.85;
constexpr double shareOnLight = 0.75;
/// Where the cursor is in a line that is longer than the badge, as a share of this.
constexpr double cursorShare = 0.75;
constexpr quint32 black = 0xFF000000;
constexpr quint32 white = 0xFFFFFFFF;

/// With "^I" and its like for control characters.
QString visible(QStringView line)
{
    QString all;
    for (const QChar unit : line) {
        all += unit < u' ' ? u"^"_s + QChar(char16_t(unit.unicode() + u'@')) : QString(unit);
    }
    return all;
}

QString badgeText(const StatusBarView::VimState &state)
{
    if (state.commandLine && state.cursor) {
        return u' ' + visible(*state.commandLine) + u' ';
    }
    if (state.commandLine) {
        return u' ' + *state.commandLine + u"█ "_s;
    }
    if (!state.question.isEmpty()) {
        return u' ' + state.question + u' ';
    }
    return u' ' + state.mode + (state.note.isEmpty() ? QString() : u"  "_s + state.note) +
           (state.pending.isEmpty() ? QString() : u"  "_s + state.pending) + u' ';
}

/// What a screen reader says without being asked.
QString spoken(const StatusBarView::VimState &state)
{
    return !state.question.isEmpty() ? state.question : state.note.isEmpty() ? state.mode : state.mode + u", "_s + state.note;
}

/// A letter more or none, or one less.
bool isTyped(const QString &before, const QString &after)
{
    return before.size() <= after.size() ? after.size() - before.size() < 3 && after.startsWith(before) : before.startsWith(after);
}

} // namespace

VimBadge::VimBadge(QWidget *parent) : QLabel(parent), m_theme(&Theme::light())
{
    setTextFormat(Qt::PlainText);
    becomeNotice(*this);
    hide();
}

void VimBadge::setState(const std::optional<StatusBarView::VimState> &state)
{
    if (state == m_state) {
        return;
    }
    // The mode is reported when it changes, keys are not: whoever pressed them knows.
    const bool isOtherMode = state && (!m_state || spoken(*state) != spoken(*m_state));
    const bool wasVisible = isVisible();
    // So is a line that became another one, but not one that got what was typed.
    const bool isOtherLine = hasCursor() && state && state->commandLine && !isTyped(*m_state->commandLine, *state->commandLine);
    m_state = state;
    setText(state ? badgeText(*state) : QString());
    if (hasCursor()) {
        setAccessibleName(*state->commandLine);
    } else if (isOtherMode) {
        setAccessibleName(spoken(*state));
    }
    setVisible(state.has_value());
    if ((isOtherMode || isOtherLine) && wasVisible) {
        announce(*this);
    }
    update();
}

void VimBadge::setTheme(const Theme &theme)
{
    m_theme = &theme;
    update();
}

QSize VimBadge::sizeHint() const
{
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(text()) + 1, metrics.height() + 2 * heightMargin};
}

void VimBadge::paintEvent(QPaintEvent * /*event*/)
{
    if (!m_state) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor hue = m_state->commandLine || !m_state->question.isEmpty() ? SystemColor::purple()
                       : m_state->isInsert                                  ? SystemColor::green()
                                                                            : SystemColor::accent();
    const quint32 ground = blended(m_theme->gutterBackground, hue.rgb(), m_theme->isDark ? shareOnDark : shareOnLight);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgb(legible(ground, black, limitsOf(m_theme->contrast).text, {white})));
    painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
    painter.setPen(Qt::white);
    if (hasCursor()) {
        paintLine(painter);
        return;
    }
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, fontMetrics().elidedText(text(), Qt::ElideLeft, width()));
}

void VimBadge::paintLine(QPainter &painter) const
{
    QTextLayout layout(text(), font());
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setNumColumns(int(text().size()));
    layout.endLayout();
    // Behind the blank that begins the text.
    const double cursor = line.cursorToX(int(visible(QStringView(*m_state->commandLine).first(*m_state->cursor)).size()) + 1);
    const double hidden = std::max(0.0, line.naturalTextWidth() - width());
    const double left = -std::clamp(cursor - cursorShare * width(), 0.0, hidden);
    const double top = (height() - line.height()) / 2;
    painter.setClipRect(rect());
    layout.draw(&painter, {left, top});
    const int thickness = std::max(2, fontMetrics().height() / 9);
    painter.fillRect(QRectF(std::round(left + cursor), top, thickness, line.height()), Qt::white);
}
