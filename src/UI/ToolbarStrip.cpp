// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/ToolbarStrip.h"

#include "Base/Translation.h"
#include "UI/ToolbarActionItem.h"
#include "UI/WindowAccessible.h"
#include "Widgets/ElidedLabel.h"
#include "Widgets/SymbolIcon.h"

#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QStyleOption>
#include <QToolButton>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int spacing = 2;
constexpr int margin = 4;
/// Between the title and what stands beside it.
constexpr int titleMargin = 8;
constexpr int titleMargins = 2 * titleMargin;
/// A title of this width says something still.
constexpr int narrowestTitle = 84;

/// What the titles of the menus take, also those for which there is no room now. Asking the menu bar itself would have it lay out its
/// corners, and so ask back.
int widthOfTitles(const QMenuBar &menuBar)
{
    const QStyle *style = menuBar.style();
    QStyleOptionMenuItem option;
    option.initFrom(&menuBar);
    option.menuItemType = QStyleOptionMenuItem::Normal;
    int width = 2 * (style->pixelMetric(QStyle::PM_MenuBarPanelWidth, nullptr, &menuBar) +
                     style->pixelMetric(QStyle::PM_MenuBarHMargin, nullptr, &menuBar));
    for (const QAction *action : menuBar.actions()) {
        if (action->isVisible() && !action->isSeparator()) {
            option.text = action->text();
            const QSize text = menuBar.fontMetrics().size(Qt::TextShowMnemonic, action->text());
            width += style->sizeFromContents(QStyle::CT_MenuBarItem, &option, text, &menuBar).width() +
                     style->pixelMetric(QStyle::PM_MenuBarItemSpacing, nullptr, &menuBar);
        }
    }
    return width;
}

/// Its symbol is arrow enough.
class ExtensionButton final : public QToolButton {
public:
    using QToolButton::QToolButton;

protected:
    void initStyleOption(QStyleOptionToolButton *option) const override
    {
        QToolButton::initStyleOption(option);
        option->features &= ~QStyleOptionToolButton::HasMenu;
    }
};

} // namespace

void emptyMenu(QMenu &menu)
{
    qDeleteAll(menu.findChildren<QMenu *>(Qt::FindDirectChildrenOnly));
    menu.clear();
}

ToolbarStrip::ToolbarStrip(QWidget *parent)
    : QWidget(parent), m_title(new ElidedLabel(Qt::ElideMiddle, this)), m_extension(new ExtensionButton(this)),
      m_extensionMenu(new QMenu(this))
{
    WindowAccessible::install();
    setAccessibleName(localized(u"Toolbar"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    // Beside the menus it must not look like one of them.
    QFont bold;
    bold.setBold(true);
    m_title->setFont(bold);
    m_title->hide();
    m_extension->setAutoRaise(true);
    m_extension->setFocusPolicy(Qt::TabFocus);
    m_extension->setIcon(symbolIcon(u"chevron.right.2"));
    m_extension->setPopupMode(QToolButton::InstantPopup);
    m_extension->setMenu(m_extensionMenu);
    const QString name = localized(u"More Commands");
    m_extension->setToolTip(name);
    m_extension->setAccessibleName(name);
    m_extension->hide();
    connect(m_extensionMenu, &QMenu::aboutToShow, this, &ToolbarStrip::fillExtension);
}

void ToolbarStrip::addItem(ToolbarActionItem &item)
{
    m_items.push_back(&item);
    // Last for the keyboard too.
    setTabOrder(&item, m_extension);
    item.setVisible(true);
    contentChanged();
}

void ToolbarStrip::setTitle(const QString &title)
{
    if (title != m_title->text()) {
        m_title->setText(title);
        contentChanged();
    }
}

// Places

void ToolbarStrip::contentChanged()
{
    arrange();
    updateGeometry();
    if (m_menuBar && m_menuBar->cornerWidget() == this) {
        // It looks at the size of its corners only then.
        m_menuBar->setCornerWidget(this);
    }
}

int ToolbarStrip::itemsWidth() const
{
    int width = 0;
    for (const ToolbarActionItem *item : m_items) {
        width += item->sizeHint().width() + spacing;
    }
    return width;
}

int ToolbarStrip::titleWidth() const
{
    return m_title->text().isEmpty() ? 0 : m_title->sizeHint().width() + titleMargins;
}

QSize ToolbarStrip::sizeHint() const
{
    int height = m_extension->sizeHint().height();
    for (const ToolbarActionItem *item : m_items) {
        height = std::max(height, item->sizeHint().height());
    }
    int width = 2 * margin + titleWidth() + itemsWidth();
    if (m_menuBar) {
        width = std::min(width, m_menuBar->width() - widthOfTitles(*m_menuBar));
    }
    return QSize(width, height).expandedTo(minimumSizeHint());
}

QSize ToolbarStrip::minimumSizeHint() const
{
    const QSize extension = m_extension->sizeHint();
    return {m_items.empty() ? 0 : 2 * margin + std::min(itemsWidth(), extension.width()), extension.height()};
}

void ToolbarStrip::arrange()
{
    int room = width() - 2 * margin;
    const int extension = m_extension->sizeHint().width() + spacing;
    // The title keeps so much of itself as long as there is something to be seen beside it.
    const int narrowTitle = std::min(titleWidth(), narrowestTitle + titleMargins);
    const bool hasTitle = narrowTitle > 0 && room - narrowTitle >= std::min(itemsWidth(), 2 * extension);
    room -= hasTitle ? narrowTitle : 0;

    int used = itemsWidth();
    m_shownCount = m_items.size();
    const bool isExtended = used > room;
    if (isExtended) {
        used += extension;
        while (m_shownCount > 0 && used > room) {
            used -= m_items[--m_shownCount]->sizeHint().width() + spacing;
        }
    }
    m_title->setVisible(hasTitle);
    m_title->setGeometry(margin + titleMargin, 0, std::min(titleWidth(), room + narrowTitle - used) - titleMargins, height());

    int x = width() - margin - used;
    const auto place = [&x, this](QToolButton &button) {
        const QSize size = button.sizeHint();
        button.setGeometry(x, (height() - size.height()) / 2, size.width(), size.height());
        x += size.width() + spacing;
    };
    for (size_t i = 0; i < m_items.size(); ++i) {
        const bool isShown = i < m_shownCount;
        m_items[i]->setVisible(isShown);
        if (isShown) {
            place(*m_items[i]);
        }
    }
    m_extension->setVisible(isExtended);
    if (isExtended) {
        place(*m_extension);
    }
}

bool ToolbarStrip::event(QEvent *event)
{
    // Of the buttons: they look different now, as after another style or font.
    if (event->type() == QEvent::LayoutRequest) {
        contentChanged();
    }
    return QWidget::event(event);
}

void ToolbarStrip::resizeEvent(QResizeEvent * /*event*/)
{
    arrange();
}

void ToolbarStrip::fillExtension()
{
    emptyMenu(*m_extensionMenu);
    for (size_t i = m_shownCount; i < m_items.size(); ++i) {
        m_fill(*m_extensionMenu, *m_items[i]);
    }
}

// Keys

std::vector<QWidget *> ToolbarStrip::stops() const
{
    std::vector<QWidget *> stops(m_items.begin(), m_items.end());
    stops.push_back(m_extension);
    std::erase_if(stops, [this](const QWidget *button) { return !button->isEnabled() || !button->isVisibleTo(this); });
    return stops;
}

QWidget *ToolbarStrip::entry() const
{
    const std::vector<QWidget *> found = stops();
    return found.empty() ? nullptr : found.front();
}

void ToolbarStrip::moveFocus(int step)
{
    const std::vector<QWidget *> found = stops();
    const auto now = std::find(found.begin(), found.end(), focusWidget());
    const qsizetype next = now - found.begin() + step;
    if (now != found.end() && next >= 0 && next < qsizetype(found.size())) {
        found[size_t(next)]->setFocus(Qt::TabFocusReason);
    }
}

void ToolbarStrip::keyPressEvent(QKeyEvent *event)
{
    // All are taken: the menu bar, if it is the parent, would open its menus at arrows and letters.
    switch (event->key()) {
    case Qt::Key_Left:
        moveFocus(-1);
        return;
    case Qt::Key_Right:
        moveFocus(1);
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (auto *button = qobject_cast<QToolButton *>(focusWidget())) {
            button->click();
        }
        return;
    case Qt::Key_Escape:
        emit left();
        return;
    default:
        break;
    }
}
