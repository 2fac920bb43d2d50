// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/ChangeNavigator.h"

#include "Base/Translation.h"
#include "Editor/EditorTextView.h"
#include "Model/TextDocument.h"

#include <QEvent>

#include <algorithm>
#include <array>

namespace {

/// Between the panel and the edges of the text.
constexpr int sideMargin = 12;

struct TitleRow {
    LineChange::Kind kind;
    const char16_t *sinceSave;
    const char16_t *sinceCommit;
};
constexpr auto titles = std::to_array<TitleRow>({
    {LineChange::Kind::added, u"Added since the last save", u"Added since the last commit"},
    {LineChange::Kind::modified, u"Changed since the last save", u"Changed since the last commit"},
    {LineChange::Kind::deleted, u"Deleted since the last save", u"Deleted since the last commit"},
});

struct ScrollMarkRow {
    LineChange::Kind kind;
    ScrollMark mark;
};
constexpr auto scrollMarks = std::to_array<ScrollMarkRow>({
    {LineChange::Kind::added, ScrollMark::added},
    {LineChange::Kind::modified, ScrollMark::changed},
    {LineChange::Kind::deleted, ScrollMark::deleted},
});

QString titleOf(LineChange::Kind kind, ChangeMarks::Reference reference)
{
    const TitleRow &row = *std::ranges::find(titles, kind, &TitleRow::kind);
    return localized(reference == ChangeMarks::Reference::lastCommit ? row.sinceCommit : row.sinceSave);
}

} // namespace

ChangeNavigator::ChangeNavigator(EditorTextView &view, TextDocument &document, const Services &services, QObject *parent)
    : QObject(parent), m_view(view), m_document(document), m_services(services), m_round(view, services.beep),
      m_marks(new ChangeMarks(document, services.marks, this)), m_theme(&Theme::light())
{
    view.ruler().setChanges([marks = m_marks] { return marks->changes(); });
    connect(m_marks, &ChangeMarks::changed, &view.ruler(), qOverload<>(&QWidget::update));
    markScrollBar();
    connect(&view.ruler(), &LineNumberRulerView::changeClicked, this, [this](size_t index) {
        const auto changes = m_marks->changes();
        if (m_panel && index < changes.size() && changes[index] == m_shown) {
            close();
        } else {
            open(index);
        }
    });
    // What it shows is a change between two texts that are no longer these.
    connect(&document.storage(), &TextStorage::changed, this, &ChangeNavigator::close);
    connect(m_marks, &ChangeMarks::changed, this, &ChangeNavigator::close);
    view.installEventFilter(this);
    connect(&view, &TextView::visibleRowsChanged, this, &ChangeNavigator::place);
}

bool ChangeNavigator::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::WindowActivate || event->type() == QEvent::Show) {
        m_marks->refreshCommit();
    }
    return QObject::eventFilter(object, event);
}

ChangeNavigator::~ChangeNavigator()
{
    delete m_panel;
    m_view.ruler().setChanges({});
    if (MarkedScrollBar *bar = MarkedScrollBar::of(m_view)) {
        for (const ScrollMarkRow &row : scrollMarks) {
            bar->setSource(row.mark, {});
        }
    }
}

void ChangeNavigator::markScrollBar()
{
    MarkedScrollBar *bar = MarkedScrollBar::of(m_view);
    if (!bar) {
        return;
    }
    for (const ScrollMarkRow &row : scrollMarks) {
        const auto firstIn = [marks = m_marks, kind = row.kind](TextRange stretch) {
            return LineChanges::firstIn(marks->changes(), kind, stretch);
        };
        bar->setSource(row.mark, {.any = [marks = m_marks] { return !marks->changes().empty(); },
                                  .has = [firstIn](TextRange stretch) { return firstIn(stretch).has_value(); },
                                  .go = [this, firstIn](TextRange stretch) { arriveAt(firstIn(stretch)); }});
    }
    connect(m_marks, &ChangeMarks::changed, bar, &MarkedScrollBar::placesChanged);
}

ChangeNavigator::CaretLine ChangeNavigator::caretLine() const
{
    const Rope &text = m_view.storage().text();
    const qsizetype line = text.lineAt(m_view.selection().caret);
    const qsizetype start = text.lineStart(line);
    return {start, line + 1 < text.lineCount() ? start : text.length()};
}

void ChangeNavigator::goToNext()
{
    arriveAt(m_round.next(LineChanges::next(m_marks->changes(), caretLine().start), m_marks->changes().size()));
}

void ChangeNavigator::goToPrevious()
{
    arriveAt(m_round.previous(LineChanges::previous(m_marks->changes(), caretLine().start), m_marks->changes().size()));
}

void ChangeNavigator::arriveAt(std::optional<size_t> index)
{
    if (!index) {
        return;
    }
    m_round.arriveAt(m_marks->changes()[*index].range);
    if (m_panel) {
        open(*index);
    }
}

void ChangeNavigator::showChange()
{
    const CaretLine line = caretLine();
    if (const auto index = LineChanges::at(m_marks->changes(), line.start, line.end)) {
        open(*index);
    } else {
        m_services.beep();
    }
}

void ChangeNavigator::open(size_t index)
{
    const auto changes = m_marks->changes();
    if (index >= changes.size() || !m_marks->areCurrent()) {
        m_services.beep();
        return;
    }
    m_shown = changes[index];
    if (!m_panel) {
        m_panel = new ChangePanel({m_services.marks.scheduler, m_services.pasteboard}, m_view.textFont(), m_view.parentWidget());
        connect(m_panel, &ChangePanel::restoreWanted, this, &ChangeNavigator::restore);
        connect(m_panel, &ChangePanel::closeWanted, this, &ChangeNavigator::close);
    }
    m_panel->applyTheme(*m_theme);
    m_panel->setChange(titleOf(m_shown.kind, m_marks->reference()), m_shown.kind, m_marks->base(), m_shown.baseRange);
    m_panel->setRestorable(!m_view.isReadOnly());
    place();
    m_panel->show();
    m_panel->raise();
    m_panel->setFocusToButtons();
}

void ChangeNavigator::close()
{
    ChangePanel *closed = m_panel;
    m_panel.clear();
    if (!closed) {
        return;
    }
    if (closed->isAncestorOf(m_view.window()->focusWidget())) {
        m_view.setFocus();
    }
    closed->hide();
    closed->deleteLater(); // one of its buttons may be what led here
}

/// Below the lines; above them where there is no room, and never out of sight.
void ChangeNavigator::place()
{
    if (!m_panel) {
        return;
    }
    const QRect port(m_view.viewport()->mapTo(m_view.parentWidget(), QPoint()), m_view.viewport()->size());
    const int width = std::max(port.width() - 2 * sideMargin, 1);
    const int height = std::min(m_panel->wantedHeight(width), port.height());
    Viewport &rows = m_view.textViewport();
    LayoutManager &layout = m_view.layoutManager();
    const qsizetype end = std::max(m_shown.range.end() - 1, m_shown.range.location);
    const auto top = rows.topOf(layout.rowOf(m_shown.range.location));
    const auto last = rows.topOf(layout.rowOf(end));
    const int below = last ? int(*last + (m_shown.range.isEmpty() ? 0 : layout.rowHeight())) : port.height();
    int y = below;
    if (below + height > port.height() && top && *top - height >= 0) {
        y = int(*top) - height;
    }
    y = std::clamp(y, 0, port.height() - height);
    m_panel->setGeometry(port.left() + sideMargin, port.top() + y, width, height);
}

void ChangeNavigator::restore()
{
    const LineChange change = m_shown;
    if (!m_marks->areCurrent()) {
        return;
    }
    const TextEdits edits = LineChanges::restoring(change, m_view.storage().text(), m_marks->base());
    const qsizetype length = m_view.storage().length() + edits.growth();
    m_view.apply(edits, GroupKind::other, TextSelection::at(std::min(change.range.location, length)));
}

void ChangeNavigator::applyTheme(const Theme &theme)
{
    m_theme = &theme;
    if (MarkedScrollBar *bar = MarkedScrollBar::of(m_view)) {
        for (const ScrollMarkRow &row : scrollMarks) {
            bar->setBaseColor(row.mark, changeColor(theme, row.kind));
        }
    }
    if (m_panel) {
        m_panel->applyTheme(theme);
    }
}
