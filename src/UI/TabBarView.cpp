// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/TabBarView.h"

#include "Base/Translation.h"
#include "Commands/ActionKeys.h"
#include "Commands/Actions.h"
#include "Editor/BarColors.h"
#include "Highlighting/Theme.h"
#include "Widgets/AccessibleRole.h"
#include "Widgets/FlatButton.h"
#include "Widgets/InterfaceFont.h"
#include "Widgets/PlainToolTip.h"

#include <QActionGroup>
#include <QApplication>
#include <QDragEnterEvent>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QWheelEvent>

#include <cstdlib>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int leastHeight = 30;
constexpr int fontMargin = 12;
constexpr int buttonSide = 22;
constexpr int buttonSymbolSide = 14;
constexpr int rightInset = 8;
constexpr int buttonGap = 2;
constexpr int scrollButtonWidth = 20;
constexpr int scrollSymbolSide = 10;
/// How far a scroll button goes, in pixels.
constexpr int scrollStep = 120;
/// How far the row goes, in pixels, with each move of a dragged tab over a scroll button.
constexpr int dragScrollStep = 16;
/// Titles in the menu of all tabs are cut at this width, in characters.
constexpr int menuTitleLength = 60;

} // namespace

TabBarView::TabBarView(QWidget *parent)
    : QWidget(parent), m_theme(&Theme::light()), m_viewport(new QWidget(this)), m_strip(new QWidget(m_viewport)),
      m_scrollLeftButton(new FlatButton(this)), m_scrollRightButton(new FlatButton(this)), m_allTabsButton(new FlatButton(this)),
      m_newTabButton(new FlatButton(this)), m_allTabsMenu(new QMenu(this)), m_allTabsChoice(new QActionGroup(this))
{
    setAccessibleRole(*m_strip, QAccessible::PageTabList);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAcceptDrops(true);
    m_scrollLeftButton->setSymbol(u"chevron.left"_s, scrollSymbolSide);
    m_scrollRightButton->setSymbol(u"chevron.right"_s, scrollSymbolSide);
    for (FlatButton *button : {m_scrollLeftButton, m_scrollRightButton}) {
        // The keyboard goes along the tabs themselves.
        button->setFocusPolicy(Qt::NoFocus);
        button->setAutoFillBackground(true);
        button->setAutoRepeat(true);
    }
    connect(m_scrollLeftButton, &QAbstractButton::clicked, this, [this] { scrollTo(m_offset - scrollStep); });
    connect(m_scrollRightButton, &QAbstractButton::clicked, this, [this] { scrollTo(m_offset + scrollStep); });

    m_allTabsButton->setSymbol(u"chevron.down"_s, scrollSymbolSide);
    m_allTabsButton->setPopupMode(QToolButton::InstantPopup);
    m_allTabsButton->setMenu(m_allTabsMenu);
    m_allTabsMenu->setToolTipsVisible(true);
    connect(m_allTabsMenu, &QMenu::aboutToShow, this, &TabBarView::fillMenuOfTabs);

    m_newTabButton->setSymbol(u"plus"_s, buttonSymbolSide);
    connect(m_newTabButton, &QAbstractButton::clicked, this, &TabBarView::newTabRequested);
    updateFonts();
    applyPalette();
    retranslate();
}

TabBarView::~TabBarView()
{
    // An item that has the focus loses it when there is no bar any more.
    for (TabItemView *item : m_items) {
        item->onFocusChange = {};
    }
}

void TabBarView::retranslate()
{
    m_strip->setAccessibleName(localized(u"Tabs"));
    m_scrollLeftButton->setToolTip(localized(u"Scroll Left"));
    m_scrollRightButton->setToolTip(localized(u"Scroll Right"));
    m_allTabsButton->setToolTip(localized(u"All Tabs"));
    m_newTabButton->setAccessibleName(localized(Actions::newDocument.title));
    m_newTabButton->setToolTip(toolTipOf(Actions::newDocument, m_newTabButton->accessibleName()));
    for (FlatButton *button : {m_scrollLeftButton, m_scrollRightButton, m_allTabsButton}) {
        button->setAccessibleName(button->toolTip());
    }
    for (TabItemView *item : m_items) {
        item->retranslate();
    }
}

// Tabs

void TabBarView::setTabs(const std::vector<TabDescriptor> &tabs, int selectedIndex)
{
    m_selectedIndex = selectedIndex >= 0 && selectedIndex < int(tabs.size()) ? selectedIndex : -1;
    while (m_items.size() < tabs.size()) {
        addItem();
    }
    while (m_items.size() > tabs.size()) {
        dropLastItem();
    }
    for (int index = 0; const TabDescriptor &tab : tabs) {
        m_items[size_t(index)]->setContent(tab, index,
                                           index == m_selectedIndex ? TabItemView::Selection::selected : TabItemView::Selection::other);
        ++index;
    }
    updateTabStop();
    layOut();
}

void TabBarView::addItem()
{
    auto *item = new TabItemView(m_strip);
    item->setLook(*m_theme, m_activity);
    item->onSelect = [this, item] { select(item->index()); };
    item->onClose = [this, item] { requestClose(item->index()); };
    item->onDrop = [this, item](int from) { move(from, item->index()); };
    item->onStep = [this, item](TabItemView::Step step) { moveFocus(step, item->index()); };
    item->onContextMenu = [this, item](QPoint position) { requestMenu(item->index(), position); };
    item->onFocusChange = [this, item] {
        updateTabStop();
        if (item->hasFocus()) {
            reveal(item->index());
        }
    };
    m_items.push_back(item);
    item->show();
}

void TabBarView::dropLastItem()
{
    TabItemView *item = m_items.back();
    m_items.pop_back();
    if (item->hasFocus() && !m_items.empty()) {
        m_items.back()->setFocus(Qt::OtherFocusReason);
    }
    // It may be what led here.
    item->hide();
    item->deleteLater();
}

/// Tab comes to one item of the row only: where the keyboard is, else the selected one. New items stand at the end of the window's order,
/// so the one has to be put before the buttons.
void TabBarView::updateTabStop()
{
    if (m_items.empty()) {
        return;
    }
    TabItemView *stop = m_items[size_t(qMax(m_selectedIndex, 0))];
    for (TabItemView *item : m_items) {
        stop = item->hasFocus() ? item : stop;
    }
    for (TabItemView *item : m_items) {
        item->setFocusPolicy(item == stop ? Qt::TabFocus : Qt::NoFocus);
    }
    // The order takes only widgets that the keyboard can come to.
    m_strip->setFocusPolicy(Qt::TabFocus);
    setTabOrder(m_strip, stop);
    m_strip->setFocusPolicy(Qt::NoFocus);
}

void TabBarView::select(int index)
{
    if (index < int(m_items.size())) {
        emit tabChosen(index);
    }
}

void TabBarView::requestClose(int index)
{
    if (index < int(m_items.size())) {
        emit closeRequested(index);
    }
}

/// A tab that comes from a longer bar has an index that this one may not have.
void TabBarView::move(int from, int to)
{
    if (from >= 0 && from < int(m_items.size()) && from != to) {
        emit moveRequested(from, to);
    }
}

void TabBarView::moveFocus(TabItemView::Step step, int from)
{
    const int last = int(m_items.size()) - 1;
    int index = from;
    switch (step) {
    case TabItemView::Step::previous:
        index = qMax(0, from - 1);
        break;
    case TabItemView::Step::next:
        index = qMin(last, from + 1);
        break;
    case TabItemView::Step::first:
        index = 0;
        break;
    case TabItemView::Step::last:
        index = last;
        break;
    }
    m_items[size_t(index)]->setFocus(Qt::TabFocusReason);
}

// Menus

void TabBarView::requestMenu(int index, QPoint globalPosition)
{
    if (index < int(m_items.size())) {
        emit menuRequested(index, globalPosition);
    }
}

void TabBarView::fillMenuOfTabs()
{
    m_allTabsMenu->clear();
    const QFontMetrics metrics(m_allTabsMenu->font());
    const int width = metrics.averageCharWidth() * menuTitleLength;
    for (const TabItemView *item : m_items) {
        const TabDescriptor &tab = item->descriptor();
        QString title = metrics.elidedText(tab.fullTitle(), Qt::ElideMiddle, width).replace(u'&', u"&&"_s);
        if (tab.isDirty || tab.hasExternalChange) {
            title += u" (%1)"_s.arg(localized(tab.hasExternalChange ? u"changed on disk" : u"edited"));
        }
        const int index = item->index();
        QAction *entry = m_allTabsMenu->addAction(title, this, [this, index] { select(index); });
        entry->setToolTip(plainToolTip(tab.tooltip));
        m_allTabsChoice->addAction(entry);
        entry->setCheckable(true);
        entry->setChecked(item->isSelected());
        if (item->isSelected()) {
            m_allTabsMenu->setActiveAction(entry);
        }
    }
}

// Looks

void TabBarView::setTheme(const Theme &theme)
{
    m_theme = &theme;
    applyPalette();
}

void TabBarView::setActivePane(PaneActivity activity)
{
    m_activity = activity;
    for (TabItemView *item : m_items) {
        item->setLook(*m_theme, m_activity);
    }
}

void TabBarView::applyPalette()
{
    QPalette colors = QGuiApplication::palette();
    const BarColors bar = BarColors::of(*m_theme);
    colors.setColor(QPalette::Window, QColor::fromRgb(bar.tabBar));
    colors.setColor(QPalette::ButtonText, QColor::fromRgb(bar.tabText));
    setPalette(colors);
    setActivePane(m_activity);
    update();
}

void TabBarView::updateFonts()
{
    m_strip->setFont(scaledFont(QApplication::font(), TextSize::tab));
    updateGeometry();
    layOut();
}

QSize TabBarView::sizeHint() const
{
    return {leastHeight * 10, qMax(leastHeight, QFontMetrics(m_strip->font()).height() + fontMargin)};
}

QSize TabBarView::minimumSizeHint() const
{
    return {leastHeight * 4, sizeHint().height()};
}

void TabBarView::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Active, QPalette::Window));
    const double devicePixel = 1 / qMax(1.0, devicePixelRatioF());
    painter.fillRect(QRectF(0, height() - devicePixel, width(), devicePixel), QColor::fromRgb(BarColors::of(*m_theme).tabBorder));
}

// Places and scrolling

void TabBarView::scrollSelectedTabIntoView()
{
    m_shallReveal = true;
    QCoreApplication::postEvent(this, new QEvent(QEvent::LayoutRequest));
}

bool TabBarView::event(QEvent *event)
{
    const bool isHandled = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest && std::exchange(m_shallReveal, false)) {
        reveal(m_selectedIndex);
    } else if (event->type() == QEvent::ApplicationFontChange) {
        updateFonts();
    } else if (event->type() == QEvent::ApplicationPaletteChange) {
        applyPalette();
    }
    return isHandled;
}

void TabBarView::resizeEvent(QResizeEvent * /*event*/)
{
    const bool staysInView = isInView(m_selectedIndex);
    layOut();
    if (staysInView) {
        reveal(m_selectedIndex);
    }
}

void TabBarView::layOut()
{
    int right = width() - rightInset - buttonSide;
    const int top = (height() - buttonSide) / 2;
    m_newTabButton->setGeometry(right, top, buttonSide, buttonSide);
    int row = 0;
    for (const TabItemView *item : m_items) {
        row += item->sizeHint().width();
    }
    const bool fits = row <= right;
    m_allTabsButton->setVisible(!fits);
    if (!fits) {
        right -= buttonSide + buttonGap;
        m_allTabsButton->setGeometry(right, top, buttonSide, buttonSide);
        right -= buttonGap;
    }
    m_viewport->setGeometry(0, 0, right, height());
    m_strip->resize(row, height());
    int x = 0;
    for (TabItemView *item : m_items) {
        const int width = item->sizeHint().width();
        item->setGeometry(x, 0, width, height());
        x += width;
    }
    // The line at the bottom goes on below them.
    m_scrollLeftButton->setGeometry(0, 0, scrollButtonWidth, height() - 1);
    m_scrollRightButton->setGeometry(right - scrollButtonWidth, 0, scrollButtonWidth, height() - 1);
    scrollTo(m_offset);
}

int TabBarView::greatestOffset() const
{
    return qMax(0, m_strip->width() - m_viewport->width());
}

void TabBarView::scrollTo(int offset)
{
    m_offset = qBound(0, offset, greatestOffset());
    m_strip->move(-m_offset, 0);
    m_scrollLeftButton->setVisible(m_offset > 0);
    m_scrollRightButton->setVisible(m_offset < greatestOffset());
}

bool TabBarView::isInView(int index) const
{
    if (index < 0) {
        return false;
    }
    const QRect place = m_items[size_t(index)]->geometry();
    return place.left() >= m_offset && place.right() < m_offset + m_viewport->width();
}

/// As little as is needed for the item to be seen beside the scroll buttons, which lie on the row.
void TabBarView::reveal(int index)
{
    if (index < 0) {
        return;
    }
    const QRect place = m_items[size_t(index)]->geometry();
    const int furthest = place.left() - scrollButtonWidth;
    const int nearest = place.right() + 1 + scrollButtonWidth - m_viewport->width();
    // The start counts where the item is wider than what is seen.
    scrollTo(qMin(qMax(m_offset, nearest), furthest));
}

void TabBarView::wheelEvent(QWheelEvent *event)
{
    const QPoint pixels = event->pixelDelta();
    const QPoint angle = event->angleDelta();
    const auto larger = [](QPoint delta) { return std::abs(delta.x()) > std::abs(delta.y()) ? delta.x() : delta.y(); };
    // A notch is 120 units of angle, which is as good as a scroll step in pixels.
    scrollTo(m_offset - larger(pixels.isNull() ? angle : pixels));
    event->accept();
}

// A tab is dragged past what is seen by way of the scroll buttons; nothing can be dropped there.

void TabBarView::dragEnterEvent(QDragEnterEvent *event)
{
    dragMoveEvent(event);
}

void TabBarView::dragMoveEvent(QDragMoveEvent *event)
{
    const QWidget *under = childAt(event->position().toPoint());
    const bool isOverButton = under && (under == m_scrollLeftButton || under == m_scrollRightButton);
    if (!isOverButton || !event->mimeData()->hasFormat(TabItemView::mimeType())) {
        event->ignore();
        return;
    }
    event->accept();
    scrollTo(m_offset + (under == m_scrollLeftButton ? -dragScrollStep : dragScrollStep));
}
