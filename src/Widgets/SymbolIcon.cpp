// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/SymbolIcon.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <algorithm>

using namespace Qt::StringLiterals;

// Without the call the linker would leave the symbols out of programs, as nothing else refers to them.
static void registerIcons()
{
    Q_INIT_RESOURCE(icons);
}

namespace {

QString pathOf(const QString &name)
{
    return u":/icons/%1.svg"_s.arg(name);
}

class SymbolEngine final : public QIconEngine {
public:
    SymbolEngine(QString name, const QColor &normal, const QColor &disabled)
        : m_name(std::move(name)), m_normal(normal), m_disabled(disabled)
    {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        Q_UNUSED(state)
        const double scale = painter->device()->devicePixelRatioF();
        const int side = std::min(rect.width(), rect.height());
        QPixmap symbol = render(qRound(side * scale), mode);
        symbol.setDevicePixelRatio(scale);
        painter->drawPixmap(rect.topLeft() + QPoint((rect.width() - side) / 2, (rect.height() - side) / 2), symbol);
    }

    /// `size` is in device pixels.
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        Q_UNUSED(state)
        const int side = std::min(size.width(), size.height());
        if (size.width() == size.height()) {
            return render(side, mode);
        }
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter(&picture).drawPixmap((size.width() - side) / 2, (size.height() - side) / 2, render(side, mode));
        return picture;
    }

    [[nodiscard]] QIconEngine *clone() const override { return new SymbolEngine(m_name, m_normal, m_disabled); }
    QString iconName() override { return m_name; }

private:
    [[nodiscard]] QColor color(QIcon::Mode mode) const
    {
        const QPalette palette = QGuiApplication::palette();
        switch (mode) {
        case QIcon::Disabled:
            return m_disabled.isValid() ? m_disabled : palette.color(QPalette::Disabled, QPalette::ButtonText);
        case QIcon::Selected:
            return palette.color(QPalette::Active, QPalette::HighlightedText);
        case QIcon::Normal:
        case QIcon::Active:
            break;
        }
        return m_normal.isValid() ? m_normal : palette.color(QPalette::Active, QPalette::ButtonText);
    }

    /// `side` in device pixels.
    [[nodiscard]] QPixmap render(int side, QIcon::Mode mode) const
    {
        const QColor ink = color(mode);
        const QString key = u"symbol %1 %2 %3"_s.arg(m_name).arg(side).arg(ink.rgba());
        QPixmap picture;
        if (side <= 0 || QPixmapCache::find(key, &picture)) {
            return picture;
        }
        picture = QPixmap(side, side);
        picture.fill(Qt::transparent);
        QSvgRenderer renderer(pathOf(m_name));
        QPainter painter(&picture);
        renderer.render(&painter, QRectF(0, 0, side, side));
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(picture.rect(), ink);
        painter.end();
        QPixmapCache::insert(key, picture);
        return picture;
    }

    QString m_name;
    QColor m_normal;
    QColor m_disabled;
};

} // namespace

QIcon symbolIcon(QAnyStringView name, const QColor &normal, const QColor &disabled)
{
    registerIcons();
    const QString known = name.toString();
    return QFile::exists(pathOf(known)) ? QIcon(new SymbolEngine(known, normal, disabled)) : QIcon();
}

QIcon applicationIcon()
{
    registerIcons();
    // Not the theme's: to look for it takes a fifth of the whole start, and desktops show that of the entry in their menus anyway.
    return QIcon(pathOf(u"org.quillet.Quillet"_s));
}
