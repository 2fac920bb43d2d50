// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/InterfaceStyle.h"

#include "Widgets/SymbolIcon.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOptionComplex>

namespace {

constexpr double ringWidth = 1.5;
constexpr double ringRadius = 4;

} // namespace

int InterfaceStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget, QStyleHintReturn *returned) const
{
    switch (hint) {
    case SH_Menu_Scrollable:
        return 1;
    case SH_EtchDisabledText:
        return 0;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
}

void InterfaceStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                                        const QWidget *widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    constexpr State flatAndFocused = State_AutoRaise | State_HasFocus;
    if (control != CC_ToolButton || (option->state & flatAndFocused) != flatAndFocused) {
        return;
    }
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(option->palette.color(QPalette::Active, QPalette::Highlight), ringWidth));
    painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(QRectF(option->rect).adjusted(ringWidth / 2, ringWidth / 2, -ringWidth / 2, -ringWidth / 2), ringRadius,
                             ringRadius);
    painter->restore();
}

QIcon InterfaceStyle::standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const
{
    return icon == SP_ToolBarHorizontalExtensionButton ? symbolIcon(u"chevron.right.2") : QProxyStyle::standardIcon(icon, option, widget);
}

QString InterfaceStyle::baseName()
{
    const QStyle *style = QApplication::style();
    if (const auto *proxy = qobject_cast<const QProxyStyle *>(style)) {
        style = proxy->baseStyle();
    }
    return style->name();
}
