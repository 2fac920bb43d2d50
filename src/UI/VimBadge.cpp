// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/VimBadge.h"

#include "Base/ColorContrast.h"
#include "Highlighting/Theme.h"
#include "Widgets/AccessibleRole.h"
#include "Widgets/SystemColors.h"

#include <QPainter>

using namespace Qt::StringLiterals;

namespace {

constexpr double cornerRadius = 3;
constexpr int heightMargin = 2;
/// How much of its colour the badge has.
constexpr double shareOnDark = 0.85;
constexpr double shareOnLight = 0.75;
constexpr quint32 black = 0xFF000000;
constexpr quint32 white = 0xFFFFFFFF;

QString badgeText(const StatusBarView::VimState &state)
{
    if (state.commandLine) {
        return u' ' + *state.commandLine + u"█ "_s;
    }
    return u' ' + state.mode + (state.pending.isEmpty() ? QString() : u"  "_s + state.pending) + u' ';
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
    const bool isOtherMode = state && (!m_state || state->mode != m_state->mode);
    const bool wasVisible = isVisible();
    m_state = state;
    setText(state ? badgeText(*state) : QString());
    if (isOtherMode) {
        setAccessibleName(state->mode);
    }
    setVisible(state.has_value());
    if (isOtherMode && wasVisible) {
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
    const QColor hue = m_state->commandLine ? SystemColor::purple() : m_state->isInsert ? SystemColor::green() : SystemColor::accent();
    const quint32 ground = blended(m_theme->gutterBackground, hue.rgb(), m_theme->isDark ? shareOnDark : shareOnLight);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgb(legible(ground, black, limitsOf(m_theme->contrast).text, {white})));
    painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
    painter.setPen(Qt::white);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, fontMetrics().elidedText(text(), Qt::ElideLeft, width()));
}
