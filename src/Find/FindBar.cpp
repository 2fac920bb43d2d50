// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Find/FindBar.h"

#include "Base/Localization.h"
#include "Base/Translation.h"
#include "Commands/ActionKeys.h"
#include "Commands/Actions.h"
#include "Desktop/PaletteBlend.h"
#include "Find/FindField.h"
#include "Find/FindState.h"
#include "Find/ReplacementPreview.h"
#include "Find/TextFinder.h"
#include "View/TextView.h"
#include "Widgets/AccessibleRole.h"
#include "Widgets/SymbolIcon.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QScopedValueRollback>
#include <QStyle>
#include <QToolButton>

#include <array>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto slideDuration = 120ms;
constexpr auto slideStep = 15ms;
constexpr int widestField = 420;
constexpr int narrowestField = 90;
constexpr QMargins panelMargins(8, 5, 6, 6);
constexpr int gap = 4;

QString numberText(qsizetype number)
{
    return Localization::current().locale().toString(static_cast<qlonglong>(number));
}

QToolButton *symbolButton(const QString &symbol, QWidget *parent)
{
    auto *button = new QToolButton(parent);
    button->setAutoRaise(true);
    button->setIcon(symbolIcon(symbol));
    const int side = button->fontMetrics().height();
    button->setIconSize({side, side});
    return button;
}

/// Title for screen readers, and with the key that does the same as the tool tip.
void name(QToolButton *button, const QString &title, const QKeySequence &key)
{
    button->setAccessibleName(title);
    button->setToolTip(titleWithKey(title, key));
}

bool isReturn(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

/// In the text that is sought, or its replacement.
bool isLineBreak(const QObject *widget, const QKeyEvent &event)
{
    return isReturn(event) && event.modifiers().testFlag(Qt::ControlModifier) && qobject_cast<const FindField *>(widget);
}

/// As far as known: while hits are being counted, seeking may have ended without one.
bool isNotFound(const TextFinder::Status &status)
{
    return status.count ? *status.count == 0 : status.isNotFound;
}

FindField::State patternState(const TextFinder &finder, const TextFinder::Status &status)
{
    if (!finder.patternError().isEmpty()) {
        return FindField::State::wrong;
    }
    const bool isSought = !finder.query().pattern.isEmpty() && !status.progress && !status.replaced;
    return isSought && isNotFound(status) ? FindField::State::notFound : FindField::State::normal;
}

} // namespace

FindBar::FindBar(TextFinder &finder, Scheduler &scheduler, QWidget *parent)
    : QWidget(parent), m_finder(finder), m_scheduler(scheduler), m_panel(new QWidget(this))
{
    setAccessibleRole(*this, QAccessible::Grouping);
    makeRows();
    connectControls();
    retranslate();
    setRows(Rows::find);
    setFixedHeight(0);
    hide();
    m_sharedObserver = m_finder.shared().observe([this] { followShared(); });
}

FindBar::~FindBar() = default;

// Construction

void FindBar::makeRows()
{
    FindState &shared = m_finder.shared();
    m_pattern = new FindField([&shared] { return shared.history().entries(FindHistory::Kind::searches); }, m_panel);
    m_replacement = new FindField([&shared] { return shared.history().entries(FindHistory::Kind::replacements); }, m_panel);
    for (FindField *field : {m_pattern, m_replacement}) {
        field->setMinimumWidth(narrowestField);
        field->setMaximumWidth(widestField);
    }
    m_previous = symbolButton(u"chevron.up"_s, m_panel);
    m_next = symbolButton(u"chevron.down"_s, m_panel);
    m_selectAll = new QToolButton(m_panel);
    m_matchCase = symbolButton(u"textformat"_s, m_panel);
    m_wholeWords = symbolButton(u"whole.word"_s, m_panel);
    m_expression = symbolButton(u"regex"_s, m_panel);
    m_inSelection = symbolButton(u"text.selection"_s, m_panel);
    m_keepCase = symbolButton(u"textformat.keep"_s, m_panel);
    for (QToolButton *toggle : {m_matchCase, m_wholeWords, m_expression, m_inSelection, m_keepCase}) {
        toggle->setCheckable(true);
    }
    m_replace = new QToolButton(m_panel);
    m_replaceAll = new QToolButton(m_panel);
    m_done = symbolButton(u"xmark"_s, m_panel);
    m_message = new QLabel(m_panel);
    becomeNotice(*m_message);
    m_message->setWordWrap(true);
    m_message->hide();

    const auto rowOf = [](std::initializer_list<QWidget *> widgets) {
        auto *row = new QHBoxLayout;
        row->setSpacing(2);
        for (QWidget *widget : widgets) {
            row->addWidget(widget);
        }
        row->addStretch(1);
        return row;
    };
    m_findButtons = rowOf({m_previous, m_next, m_matchCase, m_wholeWords, m_expression, m_inSelection, m_selectAll});
    m_replaceButtons = rowOf({m_replace, m_replaceAll, m_keepCase});
    auto *grid = new QGridLayout(m_panel);
    grid->setContentsMargins(panelMargins);
    grid->setHorizontalSpacing(gap);
    grid->setVerticalSpacing(gap);
    grid->addWidget(m_pattern, 0, 0);
    grid->addLayout(m_findButtons, 0, 1, 1, 2, Qt::AlignTop);
    grid->addWidget(m_done, 0, 3, Qt::AlignTop);
    grid->addWidget(m_replacement, 2, 0);
    grid->addLayout(m_replaceButtons, 2, 1, 1, 2, Qt::AlignTop);
    grid->addWidget(m_message, 4, 0, 1, 4);
    // The fields take what there is; only what is beyond their width is left empty.
    grid->setColumnStretch(0, 1000);
    grid->setColumnStretch(2, 1);

    for (QWidget *stop : stops()) {
        stop->installEventFilter(this);
        if (stop != m_pattern && stop != m_replacement) {
            stop->setFocusPolicy(Qt::TabFocus);
        }
    }
    orderStops();
}

std::vector<QWidget *> FindBar::stops() const
{
    // From the text that is sought to what replaces it, and from there to the buttons that do so.
    return {m_pattern,   m_replacement, m_replace,    m_replaceAll,  m_keepCase,  m_previous, m_next,
            m_matchCase, m_wholeWords,  m_expression, m_inSelection, m_selectAll, m_done};
}

void FindBar::comeAfter(QWidget &widget)
{
    setTabOrder(&widget, m_pattern);
    orderStops();
}

void FindBar::orderStops()
{
    QWidget *before = nullptr;
    for (QWidget *stop : stops()) {
        if (before) {
            setTabOrder(before, stop);
        }
        before = stop;
    }
}

void FindBar::connectControls()
{
    connect(m_pattern, &FindField::textChanged, this, &FindBar::queryEdited);
    connect(m_replacement, &FindField::textChanged, &m_finder, &TextFinder::forgetReplacementError);
    connect(m_replacement, &FindField::textChanged, this, &FindBar::showPreview);
    connect(m_inSelection, &QToolButton::toggled, this, &FindBar::changeScope);
    for (const QToolButton *toggle : {m_matchCase, m_wholeWords, m_expression}) {
        connect(toggle, &QToolButton::toggled, this, &FindBar::queryEdited);
    }
    connect(m_keepCase, &QToolButton::toggled, this, [this](bool keeps) {
        m_finder.shared().setLetterCase(keeps ? FindState::LetterCase::asFound : FindState::LetterCase::asWritten);
        showPreview();
    });
    connect(m_next, &QToolButton::clicked, &m_finder, &TextFinder::findNext);
    connect(m_previous, &QToolButton::clicked, &m_finder, &TextFinder::findPrevious);
    connect(m_replace, &QToolButton::clicked, this, &FindBar::replace);
    connect(m_selectAll, &QToolButton::clicked, &m_finder, &TextFinder::selectAllHits);
    connect(m_replaceAll, &QToolButton::clicked, this, &FindBar::replaceAll);
    connect(m_done, &QToolButton::clicked, this, &FindBar::close);
    connect(&m_finder, &TextFinder::statusChanged, this, &FindBar::showStatus);
    // A window on its way out still moves the focus.
    connect(&m_finder, &QObject::destroyed, this, [this] {
        m_isOpen = false;
        setEnabled(false);
    });
}

void FindBar::retranslate()
{
    setAccessibleName(localized(u"Find"));
    for (const FindField *field : {m_pattern, m_replacement}) {
        field->nameClearButton(localized(u"Clear Text"));
    }
    m_pattern->setPlaceholderText(localized(u"Find"));
    m_pattern->setAccessibleName(localized(u"Find"));
    m_replacement->setPlaceholderText(localized(u"Replace with"));
    m_replacement->setAccessibleName(localized(u"Replace with"));
    name(m_previous, localized(u"Find Previous"), QKeySequence(u"Shift+Enter"_s));
    name(m_next, localized(u"Find Next"), QKeySequence(u"Enter"_s));
    name(m_matchCase, localized(u"Match Case"), QKeySequence(u"Alt+C"_s));
    name(m_wholeWords, localized(u"Whole Words"), QKeySequence(u"Alt+W"_s));
    name(m_expression, localized(u"Regular Expression"), QKeySequence(u"Alt+R"_s));
    name(m_inSelection, localized(u"In Selection"), QKeySequence(u"Alt+L"_s));
    name(m_keepCase, localized(u"Keep Case"), QKeySequence(u"Alt+K"_s));
    name(m_done, localized(u"Done"), QKeySequence(u"Esc"_s));
    name(m_selectAll, localized(u"Select All Hits"), QKeySequence(u"Alt+Enter"_s));
    m_selectAll->setText(localized(u"Select All"));
    m_replace->setText(localized(u"Replace"));
    m_replaceAll->setText(localized(u"Replace All"));
    name(m_replaceAll, localized(u"Replace All"), QKeySequence(u"Alt+A"_s));
    showStatus();
}

// Opening and closing

void FindBar::open(Rows rows)
{
    setRows(rows == Rows::findAndReplace && m_finder.canReplace() ? rows : Rows::find);
    m_keepCase->setChecked(m_finder.shared().letterCase() == FindState::LetterCase::asFound);
    const bool hasFocusInside = isAncestorOf(focusWidget()) && focusWidget()->hasFocus();
    if (!hasFocusInside) {
        m_finder.useSelection(TextFinder::Lines::one);
        enter(m_finder.shared().query());
    }
    m_isOpen = true;
    m_finder.setQuery(enteredQuery());
    m_finder.setMarking(TextFinder::Marking::shown);
    slide();
    show();
    m_pattern->setFocus(Qt::ShortcutFocusReason);
    m_pattern->selectAll();
}

void FindBar::close()
{
    if (!m_isOpen) {
        return;
    }
    m_finder.cancel();
    m_finder.share();
    m_finder.setMarking(TextFinder::Marking::hidden);
    m_inSelection->setChecked(false);
    m_isOpen = false;
    showPreview();
    if (TextView *view = m_finder.view()) {
        view->setFocus(Qt::OtherFocusReason);
    }
    slide();
}

void FindBar::setRows(Rows rows)
{
    m_rows = rows;
    const bool replaces = rows == Rows::findAndReplace;
    for (QWidget *widget : std::to_array<QWidget *>({m_replacement, m_replace, m_replaceAll, m_keepCase})) {
        widget->setVisible(replaces);
    }
    placeButtons();
    fitHeight();
}

void FindBar::performTextFinderAction(const ActionSender &sender)
{
    switch (sender.tag) {
    case Actions::find.tag:
        open(Rows::find);
        break;
    case Actions::findAndReplace.tag:
        open(Rows::findAndReplace);
        break;
    case Actions::findNext.tag:
        m_finder.findNext();
        break;
    case Actions::findPrevious.tag:
        m_finder.findPrevious();
        break;
    case Actions::useSelectionForFind.tag:
        m_finder.useSelection();
        break;
    }
}

ActionState FindBar::textFinderActionState(const TextFinder &finder, const ActionSender &sender)
{
    switch (sender.tag) {
    case Actions::findAndReplace.tag:
        return {.isEnabled = finder.canReplace()};
    case Actions::useSelectionForFind.tag:
        return {.isEnabled = finder.hasUsableSelection()};
    default:
        return {};
    }
}

// Finding

SearchQuery FindBar::enteredQuery() const
{
    return {.pattern = m_pattern->text(),
            .matchesCase = m_matchCase->isChecked(),
            .matchesWholeWords = m_wholeWords->isChecked(),
            .isRegularExpression = m_expression->isChecked()};
}

void FindBar::enter(const SearchQuery &query)
{
    const QScopedValueRollback<bool> entering(m_isEntering, true);
    if (m_pattern->text() != query.pattern) {
        m_pattern->setText(query.pattern);
    }
    m_matchCase->setChecked(query.matchesCase);
    m_wholeWords->setChecked(query.matchesWholeWords);
    m_expression->setChecked(query.isRegularExpression);
}

void FindBar::queryEdited()
{
    if (m_isEntering) {
        return;
    }
    {
        // What is found where comes at once in most texts; what is known in between would only be said for nothing.
        const QScopedValueRollback<bool> asking(m_isAsking, true);
        m_finder.setQuery(enteredQuery());
        m_finder.findWhileTyping();
    }
    showStatus();
}

/// Another window, or this one's text, gave all windows something else to seek.
void FindBar::followShared()
{
    if (!m_isOpen) {
        return;
    }
    enter(m_finder.shared().query());
    m_finder.setQuery(enteredQuery());
}

void FindBar::changeScope(bool isWanted)
{
    m_finder.setScope(isWanted ? m_finder.chosenScope() : std::nullopt);
    if (isWanted && m_isOpen) {
        m_finder.findWhileTyping();
    }
}

/// In the text, at the hit that is selected.
void FindBar::showPreview()
{
    // With nothing entered it is shown to who is there to enter it.
    const bool isWanted = m_isOpen && m_rows == Rows::findAndReplace && (!m_replacement->text().isEmpty() || m_replacement->hasFocus());
    const auto preview = isWanted ? m_finder.preview(m_replacement->text()) : std::nullopt;
    TextView *view = m_finder.view();
    if (preview && view) {
        if (!m_preview) {
            m_preview = new ReplacementPreview(*view);
        }
        m_preview->showFor(preview->hit, preview->replacement);
    } else if (m_preview) {
        m_preview->hide();
    }
    m_replacement->setAccessibleDescription(preview ? formatted(localized(u"The hit becomes “%@”."), preview->replacement) : QString());
}

void FindBar::replace()
{
    m_finder.replace(m_replacement->text());
}

void FindBar::replaceAll()
{
    m_finder.replaceAll(m_replacement->text());
}

// What is shown

void FindBar::enableButtons(bool canFind)
{
    for (QToolButton *button : {m_previous, m_next, m_selectAll, m_replace, m_replaceAll}) {
        // The focus would go to the button that closes the bar.
        if (!canFind && button->hasFocus()) {
            m_pattern->setFocus(Qt::OtherFocusReason);
        }
        button->setEnabled(canFind);
    }
}

QString FindBar::noteText(const TextFinder::Status &status) const
{
    if (status.progress) {
        const QStringView pattern = status.isReplacing ? u"Replacing… %d %%" : u"Searching… %d %%";
        return formatted(localized(pattern), static_cast<int>(*status.progress * 100));
    }
    if (status.replaced) {
        return *status.replaced == 1 ? localized(u"1 replaced") : formatted(localized(u"%@ replaced"), numberText(*status.replaced));
    }
    if (m_finder.query().pattern.isEmpty() || !m_finder.patternError().isEmpty()) {
        return {};
    }
    if (isNotFound(status)) {
        return localized(u"Not found");
    }
    if (!status.count) {
        return {};
    }
    // Where some may be missing, "17+".
    const QString count = numberText(*status.count) + (status.isIncomplete ? u"+"_s : QString());
    if (!status.selected) {
        return *status.count == 1 && !status.isIncomplete ? localized(u"1 hit") : formatted(localized(u"%@ hits"), count);
    }
    const QString place = formatted(localized(u"%@ of %@"), numberText(*status.selected), count);
    return status.hasWrapped ? u"↻ "_s + place : place;
}

void FindBar::showStatus()
{
    // Every key changes it, and nobody looks; opening asks anew.
    if (!m_isOpen || m_isAsking) {
        return;
    }
    const TextFinder::Status status = m_finder.status();
    const QString explanation = status.hasWrapped ? localized(u"The search went on at the other end of the text.") : QString();
    m_pattern->setNote(noteText(status), explanation, status.progress ? FindField::Saying::silently : FindField::Saying::aloud);
    m_pattern->setState(patternState(m_finder, status));
    m_replacement->setState(m_finder.replacementError().isEmpty() ? FindField::State::normal : FindField::State::wrong);
    enableButtons(!m_finder.query().pattern.isEmpty() && m_finder.patternError().isEmpty() && (!isNotFound(status) || status.isIncomplete));
    QString message = m_finder.patternError().isEmpty() ? m_finder.replacementError() : m_finder.patternError();
    if (message.isEmpty() && status.isIncomplete) {
        message = localized(u"The expression is too hard for parts of this text. There may be more hits.");
    }
    showMessage(message);
    if (m_rows == Rows::findAndReplace && !m_finder.canReplace()) {
        setRows(Rows::find);
    }
    m_inSelection->setEnabled(m_inSelection->isChecked() || m_finder.chosenScope());
    showPreview();
}

void FindBar::showMessage(const QString &message)
{
    if (message == m_message->text()) {
        return;
    }
    const bool wasShown = m_message->isVisible();
    m_message->setText(message);
    m_message->setVisible(!message.isEmpty());
    fitHeight();
    if (wasShown && !message.isEmpty()) {
        announce(*m_message);
    }
}

void FindBar::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange) {
        tintSymbols();
    }
    QWidget::changeEvent(event);
}

/// The bar may have other colours than the rest of the program: those of the text below it.
void FindBar::tintSymbols()
{
    for (QToolButton *button : {m_previous, m_next, m_matchCase, m_wholeWords, m_expression, m_inSelection, m_keepCase, m_done}) {
        button->setIcon(symbolIcon(button->icon().name(), palette().color(QPalette::Active, QPalette::ButtonText),
                                   palette().color(QPalette::Disabled, QPalette::ButtonText)));
    }
}

void FindBar::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event)
    QPainter painter(this);
    const QColor window = palette().color(QPalette::Window);
    painter.fillRect(rect(), window);
    painter.fillRect(0, height() - 1, width(), 1, blended(window, palette().color(QPalette::WindowText), 0.18));
}

// Height

QSize FindBar::sizeHint() const
{
    return {m_panel->sizeHint().width(), height()};
}

QSize FindBar::minimumSizeHint() const
{
    // What does not fit is cut off: a narrow window is not made wider.
    return {0, height()};
}

/// Where the bar is too narrow for a field with its buttons beside it, they stand below it.
void FindBar::placeButtons()
{
    const int buttons = std::max(m_findButtons->sizeHint().width(), m_rows == Rows::find ? 0 : m_replaceButtons->sizeHint().width());
    const int needed = panelMargins.left() + narrowestField + gap + buttons + gap + m_done->sizeHint().width() + panelMargins.right();
    const bool isNarrow = width() < needed;
    if (std::exchange(m_isNarrow, isNarrow) == isNarrow) {
        return;
    }
    auto *grid = static_cast<QGridLayout *>(m_panel->layout());
    int row = 0;
    for (QHBoxLayout *layout : {m_findButtons, m_replaceButtons}) {
        grid->removeItem(layout);
        if (isNarrow) {
            grid->addLayout(layout, row + 1, 0, 1, 4, Qt::AlignTop);
        } else {
            grid->addLayout(layout, row, 1, 1, 2, Qt::AlignTop);
        }
        row += 2;
    }
}

int FindBar::panelHeight() const
{
    QLayout *layout = m_panel->layout();
    layout->activate();
    return layout->hasHeightForWidth() ? layout->totalHeightForWidth(width()) : layout->totalSizeHint().height();
}

void FindBar::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placeButtons();
    const int panel = panelHeight();
    // The panel's lower edge is the bar's, so that it slides in from above.
    m_panel->setGeometry(0, height() - panel, width(), panel);
    if (event->oldSize().width() != event->size().width()) {
        fitHeight();
    }
}

/// Without sliding, as when a row comes or goes while the bar is open.
void FindBar::fitHeight()
{
    if (!m_isOpen || m_sliding.isPending()) {
        return;
    }
    const int wanted = panelHeight();
    setFixedHeight(wanted);
    m_panel->setGeometry(0, 0, width(), wanted);
}

void FindBar::slide()
{
    const int from = height();
    const bool isAnimated = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0 && window()->isVisible();
    const auto arrive = [this] {
        m_sliding.cancel();
        if (m_isOpen) {
            fitHeight();
        } else {
            setFixedHeight(0);
            hide();
        }
    };
    if (!isAnimated) {
        arrive();
        return;
    }
    m_sliding = m_scheduler.every(slideStep, 0ms, [this, from, arrive, start = m_scheduler.now()] {
        const double share = double((m_scheduler.now() - start).count()) / double(std::chrono::milliseconds(slideDuration).count());
        if (share >= 1) {
            arrive();
            return;
        }
        const double eased = 1 - (1 - share) * (1 - share);
        const int to = m_isOpen ? panelHeight() : 0;
        setFixedHeight(from + static_cast<int>(eased * (to - from)));
    });
}

// Keys

QToolButton *FindBar::buttonFor(const QKeyEvent &event) const
{
    if (event.modifiers() != Qt::AltModifier) {
        return nullptr;
    }
    switch (event.key()) {
    case Qt::Key_C:
        return m_matchCase;
    case Qt::Key_W:
        return m_wholeWords;
    case Qt::Key_R:
        return m_expression;
    case Qt::Key_A:
        return m_replaceAll;
    case Qt::Key_L:
        return m_inSelection;
    case Qt::Key_K:
        return m_keepCase;
    default:
        return nullptr;
    }
}

bool FindBar::event(QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest) {
        fitHeight();
    }
    return QWidget::event(event);
}

bool FindBar::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        // Before a menu whose letter it is, and before a command of the text.
        if (const auto &key = static_cast<const QKeyEvent &>(*event); buttonFor(key) || isLineBreak(watched, key)) {
            event->accept();
            return true;
        }
        break;
    case QEvent::KeyPress:
        if (takesKey(watched, static_cast<const QKeyEvent &>(*event))) {
            return true;
        }
        break;
    case QEvent::FocusIn:
        showPreview();
        break;
    case QEvent::FocusOut:
        if (m_isOpen) {
            m_finder.share();
        }
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

bool FindBar::takesKey(const QObject *widget, const QKeyEvent &event)
{
    if (QToolButton *button = buttonFor(event)) {
        if (button->isVisible()) {
            button->click();
        }
        return true;
    }
    const bool isShifted = (event.modifiers() & Qt::ShiftModifier) != 0;
    if (event.key() == Qt::Key_Escape) {
        if (!m_finder.cancel()) {
            close();
        }
        return true;
    }
    if (!isReturn(event)) {
        return false;
    }
    if (isLineBreak(widget, event)) {
        static_cast<FindField *>(const_cast<QObject *>(widget))->insertPlainText(u"\n"_s);
        return true;
    }
    if (widget == m_pattern && event.modifiers().testFlag(Qt::AltModifier)) {
        m_finder.selectAllHits();
    } else if (widget == m_pattern && isShifted) {
        m_finder.findPrevious();
    } else if (widget == m_pattern) {
        m_finder.findNext();
    } else if (widget == m_replacement) {
        replace();
    } else if (const auto *button = qobject_cast<const QToolButton *>(widget)) {
        const_cast<QToolButton *>(button)->click();
    }
    return true;
}
