// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/TabItemView.h"

#include "Base/ColorContrast.h"
#include "Base/Translation.h"
#include "Commands/ActionKeys.h"
#include "Commands/Actions.h"
#include "Editor/BarColors.h"
#include "Highlighting/Theme.h"
#include "UI/TabAccessible.h"
#include "Widgets/FlatButton.h"
#include "Widgets/PlainToolTip.h"
#include "Widgets/SymbolIcon.h"
#include "Widgets/SystemColors.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDrag>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QPointer>

#include <algorithm>
#include <array>
#include <charconv>

using namespace Qt::StringLiterals;

namespace {

constexpr int leastWidth = 96;
constexpr int greatestWidth = 220;
constexpr int titleInset = 12;
constexpr int gap = 4;
constexpr int closeButtonSide = 18;
constexpr int closeButtonInset = 4;
constexpr int closeSymbolSide = 10;
constexpr int lockSide = 12;
constexpr double dotSide = 7;
constexpr double dotInset = 6;
constexpr int selectionBarHeight = 2;
constexpr int separatorInset = 4;
constexpr int insertionMarkWidth = 3;

constexpr QStringView detailStart = u" – ";
/// Of the room for both, what the detail has at most where they do not fit.
constexpr double detailShare = 0.4;

constexpr double activityShare = 0.65;
constexpr double dotOpacity = 0.85;
/// What a dot needs to be seen.
constexpr double contrastOfDots = 3;

QColor withOpacity(QColor color, double opacity)
{
    color.setAlphaF(float(opacity));
    return color;
}

/// The index in a dragged tab: decimal digits, perhaps with a sign, nothing else.
std::optional<int> draggedIndex(const QMimeData &data)
{
    const QByteArray text = data.data(TabItemView::mimeType());
    const bool hasPlus = text.size() > 1 && text[0] == '+' && text[1] != '-';
    int index = 0;
    const char *end = text.constData() + text.size();
    const auto [stop, error] = std::from_chars(text.constData() + (hasPlus ? 1 : 0), end, index);
    return error == std::errc() && stop == end ? std::optional(index) : std::nullopt;
}

/// Copies the callback: what it leads to may destroy the item.
template<typename... Arguments>
void call(std::function<void(Arguments...)> callback, std::type_identity_t<Arguments>... arguments)
{
    if (callback) {
        callback(arguments...);
    }
}

/// Accepts a tab that is to be moved, and refuses all else; the place where the tab was.
std::optional<int> acceptTab(QDropEvent &event)
{
    const std::optional<int> from = draggedIndex(*event.mimeData());
    if (!from || (event.possibleActions() & Qt::MoveAction) == 0) {
        event.ignore();
        return std::nullopt;
    }
    event.setDropAction(Qt::MoveAction);
    event.accept();
    return from;
}

} // namespace

QString TabDescriptor::fullTitle() const
{
    return detail.isEmpty() ? title : title + detailStart.toString() + detail;
}

QString TabItemView::mimeType()
{
    return u"org.quillet.Quillet.tab"_s;
}

TabItemView::TabItemView(QWidget *parent) : QWidget(parent), m_theme(&Theme::light()), m_closeButton(new FlatButton(this))
{
    TabItemAccessible::install();
    setAcceptDrops(true);
    m_closeButton->setSymbol(u"xmark"_s, closeSymbolSide);
    m_closeButton->setFixedSize(closeButtonSide, closeButtonSide);
    m_closeButton->setFocusPolicy(Qt::NoFocus);
    m_closeButton->hide();
    connect(m_closeButton, &QAbstractButton::clicked, this, [this] { call(onClose); });
    retranslate();
}

void TabItemView::setContent(const TabDescriptor &descriptor, int index, Selection selection)
{
    m_index = index;
    const bool wasSelected = isSelected();
    // A line break in a name has no width until it is painted as a space.
    TabDescriptor shown = descriptor;
    std::ranges::replace_if(
        shown.title, [](QChar unit) { return unit.isSpace(); }, u' ');
    if (shown == m_descriptor && selection == m_selection) {
        return;
    }
    m_descriptor = std::move(shown);
    m_selection = selection;
    setToolTip(plainToolTip(descriptor.tooltip));
    updateAccessibleTexts();
    if (wasSelected != isSelected()) {
        QAccessible::State changed;
        changed.selected = true;
        QAccessibleStateChangeEvent stateChange(this, changed);
        QAccessible::updateAccessibility(&stateChange);
        // The bridge to the bus reports the state for these only.
        QAccessibleEvent event(this, isSelected() ? QAccessible::Selection : QAccessible::SelectionRemove);
        QAccessible::updateAccessibility(&event);
    }
    setLook(*m_theme, m_activity);
}

void TabItemView::setLook(const Theme &theme, PaneActivity activity)
{
    m_theme = &theme;
    m_activity = activity;
    QPalette colors = QGuiApplication::palette();
    colors.setColor(QPalette::ButtonText, textColor());
    if (colors.color(QPalette::ButtonText) != m_closeButton->palette().color(QPalette::ButtonText)) {
        m_closeButton->setPalette(colors);
    }
    update();
}

void TabItemView::retranslate()
{
    m_closeButton->setAccessibleName(localized(Actions::closeTab.title));
    m_closeButton->setToolTip(toolTipOf(Actions::closeTab, m_closeButton->accessibleName()));
    updateAccessibleTexts();
}

void TabItemView::updateAccessibleTexts()
{
    QStringList states;
    if (m_descriptor.isDirty) {
        states.append(localized(u"edited"));
    }
    if (m_descriptor.hasExternalChange) {
        states.append(localized(u"changed on disk"));
    }
    states.append(m_descriptor.tooltip);
    QStringList names = {m_descriptor.fullTitle()};
    if (m_descriptor.isReadOnly) {
        names.append(localized(u"read-only"));
    }
    if (!m_descriptor.activity.isEmpty()) {
        names.append(m_descriptor.activity);
    }
    const QString name = names.join(u", "_s);
    // Set again, they would be said again.
    if (name != accessibleName()) {
        setAccessibleName(name);
    }
    if (const QString description = states.join(u", "_s); description != accessibleDescription()) {
        setAccessibleDescription(description);
    }
}

// Painting

QSize TabItemView::sizeHint() const
{
    QFont font = titleFont();
    font.setWeight(QFont::Medium);
    const int title = QFontMetrics(font).horizontalAdvance(m_descriptor.title) + 1;
    const int width = titleInset + title + detailWidth(font) + gap + closeButtonSide + closeButtonInset;
    return {std::clamp(width, leastWidth, greatestWidth) + lockWidth() + activityWidth(font),
            parentWidget() ? parentWidget()->height() : height()};
}

/// With the space before it.
int TabItemView::activityWidth(const QFont &font) const
{
    return m_descriptor.activity.isEmpty() ? 0 : 2 * gap + QFontMetrics(font).horizontalAdvance(m_descriptor.activity) + 1;
}

/// With the space behind it.
int TabItemView::lockWidth() const
{
    return m_descriptor.isReadOnly ? lockSide + gap : 0;
}

/// With what stands before it.
int TabItemView::detailWidth(const QFont &font) const
{
    return m_descriptor.detail.isEmpty() ? 0 : QFontMetrics(font).horizontalAdvance(detailStart.toString() + m_descriptor.detail) + 1;
}

QFont TabItemView::titleFont() const
{
    QFont title = font();
    title.setWeight(isSelected() ? QFont::Medium : QFont::Normal);
    return title;
}

QColor TabItemView::textColor() const
{
    const BarColors bar = BarColors::of(*m_theme);
    const quint32 selected = m_activity == PaneActivity::active ? m_theme->foreground : bar.inactiveTabText;
    return QColor::fromRgb(isSelected() ? selected : bar.tabText);
}

void TabItemView::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    paintGround(painter);
    paintLock(painter);
    paintTitle(painter);
    paintMarks(painter);
}

quint32 TabItemView::ground() const
{
    const BarColors bar = BarColors::of(*m_theme);
    return isSelected() ? m_theme->background : m_isHovering ? bar.hoveredTab : bar.tabBar;
}

void TabItemView::paintGround(QPainter &painter) const
{
    if (isSelected() || m_isHovering) {
        painter.fillRect(rect(), QColor::fromRgb(ground()));
    }
    if (isSelected()) {
        const QColor bar = m_activity == PaneActivity::active ? accentOn(*m_theme, SystemColor::accent(), AccentUse::mark)
                                                              : QColor::fromRgb(m_theme->gutterForeground);
        painter.fillRect(0, 0, width(), selectionBarHeight, bar);
    }
    const double devicePixel = 1 / qMax(1.0, devicePixelRatioF());
    painter.fillRect(QRectF(width() - devicePixel, separatorInset, devicePixel, height() - 2 * separatorInset),
                     QColor::fromRgb(BarColors::of(*m_theme).tabBorder));
}

void TabItemView::paintLock(QPainter &painter) const
{
    if (m_descriptor.isReadOnly) {
        symbolIcon(u"lock", textColor()).paint(&painter, titleInset, (height() - lockSide) / 2, lockSide, lockSide);
    }
}

void TabItemView::paintTitle(QPainter &painter) const
{
    const QFont font = titleFont();
    const int left = titleInset + lockWidth();
    const QRect place(left, 0, m_closeButton->x() - gap - left, height());
    constexpr int flags = Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine;
    const QFontMetrics metrics(font);
    const int room = place.width() - activityWidth(font);
    const int roomForTitle = room - std::min(detailWidth(font), int(room * detailShare));
    QString title = metrics.elidedText(m_descriptor.title, Qt::ElideMiddle, roomForTitle, Qt::TextSingleLine);
    painter.setFont(font);
    painter.setPen(textColor());
    painter.drawText(place, flags, title);
    if (!m_descriptor.detail.isEmpty()) {
        const int start = metrics.horizontalAdvance(title);
        const QString detail =
            metrics.elidedText(detailStart.toString() + m_descriptor.detail, Qt::ElideRight, room - start, Qt::TextSingleLine);
        painter.setPen(
            QColor::fromRgb(legible(m_theme->gutterForeground, textColor().rgb(), limitsOf(m_theme->contrast).text, {ground()})));
        painter.drawText(place.adjusted(start, 0, 0, 0), flags, detail);
        title += detail;
    }
    if (!m_descriptor.activity.isEmpty()) {
        const quint32 text = textColor().rgb();
        painter.setPen(
            QColor::fromRgb(legible(blended(ground(), text, activityShare), text, limitsOf(m_theme->contrast).text, {ground()})));
        painter.drawText(place.adjusted(metrics.horizontalAdvance(title) + 2 * gap, 0, 0, 0), flags, m_descriptor.activity);
    }
}

/// The dot, the focus and where a dragged tab would go.
void TabItemView::paintMarks(QPainter &painter) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    if (hasMark() && !m_isHovering) {
        const QColor dot = m_descriptor.hasExternalChange ? SystemColor::yellow(m_theme->isDark ? Appearance::dark : Appearance::light)
                                                          : withOpacity(textColor(), dotOpacity);
        // Yellow on white has an edge.
        painter.setPen(contrast(dot.rgb(), ground()) < contrastOfDots ? QPen(textColor()) : Qt::NoPen);
        painter.setBrush(dot);
        painter.drawEllipse(QRectF(width() - dotInset - dotSide, (height() - dotSide) / 2, dotSide, dotSide));
    }
    if (hasFocus()) {
        painter.setPen(QPen(SystemColor::accent(), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(3.5, 4.5, -3.5, -3.5), 4, 4);
    }
    if (m_insertionMark) {
        const int x = m_insertionMark == Edge::left ? 0 : width() - insertionMarkWidth;
        painter.fillRect(x, 0, insertionMarkWidth, height(), SystemColor::accent());
    }
}

void TabItemView::resizeEvent(QResizeEvent * /*event*/)
{
    m_closeButton->move(width() - closeButtonInset - closeButtonSide, (height() - closeButtonSide) / 2);
}

// Pointer and keyboard

void TabItemView::setHovering(bool isHovering)
{
    m_isHovering = isHovering;
    m_closeButton->setVisible(isHovering);
    update();
}

void TabItemView::enterEvent(QEnterEvent * /*event*/)
{
    setHovering(true);
}

void TabItemView::leaveEvent(QEvent * /*event*/)
{
    setHovering(false);
}

void TabItemView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        m_pressPosition = event->globalPosition().toPoint();
        call(onSelect);
    }
}

void TabItemView::mouseMoveEvent(QMouseEvent *event)
{
    // Compared on the screen: selecting may have moved the item under the pointer.
    if ((event->buttons() & Qt::LeftButton) != 0 && m_pressPosition &&
        (event->globalPosition().toPoint() - *m_pressPosition).manhattanLength() >= QApplication::startDragDistance()) {
        m_pressPosition.reset();
        startDrag();
    }
}

void TabItemView::mouseReleaseEvent(QMouseEvent *event)
{
    m_pressPosition.reset();
    if (event->button() == Qt::MiddleButton && rect().contains(event->position().toPoint())) {
        call(onClose);
    }
}

void TabItemView::contextMenuEvent(QContextMenuEvent *event)
{
    call(onContextMenu, event->reason() == QContextMenuEvent::Keyboard ? mapToGlobal(rect().bottomLeft()) : event->globalPos());
}

void TabItemView::keyPressEvent(QKeyEvent *event)
{
    struct StepRow {
        int key;
        Step step;
    };
    static constexpr auto steps = std::to_array<StepRow>(
        {{Qt::Key_Left, Step::previous}, {Qt::Key_Right, Step::next}, {Qt::Key_Home, Step::first}, {Qt::Key_End, Step::last}});
    const auto row = std::ranges::find(steps, event->key(), &StepRow::key);
    if (row != steps.end()) {
        call(onStep, row->step);
    } else if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        call(onSelect);
    } else {
        QWidget::keyPressEvent(event);
    }
}

void TabItemView::focusInEvent(QFocusEvent * /*event*/)
{
    update();
    call(onFocusChange);
}

void TabItemView::focusOutEvent(QFocusEvent * /*event*/)
{
    update();
    call(onFocusChange);
}

// Dragging

void TabItemView::startDrag()
{
    // The row is the source: the item may be gone before the drag ends.
    auto *drag = new QDrag(parentWidget());
    auto *payload = new QMimeData;
    payload->setData(mimeType(), QByteArray::number(m_index));
    drag->setMimeData(payload);
    drag->setPixmap(grab());
    // Below the pointer, so that the row and the mark in it stay seen.
    drag->setHotSpot({width() / 2, -height() / 2});
    const QPointer<TabItemView> self(this);
    drag->exec(Qt::MoveAction);
    if (self) {
        // What the pointer does during a drag is not reported.
        setHovering(rect().contains(mapFromGlobal(QCursor::pos())));
    }
}

void TabItemView::dragEnterEvent(QDragEnterEvent *event)
{
    const std::optional<int> from = acceptTab(*event);
    if (!from) {
        return;
    }
    // The tab comes to this place and moves the others towards where it was.
    setInsertionMark(*from == m_index ? std::nullopt : std::optional(*from < m_index ? Edge::right : Edge::left));
}

void TabItemView::dragLeaveEvent(QDragLeaveEvent * /*event*/)
{
    setInsertionMark(std::nullopt);
}

void TabItemView::dropEvent(QDropEvent *event)
{
    setInsertionMark(std::nullopt);
    const std::optional<int> from = acceptTab(*event);
    if (!from) {
        return;
    }
    call(onDrop, *from);
}

void TabItemView::setInsertionMark(std::optional<Edge> edge)
{
    m_insertionMark = edge;
    update();
}
