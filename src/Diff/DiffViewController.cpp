// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Diff/DiffViewController.h"

#include "Base/Localization.h"
#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Diff/DiffOverview.h"
#include "Diff/DiffText.h"
#include "Editor/BarColors.h"
#include "Editor/EditorFont.h"
#include "Find/FindBar.h"
#include "Find/TextFinder.h"
#include "Model/DocumentStore.h"
#include "Settings/Preferences.h"
#include "Widgets/AccessibleRole.h"
#include "Widgets/AlertPresenter.h"
#include "Widgets/ElidedLabel.h"
#include "Widgets/InterfaceFont.h"

#include <QCheckBox>
#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QSplitter>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

constexpr int headerHeight = 28;
constexpr int footerHeight = 30;
constexpr int sideInset = 12;
constexpr int spacing = 10;
constexpr int leastWidth = 200;
constexpr Scheduler::Milliseconds progressInterval = 200ms;

constexpr double summarySize = 11.0 / 12;

QWidget *makeBar(QWidget *parent, int height)
{
    auto *bar = new QWidget(parent);
    bar->setAutoFillBackground(true);
    bar->setMinimumHeight(height);
    return bar;
}

} // namespace

DiffViewController::Column::Column(LineDiff::Side ofSide, Side ofContent, Scheduler &scheduler)
    : side(ofSide), content(std::move(ofContent)), undoManager(storage, [&scheduler] { return scheduler.now(); })
{}

DiffViewController::DiffViewController(const EditorServices &services, Side left, Side right, const Language &language, QWidget *parent)
    : QWidget(parent), m_services(services),
      m_language(language), m_columns{std::make_unique<Column>(LineDiff::Side::left, std::move(left), services.scheduler),
                                      std::make_unique<Column>(LineDiff::Side::right, std::move(right), services.scheduler)}
{
    setAutoFillBackground(true);
    auto *all = new QVBoxLayout(this);
    all->setContentsMargins({});
    all->setSpacing(0);
    all->addWidget(makeHeader());
    // Above both, or the rows would not stand side by side.
    auto *findBars = new QHBoxLayout;
    findBars->setSpacing(1);
    all->addLayout(findBars);
    auto *middle = new QHBoxLayout;
    middle->setSpacing(0);
    m_splitter = new QSplitter(Qt::Horizontal, this);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setHandleWidth(1);
    for (const auto &column : m_columns) {
        makeColumn(*column);
        m_splitter->addWidget(column->widget);
        findBars->addWidget(column->findBar, 1);
    }
    middle->addWidget(m_splitter, 1);
    m_overview = new DiffOverview(this);
    middle->addWidget(m_overview);
    all->addLayout(middle, 1);
    all->addWidget(makeFooter());
    connect(m_overview, &DiffOverview::rowWanted, this, [this](qsizetype row) { scrollBothTo(row, 0.5); });

    retranslate();
    applyPreferences();
    applyTheme();
    const auto observe = [this](NotificationName name, std::function<void()> reaction) {
        m_observers.push_back(m_services.notifications.observe(name, nullptr, std::move(reaction)));
    };
    observe(Preferences::didChange, [this] { applyPreferences(); });
    connect(&m_services.documents, &DocumentStore::themeChanged, this, &DiffViewController::applyTheme);
    observe(Localization::didChangeNotification, [this] { retranslate(); });
    compare();
}

DiffViewController::~DiffViewController()
{
    for (const auto &column : m_columns) {
        disconnect(column->view, nullptr, this, nullptr);
    }
    for (const auto &column : m_columns) {
        delete column->findBar;
        delete column->widget;
    }
}

const ActionRow *DiffViewController::actionFor(const Action &wanted) const
{
    using Self = DiffViewController;
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&Self::performTextFinderAction, &Self::textFinderActionState>(Actions::find),
        action<&Self::nextChange, &Self::hasChanges>(Actions::goToNextChange),
        action<&Self::previousChange, &Self::hasChanges>(Actions::goToPreviousChange),
    });
    return findAction(rows, wanted);
}

// Parts

void DiffViewController::makeColumn(Column &column)
{
    column.widget = new QWidget(m_splitter);
    auto *stack = new QVBoxLayout(column.widget);
    stack->setContentsMargins({});
    stack->setSpacing(0);
    column.view = new DiffTextView(column.storage, column.undoManager, {m_services.scheduler, m_services.pasteboard},
                                   editorFont(m_services.preferences), column.side, column.widget);
    column.finder =
        new TextFinder(*column.view, {{m_services.scheduler, m_services.workers, m_services.beep()}, m_services.find}, column.widget);
    column.findBar = new FindBar(*column.finder, m_services.scheduler, this);
    stack->addWidget(column.view);
    connect(column.view, &DiffTextView::changeWanted, this, [this](int step) { step > 0 ? nextChange() : previousChange(); });
    connect(column.view, &TextView::visibleRowsChanged, this, [this, &column] {
        follow(column);
        showSameBars();
        if (column.highlighter) {
            column.highlighter->ensureHighlighted(column.view->visibleRange());
        }
    });
    connect(column.view, &TextView::zoomRequested, this, [this](int steps) {
        m_services.preferences.set(Settings::fontSize, m_services.preferences.value(Settings::fontSize) + steps);
    });
}

QWidget *DiffViewController::makeHeader()
{
    m_headerBar = makeBar(this, headerHeight);
    auto *row = new QHBoxLayout(m_headerBar);
    row->setContentsMargins(sideInset, 0, sideInset, 0);
    for (const auto &column : m_columns) {
        column->header = new ElidedLabel(Qt::ElideMiddle, m_headerBar);
        row->addWidget(column->header, 1);
    }
    return m_headerBar;
}

QWidget *DiffViewController::makeFooter()
{
    m_footerBar = makeBar(this, footerHeight);
    auto *row = new QHBoxLayout(m_footerBar);
    row->setContentsMargins(sideInset, 2, sideInset, 2);
    row->setSpacing(spacing);
    m_summaryLabel = new QLabel(m_footerBar);
    becomeNotice(*m_summaryLabel);
    m_summaryLabel->setFont(scaledFont(font(), summarySize));
    m_summaryLabel->setTextFormat(Qt::PlainText);
    m_ignoresWhitespace = new QCheckBox(m_footerBar);
    m_previousButton = new QPushButton(m_footerBar);
    m_nextButton = new QPushButton(m_footerBar);
    row->addWidget(m_summaryLabel, 1);
    row->addWidget(m_ignoresWhitespace);
    row->addWidget(m_previousButton);
    row->addWidget(m_nextButton);
    connect(m_ignoresWhitespace, &QCheckBox::toggled, this, &DiffViewController::toggleIgnoreWhitespace);
    connect(m_previousButton, &QPushButton::clicked, this, &DiffViewController::previousChange);
    connect(m_nextButton, &QPushButton::clicked, this, &DiffViewController::nextChange);
    return m_footerBar;
}

void DiffViewController::retranslate()
{
    for (const auto &column : m_columns) {
        const QString header = column->content.title + u"  ·  "_s + column->content.subtitle;
        column->header->setText(header);
        column->view->setAccessibleName(header);
        column->findBar->retranslate();
    }
    m_ignoresWhitespace->setText(localized(u"Ignore whitespace"));
    m_previousButton->setText(localized(u"Previous"));
    m_previousButton->setToolTip(u"F8"_s);
    m_nextButton->setText(localized(u"Next"));
    m_nextButton->setToolTip(u"F7"_s);
    updateSummary();
}

void DiffViewController::applyPreferences()
{
    const QFont font = editorFont(m_services.preferences);
    {
        // Each keeps its row while the rows get another height.
        const QScopedValueRollback<bool> changing(m_isFollowing, true);
        for (const auto &column : m_columns) {
            if (column->view->textFont() != font) {
                column->view->setTextFont(font);
            }
            column->view->ruler().setEditorFont(font);
            column->view->setTabWidth(m_language.defaultIndentWidth().value_or(m_services.preferences.value(Settings::tabWidth)));
        }
    }
    follow(*m_columns[0]);
}

void DiffViewController::applyTheme()
{
    const Theme &theme = m_services.documents.theme();
    const BarColors bar = BarColors::of(theme);
    QPalette chrome;
    chrome.setResolveMask(0);
    chrome.setColor(QPalette::Window, QColor::fromRgb(theme.background));
    chrome.setColor(QPalette::WindowText, QColor::fromRgb(theme.foreground));
    setPalette(chrome);
    chrome.setColor(QPalette::Window, QColor::fromRgb(bar.ground));
    m_headerBar->setPalette(chrome);
    m_footerBar->setPalette(chrome);
    QPalette quiet = chrome;
    quiet.setColor(QPalette::WindowText, QColor::fromRgb(bar.text));
    m_summaryLabel->setPalette(quiet);
    // Some styles draw an empty box in the colour of texts alone.
    QPalette box = chrome;
    box.setColor(QPalette::Base, QColor::fromRgb(blended(theme.background, theme.foreground, theme.isDark ? 0.2 : 0)));
    m_ignoresWhitespace->setPalette(box);
    m_overview->applyTheme(theme);
    for (const auto &column : m_columns) {
        column->view->applyTheme(theme);
        if (column->highlighter) {
            column->highlighter->setTheme(theme);
            column->highlighter->ensureHighlighted(column->view->visibleRange());
        }
    }
}

void DiffViewController::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange && m_summaryLabel) {
        m_summaryLabel->setFont(scaledFont(font(), summarySize));
    }
}

void DiffViewController::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!m_hasPositionedDivider && m_splitter->width() > leastWidth) {
        m_hasPositionedDivider = true;
        const int half = (m_splitter->width() - m_splitter->handleWidth()) / 2;
        m_splitter->setSizes({half, m_splitter->width() - m_splitter->handleWidth() - half});
    }
    updateSummary();
}

// Comparing

void DiffViewController::compare()
{
    const Rope &left = m_columns[0]->content.text;
    const Rope &right = m_columns[1]->content.text;
    m_progressTimer = {};
    m_comparing.cancel();
    if (left.length() + right.length() <= comparedAtOnce) {
        show(*LineDiff::compare(left, right, m_whitespace));
        return;
    }
    m_processed = std::make_shared<std::atomic<qsizetype>>(0);
    m_comparing = BackgroundTask::start(
        m_services.workers,
        [left, right, whitespace = m_whitespace, processed = m_processed](const std::stop_token &stop) {
            return LineDiff::compare(left, right, whitespace, {.stop = stop, .processed = processed});
        },
        [this](std::optional<LineDiff::Result> found) {
            m_progressTimer = {};
            if (found) {
                show(*std::move(found));
            }
        });
    m_progressTimer = m_services.scheduler.every(progressInterval, progressInterval / 2, [this] { updateSummary(); });
    updateSummary();
}

void DiffViewController::show(LineDiff::Result result)
{
    m_result = std::make_shared<const LineDiff::Result>(std::move(result));
    {
        // Both are filled before they are brought together again.
        const QScopedValueRollback<bool> filling(m_isFollowing, true);
        for (const auto &column : m_columns) {
            fill(*column);
        }
    }
    for (const auto &column : m_columns) {
        column->position = column->view->textViewport().position();
    }
    m_overview->setResult(m_result);
    showSummary();
    m_currentChange = -1;
}

void DiffViewController::fill(Column &column)
{
    column.highlighter.reset();
    {
        const UndoManager::Pause pause(column.undoManager);
        column.storage.apply({{0, column.storage.length()}, DiffText::composed(*m_result, column.side)});
    }
    column.view->setSelection(TextSelection::at(0));
    column.view->setResult(m_result);
    if (column.storage.length() <= longestColoured && m_language != Language::plainText()) {
        column.highlighter = std::make_unique<SyntaxHighlighter>(column.storage, m_language, m_services.documents.theme(),
                                                                 m_services.scheduler, m_services.notifications);
        column.highlighter->rehighlightAll();
        column.highlighter->ensureHighlighted(column.view->visibleRange());
    }
}

void DiffViewController::toggleIgnoreWhitespace()
{
    m_whitespace = m_ignoresWhitespace->isChecked() ? Whitespace::ignored : Whitespace::counts;
    compare();
}

QString DiffViewController::summary() const
{
    if (m_comparing.isPending()) {
        const qsizetype all = 2 * (m_columns[0]->content.text.length() + m_columns[1]->content.text.length());
        const auto percent = int(std::min<qsizetype>(100 * m_processed->load(std::memory_order_relaxed) / std::max<qsizetype>(all, 1), 99));
        return formatted(localized(u"Comparing… %d %%"), percent);
    }
    if (!hasChanges()) {
        return m_whitespace == Whitespace::ignored ? localized(u"Identical, ignoring whitespace")
                                                   : localized(u"The two files are identical");
    }
    const auto count = int(m_result->changeStarts().size());
    const QString place = m_currentChange >= 0 ? formatted(localized(u"%d of %d changes"), m_currentChange + 1, count)
                          : count == 1         ? localized(u"1 change")
                                               : formatted(localized(u"%d changes"), count);
    return place + u"   +"_s + QString::number(m_result->addedCount()) + u"  \u2212"_s + QString::number(m_result->removedCount());
}

void DiffViewController::updateSummary()
{
    m_summaryLabel->setText(summary());
    const bool canGo = hasChanges() && !m_comparing.isPending();
    m_previousButton->setEnabled(canGo);
    m_nextButton->setEnabled(canGo);
}

/// Screen readers say it too, again if it is as it was. How far a comparison has got is not reported to them.
void DiffViewController::showSummary()
{
    updateSummary();
    if (m_summaryLabel->isVisible()) {
        announce(*m_summaryLabel);
    }
}

// Going through the changes

void DiffViewController::nextChange()
{
    goTo(hasChanges() ? (m_currentChange + 1) % int(m_result->changeStarts().size()) : -1);
}

void DiffViewController::previousChange()
{
    const int count = hasChanges() ? int(m_result->changeStarts().size()) : 0;
    goTo((m_currentChange < 1 ? count : m_currentChange) - 1);
}

/// Below 0 there is none.
void DiffViewController::goTo(int change)
{
    if (change < 0 || m_comparing.isPending()) {
        m_services.presenter.beep();
        return;
    }
    m_currentChange = change;
    const qsizetype row = m_result->changeStarts()[size_t(change)];
    scrollBothTo(row, 1.0 / 3);
    // From there the arrow keys go on, and screen readers read.
    for (const auto &column : m_columns) {
        column->view->setSelection(TextSelection::at(column->storage.text().lineStart(row)));
    }
    showSummary();
}

/// The row's top gets to that part of the view's height.
void DiffViewController::scrollBothTo(qsizetype row, double fraction)
{
    for (const auto &column : m_columns) {
        DiffTextView &view = *column->view;
        view.setScrollOffset(std::max(view.topOfRow(row) - view.viewport()->height() * fraction, 0.0));
    }
}

/// Brings the other column to where this one was scrolled. What is only heard of, such as new widths, moves nothing.
void DiffViewController::follow(Column &moved)
{
    const QPointF position = moved.view->textViewport().position();
    if (m_isFollowing || position == moved.position) {
        return;
    }
    const QScopedValueRollback<bool> following(m_isFollowing, true);
    const QPointF before = std::exchange(moved.position, position);
    Column &follower = other(moved);
    // Only as it moved: a column of short lines is left of the other one and stays there.
    if (position.y() != before.y()) {
        follower.view->setScrollOffset(position.y());
    }
    if (position.x() != before.x()) {
        follower.view->horizontalScrollBar()->setValue(moved.view->horizontalScrollBar()->value());
    }
    follower.position = follower.view->textViewport().position();
}

/// With a bar below one column only, the other could be scrolled less far.
void DiffViewController::showSameBars()
{
    const bool isNeeded = std::ranges::any_of(m_columns, [](const auto &column) { return column->view->textViewport().maximumX() > 0; });
    const Qt::ScrollBarPolicy policy = isNeeded ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff;
    for (const auto &column : m_columns) {
        if (column->view->horizontalScrollBarPolicy() != policy) {
            column->view->setHorizontalScrollBarPolicy(policy);
        }
    }
}

// Finding

DiffViewController::Column &DiffViewController::focusedColumn() const
{
    const QWidget *focused = focusWidget();
    const Column &left = *m_columns[0];
    return left.widget->isAncestorOf(focused) || left.findBar->isAncestorOf(focused) ? *m_columns[0] : *m_columns[1];
}

void DiffViewController::performTextFinderAction(const ActionSender &sender)
{
    focusedColumn().findBar->performTextFinderAction(sender);
}

ActionState DiffViewController::textFinderActionState(const ActionSender &sender) const
{
    return FindBar::textFinderActionState(*focusedColumn().finder, sender);
}
