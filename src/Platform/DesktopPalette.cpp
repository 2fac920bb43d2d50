// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Platform/DesktopPalette.h"

#include "Platform/ColorMix.h"

#include <QApplication>
#include <QEvent>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// The least contrast at which a hint, which is meant to be faint, can be read.
constexpr double leastContrast = 2.5;
/// How much of the text's colour hints have.
constexpr double hintShare = 0.6;
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

} // namespace

QPalette legibleHints(const QPalette &desktop)
{
    QPalette mended;
    mended.setResolveMask(0);
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        const QColor ground = desktop.color(group, QPalette::Base);
        const QColor hint = desktop.color(group, QPalette::PlaceholderText);
        if (contrast(ground, mixed(ground, hint, hint.alphaF())) < leastContrast) {
            mended.setColor(group, QPalette::PlaceholderText, mixed(ground, desktop.color(group, QPalette::Text), hintShare));
        }
    }
    return mended;
}

QPalette plainToolTips(const QPalette &desktop)
{
    QPalette mended;
    mended.setResolveMask(0);
    if (desktop.color(QPalette::ToolTipBase) != toolkitToolTip) {
        return mended;
    }
    const auto shade = [&desktop](double share) { return mixed(desktop.color(QPalette::Base), desktop.color(QPalette::Text), share); };
    mended.setColor(QPalette::ToolTipBase, shade(0.03));
    mended.setColor(QPalette::ToolTipText, shade(0.85));
    return mended;
}

DesktopPalette::DesktopPalette()
{
    mend();
    qApp->installEventFilter(this);
}

bool DesktopPalette::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::ApplicationPaletteChange && object == qApp) {
        mend();
    }
    return QObject::eventFilter(object, event);
}

void DesktopPalette::mend()
{
    const QPalette shown = QApplication::palette();
    const QPalette toolTips = plainToolTips(shown);
    if (toolTips.resolveMask() != 0) {
        QToolTip::setPalette(toolTips.resolve(shown));
        m_hasSetToolTips = true;
    } else if (std::exchange(m_hasSetToolTips, false)) {
        QToolTip::setPalette(shown);
    }
    if (const QPalette hints = legibleHints(shown); hints.resolveMask() != 0) {
        // Only what is set becomes the application's own: the other colours go on following the desktop. Comes back here.
        QApplication::setPalette(hints.resolve(shown));
    }
}
