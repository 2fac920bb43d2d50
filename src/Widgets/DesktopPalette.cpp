// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/DesktopPalette.h"

#include "Desktop/PaletteBlend.h"

#include <QApplication>
#include <QEvent>
#include <QScopedValueRollback>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// The least contrast at which a hint, which is meant to be faint, can be read.
constexpr double leastContrast = 2.5;
/// How much of the text's colour hints have.
constexpr double hintShare = 0.6;
/// At which white can be read on an accent.
constexpr double legibleContrast = 3;
/// The tool tips' ground where nobody chose one.
constexpr QColor toolkitToolTip(255, 255, 220);

double luminance(const QColor &color)
{
    const auto linear = [](double part) { return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// From 1, for none, to 21, for black and white.
double contrast(const QColor &one, const QColor &other)
{
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
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
    const QColor text = contrast(accent, Qt::white) >= legibleContrast ? Qt::white : Qt::black;
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        palette.setColor(group, QPalette::Highlight, accent);
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
        if (contrast(ground, blended(ground, hint, hint.alphaF())) < leastContrast) {
            adjusted.setColor(group, QPalette::PlaceholderText, blended(ground, desktop.color(group, QPalette::Text), hintShare));
        }
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
    m_requested = requested;
    adjust();
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
    QPalette adjusted = requestedPalette(desktop, m_requested);
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
}
