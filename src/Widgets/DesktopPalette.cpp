// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/DesktopPalette.h"

#include "Base/ColorContrast.h"
#include "Desktop/PaletteBlend.h"

#include <QApplication>
#include <QEvent>
#include <QScopedValueRollback>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// The least contrast at which a text can be read.
constexpr double legibleContrast = 4.5;
/// How much of the text's colour hints have, which are meant to be faint.
constexpr double hintShare = 0.65;
/// How much of the text's colour boxes on a dark ground have.
constexpr double boxShare = 0.25;
/// With less, white would take too much of an accent's light to be read on it.
constexpr double leastContrastOfAccent = 3;
/// The tool tips' ground where nobody chose one.
constexpr QColor toolkitToolTip(255, 255, 220);

double contrastOf(const QColor &one, const QColor &other)
{
    return contrast(one.rgb(), other.rgb());
}

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

/// Of the toolkit's, which has no dark one.
QPalette plainPalette(Appearance appearance)
{
    const bool isDark = appearance == Appearance::dark;
    QPalette palette(isDark ? 0x3A3A3D : 0xEFEFF0, isDark ? 0x2B2B2D : 0xF3F3F4);
    const QColor base = isDark ? 0x1F1F21 : 0xFFFFFF;
    const QColor text = isDark ? 0xE8E8E8 : 0x1C1C1E;
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, blended(palette.color(QPalette::Window), text, 0.45));
    }
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, blended(base, text, 0.04));
    palette.setColor(QPalette::ToolTipBase, blended(base, text, 0.1));
    palette.setColor(QPalette::PlaceholderText, blended(base, text, hintShare));
    palette.setColor(QPalette::Highlight, isDark ? 0x3A6FB5 : 0x3074C8);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, isDark ? 0x7DB4F5 : 0x1F5FB8);
    palette.setColor(QPalette::LinkVisited, isDark ? 0xC39CF0 : 0x7440A8);
    return palette;
}

void setAccent(QPalette &palette, const QColor &accent)
{
    const bool isLight = contrastOf(accent, Qt::white) < leastContrastOfAccent;
    const QColor text = isLight ? Qt::black : Qt::white;
    const QColor ground = QColor::fromRgb(legible(accent.rgb(), oppositeOf(text.rgb()), legibleContrast, {text.rgb()}));
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        palette.setColor(group, QPalette::Highlight, ground);
        palette.setColor(group, QPalette::HighlightedText, text);
    }
}

void setHighContrast(QPalette &palette, bool isDark)
{
    const QColor text = isDark ? Qt::white : Qt::black;
    const QColor ground = isDark ? Qt::black : Qt::white;
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, blended(ground, text, 0.6));
    }
    // On black the toolkit's outlines are black as well: there, fields and boxes are told from the window by their ground.
    const QColor field = blended(ground, text, isDark ? 0.3 : 0);
    palette.setColor(QPalette::Window, ground);
    for (const auto role : {QPalette::Base, QPalette::AlternateBase, QPalette::ToolTipBase}) {
        palette.setColor(role, field);
    }
    palette.setColor(QPalette::Button, blended(ground, text, isDark ? 0.15 : 0.08));
    palette.setColor(QPalette::PlaceholderText, blended(field, text, 0.75));
    // Of these the borders are made.
    for (const auto role : {QPalette::Mid, QPalette::Dark, QPalette::Shadow}) {
        palette.setColor(role, blended(ground, text, 0.7));
    }
}

} // namespace

QPalette requestedPalette(const QPalette &desktop, const RequestedAppearance &requested)
{
    const bool wasDark = isDark(desktop);
    const bool isDark = requested.scheme.value_or(wasDark ? Appearance::dark : Appearance::light) == Appearance::dark;
    QPalette palette;
    palette.setResolveMask(0);
    if (isDark != wasDark) {
        palette = plainPalette(isDark ? Appearance::dark : Appearance::light);
    }
    if (requested.accent) {
        setAccent(palette, *requested.accent);
    }
    if (requested.hasHighContrast) {
        setHighContrast(palette, isDark);
    }
    return palette;
}

QPalette legibleHints(const QPalette &desktop)
{
    QPalette adjusted;
    adjusted.setResolveMask(0);
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        const QColor ground = desktop.color(group, QPalette::Base);
        const QColor hint = desktop.color(group, QPalette::PlaceholderText);
        if (contrastOf(ground, blended(ground, hint, hint.alphaF())) < legibleContrast) {
            adjusted.setColor(group, QPalette::PlaceholderText, blended(ground, desktop.color(group, QPalette::Text), hintShare));
        }
    }
    return adjusted;
}

QPalette visibleBoxes(const QPalette &shown)
{
    QPalette adjusted;
    adjusted.setResolveMask(0);
    const QColor ground = blended(shown.color(QPalette::Base), shown.color(QPalette::Text), boxShare);
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        adjusted.setColor(group, QPalette::Base, ground);
    }
    return adjusted;
}

QPalette plainToolTips(const QPalette &desktop)
{
    QPalette adjusted;
    adjusted.setResolveMask(0);
    if (desktop.color(QPalette::ToolTipBase) != toolkitToolTip) {
        return adjusted;
    }
    const auto shade = [&desktop](double share) { return blended(desktop.color(QPalette::Base), desktop.color(QPalette::Text), share); };
    adjusted.setColor(QPalette::ToolTipBase, shade(0.03));
    adjusted.setColor(QPalette::ToolTipText, shade(0.85));
    return adjusted;
}

DesktopPalette::DesktopPalette(std::function<QPalette()> desktop) : m_desktop(std::move(desktop))
{
    adjust();
    qApp->installEventFilter(this);
}

void DesktopPalette::adapt(const RequestedAppearance &requested)
{
    const bool looksAlike = requested.scheme == m_requested.scheme && requested.accent == m_requested.accent &&
                            requested.hasHighContrast == m_requested.hasHighContrast;
    m_requested = requested;
    if (!looksAlike) {
        adjust();
    }
}

void DesktopPalette::follow(std::optional<Appearance> chosen)
{
    if (chosen != m_chosen) {
        m_chosen = chosen;
        adjust();
    }
}

bool DesktopPalette::eventFilter(QObject *object, QEvent *event)
{
    // Where every colour is set here, another theme changes none of the application's and only the windows are notified of it.
    const bool isForeign = event->type() == QEvent::ApplicationPaletteChange && object == qApp && QApplication::palette() != m_shown;
    if (!m_isAdjusting && (isForeign || event->type() == QEvent::ThemeChange)) {
        adjust();
    }
    return QObject::eventFilter(object, event);
}

QPalette DesktopPalette::systemPalette()
{
    QApplication::setPalette(QPalette());
    return QApplication::palette();
}

void DesktopPalette::adjust()
{
    // Everybody is notified at once of the palettes that are set meanwhile.
    const QScopedValueRollback adjusting(m_isAdjusting, true);
    const QPalette desktop = m_desktop();
    RequestedAppearance requested = m_requested;
    requested.scheme = m_chosen ? m_chosen : requested.scheme;
    QPalette adjusted = requestedPalette(desktop, requested);
    if (const QPalette hints = legibleHints(adjusted.resolve(desktop)); hints.resolveMask() != 0) {
        adjusted = hints.resolve(adjusted);
    }
    const QPalette shown = adjusted.resolve(desktop);
    const QPalette toolTips = plainToolTips(shown);
    if (toolTips.resolveMask() != 0) {
        QToolTip::setPalette(toolTips.resolve(shown));
        m_hasSetToolTips = true;
    } else if (std::exchange(m_hasSetToolTips, false)) {
        QToolTip::setPalette(shown);
    }
    if (adjusted.resolveMask() != 0) {
        // Only what is set becomes the application's own: the other colours go on following the desktop.
        QApplication::setPalette(shown);
    }
    m_shown = QApplication::palette();
    adjustBoxes(adjusted);
    if (const Appearance before = std::exchange(m_ofDesktop, isDark(desktop) ? Appearance::dark : Appearance::light);
        before != m_ofDesktop) {
        emit desktopChanged();
    }
}

void DesktopPalette::adjustBoxes(const QPalette &adjusted)
{
    // What the desktop has in its own colours its style shows well enough.
    const bool areNeeded = adjusted.isBrushSet(QPalette::Active, QPalette::Base) && isDark(m_shown) && !m_requested.hasHighContrast;
    m_hasSetBoxes = m_hasSetBoxes || areNeeded;
    if (!m_hasSetBoxes) {
        return;
    }
    // What was set once for a kind of widget is never taken back, only made like the rest.
    QPalette none = m_shown;
    none.setResolveMask(0);
    for (const char *kind : {"QCheckBox", "QRadioButton"}) {
        QApplication::setPalette(areNeeded ? visibleBoxes(m_shown) : none, kind);
    }
}
