// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/StatusBarView.h"

#include "Base/Localization.h"
#include "Base/Translation.h"
#include "Commands/ActionKeys.h"
#include "Commands/Actions.h"
#include "Commands/KeyboardChords.h"
#include "Editor/BarColors.h"
#include "Files/TextFile.h"
#include "Highlighting/LanguageRegistry.h"
#include "Highlighting/Theme.h"
#include "Spelling/DictionaryName.h"
#include "UI/StatisticsPopUp.h"
#include "UI/TextIndentationMenu.h"
#include "UI/VimBadge.h"
#include "Widgets/AccessibleRole.h"
#include "Widgets/ElidedLabel.h"
#include "Widgets/InterfaceFont.h"
#include "Widgets/PlainToolTip.h"
#include "Widgets/PopUpButton.h"
#include "Widgets/SymbolIcon.h"
#include "Widgets/SystemColors.h"

#include <QApplication>
#include <QEvent>
#include <QFontDatabase>
#include <QHelpEvent>
#include <QLabel>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int leastHeight = 24;
constexpr int leftInset = 10;
constexpr int rightInset = 8;
/// Between the badge, the path and the controls; these have margins of their own.
constexpr int textGap = 10;
constexpr int controlGap = textGap - 2 * FlatButton::textMargin + 2;
/// Above and below controls. They are as high as the bar lets them, so that their texts and the path stand on one line.
constexpr int controlMargin = 2;
constexpr int lockSide = 13;
constexpr int lockGap = 5;
/// What the path keeps before a control goes, in characters.
constexpr int leastPathLength = 10;

constexpr auto lineEndingTitles = std::to_array<QStringView>({u"LF", u"CRLF", u"CR"});
static_assert(lineEndingTitles.size() == lineEndings.size());

QString languageTitle(const Language &language)
{
    return language == Language::plainText() ? localized(language.name()) : language.name();
}

std::vector<Language> languagesByTitle()
{
    std::vector<Language> languages = LanguageRegistry::all();
    std::ranges::sort(languages, {}, languageTitle);
    return languages;
}

/// The titles of `row` in order.
QStringList titles(const auto &row, const auto &title)
{
    QStringList list;
    for (const auto &entry : row) {
        list.append(title(entry));
    }
    return list;
}

/// Has the pop-up show the first of `row` that is wanted; what it shows stays if there is none.
void showChoice(PopUpButton &popUp, const auto &row, const auto &isWanted)
{
    if (const auto found = std::ranges::find_if(row, isWanted); found != std::end(row)) {
        popUp.setShownIndex(int(found - std::begin(row)));
    }
}

} // namespace

StatusBarView::StatusBarView(Scheduler &scheduler, NotificationCenter &notifications, QWidget *parent)
    : QWidget(parent), m_scheduler(scheduler), m_theme(&Theme::light())
{
    setAccessibleRole(*this, QAccessible::StatusBar);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    makeControls();
    updateFonts();
    retranslate();
    applyPalette();
    m_languageObserver = notifications.observe(Localization::didChangeNotification, nullptr, [this] { retranslate(); });
    m_keyboardObserver = notifications.observe(KeyboardChords::didChangeNotification, nullptr, [this] { retranslate(); });
}

StatusBarView::~StatusBarView() = default;

// The keyboard goes through the controls in the order in which they are made.
void StatusBarView::makeControls()
{
    m_vimBadge = new VimBadge(this);
    m_lock = new QLabel(this);
    m_lock->hide();
    m_pathLabel = new ElidedLabel(Qt::ElideLeft, this);
    m_flashLabel = new ElidedLabel(Qt::ElideRight, this);
    becomeNotice(*m_flashLabel);
    m_flashLabel->hide();
    m_missingButton = new FlatButton(this);
    m_missingButton->hide();
    connect(m_missingButton, &QAbstractButton::clicked, this, &StatusBarView::missingCharactersClicked);
    const auto popUp = [this](void (StatusBarView::*choose)(int)) {
        auto *made = new PopUpButton(m_scheduler, this);
        connect(made, &PopUpButton::chosen, this, choose);
        return made;
    };
    m_spellingPopUp = popUp(&StatusBarView::chooseDictionary);
    m_statisticsButton = new FlatButton(this);
    connect(m_statisticsButton, &QAbstractButton::clicked, this, &StatusBarView::showStatistics);
    m_positionButton = new FlatButton(this);
    m_positionButton->installEventFilter(this);
    connect(m_positionButton, &QAbstractButton::clicked, this, &StatusBarView::positionClicked);
    m_indentPopUp = popUp(&StatusBarView::chooseIndentation);
    m_indentPopUp->installEventFilter(this);
    m_textIndentationMenu = new TextIndentationMenu(m_indentPopUp);
    m_indentPopUp->addSubmenu(m_textIndentationMenu);
    connect(m_textIndentationMenu, &TextIndentationMenu::chosen, this, &StatusBarView::textIndentationChosen);
    connect(m_textIndentationMenu, &TextIndentationMenu::conversionChosen, this, &StatusBarView::conversionChosen);
    m_lineEndingPopUp = popUp(&StatusBarView::chooseLineEnding);
    m_encodingPopUp = popUp(&StatusBarView::chooseEncoding);
    connect(m_encodingPopUp, &PopUpButton::commandTriggered, this, &StatusBarView::reopenWithEncodingChosen);
    m_languagePopUp = popUp(&StatusBarView::chooseLanguage);
}

void StatusBarView::retranslate()
{
    m_spellingPopUp->setTitle(localized(u"Dictionaries"));
    m_statisticsButton->setToolTip(localized(u"Words and Characters"));
    m_missingButton->setToolTip(localized(u"Characters that cannot be saved in this encoding; a click lists them"));
    m_positionButton->setToolTip(toolTipOf(Actions::goToLine, localized(u"Go to Line")));
    m_lock->setAccessibleName(localized(u"read-only"));
    m_lock->setToolTip(plainToolTip(localized(u"The file is read-only: you do not have permission to write to it.")));
    m_indentPopUp->setTitle(localized(u"Indentation"));
    m_lineEndingPopUp->setTitle(localized(u"Line Endings"));
    m_encodingPopUp->setTitle(localized(u"Text Encoding"));
    m_languagePopUp->setTitle(localized(u"Syntax"));

    m_sortedLanguages = languagesByTitle();
    m_indentPopUp->setChoices(titles(indentationChoices, [](Indentation choice) { return titleOf(choice); }));
    m_textIndentationMenu->retranslate();
    m_lineEndingPopUp->setChoices(titles(lineEndingTitles, [](QStringView title) { return title.toString(); }));
    m_encodingPopUp->setChoices(titles(TextFile::selectableEncodings, displayName));
    m_encodingPopUp->setCommand(localized(Actions::reopenWithEncoding.title));
    m_languagePopUp->setChoices(titles(m_sortedLanguages, languageTitle));
    showState();
}

// Looks

void StatusBarView::setTheme(const Theme &theme)
{
    m_theme = &theme;
    applyPalette();
}

void StatusBarView::applyPalette()
{
    QPalette colors = QGuiApplication::palette();
    const BarColors bar = BarColors::of(*m_theme);
    const QColor text = QColor::fromRgb(bar.text);
    colors.setColor(QPalette::Window, QColor::fromRgb(bar.ground));
    colors.setColor(QPalette::WindowText, text);
    colors.setColor(QPalette::ButtonText, text);
    setPalette(colors);
    showMessageOrPath();
    m_vimBadge->setTheme(*m_theme);
    updateLock();
    update();
}

void StatusBarView::updateLock()
{
    m_lock->setPixmap(symbolIcon(u"lock", QColor::fromRgb(BarColors::of(*m_theme).text)).pixmap({lockSide, lockSide}, devicePixelRatioF()));
}

void StatusBarView::updateFonts()
{
    const QFont font = scaledFont(QApplication::font(), TextSize::status);
    for (QWidget *widget :
         std::initializer_list<QWidget *>{m_pathLabel, m_flashLabel, m_missingButton, m_spellingPopUp, m_statisticsButton, m_positionButton,
                                          m_indentPopUp, m_lineEndingPopUp, m_encodingPopUp, m_languagePopUp}) {
        widget->setFont(font);
    }
    m_vimBadge->setFont(scaledFont(QFontDatabase::systemFont(QFontDatabase::FixedFont), TextSize::badge));
    updateGeometry();
    layOut();
}

bool StatusBarView::event(QEvent *event)
{
    const bool isHandled = QWidget::event(event);
    if (event->type() == QEvent::ApplicationFontChange) {
        updateFonts();
    } else if (event->type() == QEvent::ApplicationPaletteChange) {
        applyPalette();
    }
    return isHandled;
}

QSize StatusBarView::sizeHint() const
{
    return {m_pathLabel->sizeHint().width() + leftInset + rightInset,
            qMax(leastHeight, m_positionButton->sizeHint().height() + 2 * controlMargin)};
}

QSize StatusBarView::minimumSizeHint() const
{
    return {leftInset + rightInset + m_pathLabel->minimumSizeHint().width(), sizeHint().height()};
}

void StatusBarView::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Active, QPalette::Window));
    painter.fillRect(QRectF(0, 0, width(), 1 / qMax(1.0, devicePixelRatioF())), QColor::fromRgb(m_theme->gutterSeparator));
}

void StatusBarView::resizeEvent(QResizeEvent * /*event*/)
{
    layOut();
}

/// From the right edge the controls, from the left the badge and the path. The path shrinks first; when it has no more to give, controls
/// go, and at last the badge is cut.
void StatusBarView::layOut()
{
    ElidedLabel &label = shownLabel();
    // From the most important to the least, which is also from the right to the left but for position and statistics.
    std::vector<QWidget *> controls;
    if (m_state) {
        controls = {m_positionButton, m_languagePopUp, m_encodingPopUp, m_lineEndingPopUp, m_indentPopUp};
        if (m_state->spelling) {
            controls.push_back(m_spellingPopUp);
        }
        if (m_state->statistics) {
            controls.push_back(m_statisticsButton);
        }
        if (m_state->missingCharacters > 0) {
            controls.insert(controls.begin(), m_missingButton);
        }
    }
    const int leastPath = qMin(label.sizeHint().width(), leastPathLength * label.fontMetrics().averageCharWidth());
    int free = width() - leftInset - rightInset - leastPath - textGap;
    if (!m_vimBadge->isHidden()) {
        free -= m_vimBadge->sizeHint().width() + textGap;
    }
    if (!m_lock->isHidden()) {
        free -= lockSide + lockGap;
    }
    std::vector<QWidget *> shown;
    for (QWidget *control : controls) {
        free -= control->sizeHint().width() + controlGap;
        if (free < 0) {
            break;
        }
        shown.push_back(control);
    }
    int right = width() - rightInset + FlatButton::textMargin;
    for (QWidget *control : std::initializer_list<QWidget *>{m_languagePopUp, m_encodingPopUp, m_lineEndingPopUp, m_indentPopUp,
                                                             m_positionButton, m_statisticsButton, m_spellingPopUp, m_missingButton}) {
        const bool isShown = std::ranges::find(shown, control) != shown.end();
        control->setVisible(isShown);
        if (isShown) {
            const int controlWidth = control->sizeHint().width();
            right -= controlWidth;
            control->setGeometry(right, controlMargin, controlWidth, height() - 2 * controlMargin);
            right -= controlGap;
        }
    }
    int left = leftInset;
    if (!m_vimBadge->isHidden()) {
        const QSize size = m_vimBadge->sizeHint();
        m_vimBadge->setGeometry(left, (height() - size.height()) / 2, qBound(0, right - left, size.width()), size.height());
        left += m_vimBadge->width() + textGap;
    }
    if (!m_lock->isHidden()) {
        m_lock->setGeometry(left, (height() - lockSide) / 2, qBound(0, right - left, lockSide), lockSide);
        left += lockSide + lockGap;
    }
    label.setGeometry(left, 0, qBound(0, right - left, label.sizeHint().width()), height());
}

// State

void StatusBarView::setState(const std::optional<State> &state)
{
    m_state = state;
    showState();
}

void StatusBarView::showState()
{
    m_vimBadge->setState(m_state ? m_state->vim : std::nullopt);
    if (m_state) {
        const State &state = *m_state;
        m_positionButton->setText(positionTitle());
        showMissingCharacters();
        showChoice(*m_languagePopUp, m_sortedLanguages, [&](const Language &language) { return language == state.language; });
        showEncoding();
        m_encodingPopUp->setCommandEnabled(state.canReopen);
        showLineEnding();
        showIndentation();
    }
    updateSpelling();
    updateStatistics();
    showMessageOrPath();
    layOut();
}

void StatusBarView::showEncoding()
{
    const auto &offered = TextFile::selectableEncodings;
    const auto found = std::ranges::find(offered, m_state->encoding);
    if (found == offered.end() && !m_state->isNamedEncoding) {
        return;
    }
    const QString name = displayName(m_state->encoding);
    const bool hasMark = m_state->hasByteOrderMark && isUnicode(m_state->encoding);
    m_encodingPopUp->setShownIndex(found == offered.end() ? m_encodingPopUp->shownIndex() : int(found - offered.begin()),
                                   hasMark ? formatted(localized(u"%@ with BOM"), name) : name);
}

void StatusBarView::showLineEnding()
{
    QStringList counted;
    for (size_t ending = 0; ending < lineEndings.size(); ++ending) {
        if (const qsizetype count = m_state->lineEndingCounts[ending]; count > 0) {
            counted << QString::number(count) + u' ' + lineEndingTitles[ending].toString();
        }
    }
    // The commonest comes first.
    if (const size_t own = size_t(m_state->lineEnding); counted.size() > 1 && m_state->lineEndingCounts[own] > 0) {
        const QString first = QString::number(m_state->lineEndingCounts[own]) + u' ' + lineEndingTitles[own].toString();
        counted.removeOne(first);
        counted.prepend(first);
    }
    m_lineEndingPopUp->setShownIndex(int(m_state->lineEnding),
                                     counted.size() > 1 ? formatted(localized(u"mixed: %@"), counted.join(u", "_s)) : QString());
}

/// A width that the menu does not have is shown where it is this text's own.
void StatusBarView::showIndentation()
{
    const Indentation shown{m_state->indentWidth, m_state->usesSpaces ? Indentation::Unit::spaces : Indentation::Unit::tab};
    const auto found = std::ranges::find(indentationChoices, shown);
    const bool isForAll = m_state->indentationSource == DocumentConventions::Source::preference ||
                          m_state->indentationSource == DocumentConventions::Source::language;
    if (found != indentationChoices.end()) {
        m_indentPopUp->setShownIndex(int(found - indentationChoices.begin()));
    } else if (!isForAll) {
        m_indentPopUp->setShownIndex(m_indentPopUp->shownIndex(), titleOf(shown));
    }
    m_textIndentationMenu->setChosen(m_state->chosenIndentation);
}

void StatusBarView::showMissingCharacters()
{
    const QString text = formatted(localized(u"%d not in %@"), m_state->missingCharacters, displayName(m_state->encoding));
    if (text != m_missingButton->text()) {
        m_missingButton->setText(text);
        m_missingButton->setAccessibleName(
            formatted(localized(u"Characters that %@ does not have: %d"), displayName(m_state->encoding), m_state->missingCharacters));
    }
}

QString StatusBarView::positionTitle() const
{
    QString title = m_state->caretCount > 1 ? formatted(localized(u"%d carets"), m_state->caretCount)
                                            : formatted(localized(u"Ln %d, Col %d"), qsizetype(m_state->line), m_state->column);
    if (m_state->selectionLength >= 1) {
        title += m_state->selectedLineCount < 2
                     ? formatted(localized(u"  (%d selected)"), m_state->selectionLength)
                     : formatted(localized(u"  (%d selected, %d lines)"), m_state->selectionLength, m_state->selectedLineCount);
    }
    return title;
}

QString StatusBarView::hintFor(const QWidget &control) const
{
    if (!m_state) {
        return {};
    }
    return &control == m_indentPopUp ? titleOf(m_state->indentationSource, m_state->language) : caretHint();
}

/// Only who asks for it is told of the character at the caret, and of where the indentation comes from: with the pointer, or with a screen
/// reader by going there.
bool StatusBarView::eventFilter(QObject *watched, QEvent *event)
{
    auto *control = static_cast<QWidget *>(watched);
    if (event->type() == QEvent::ToolTip) {
        const QString hint = hintFor(*control);
        const QString text = hint.isEmpty() ? control->toolTip() : control->toolTip() + u'\n' + hint;
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), plainToolTip(text), control);
        return true;
    }
    if (event->type() == QEvent::FocusIn) {
        control->setAccessibleDescription(hintFor(*control));
    }
    return QWidget::eventFilter(watched, event);
}

void StatusBarView::showStatistics()
{
    if (m_state && m_state->statistics) {
        m_statisticsPopUp = new StatisticsPopUp(*m_state->statistics, this);
        m_statisticsPopUp->showAbove(*m_statisticsButton);
    }
}

void StatusBarView::updateStatistics()
{
    if (!m_state || !m_state->statistics) {
        return;
    }
    const QString title = summary(*m_state->statistics);
    m_statisticsButton->setText(title);
    m_statisticsButton->setAccessibleName(u"%1: %2"_s.arg(m_statisticsButton->toolTip(), title));
    if (m_statisticsPopUp) {
        m_statisticsPopUp->setStatistics(*m_state->statistics);
    }
}

void StatusBarView::showMessageOrPath()
{
    if (m_flashMessage) {
        QPalette colors = palette();
        colors.setColor(QPalette::WindowText, accentOn(*m_theme, SystemColor::accent(), AccentUse::text));
        m_flashLabel->setPalette(colors);
    }
    const QString path = m_state ? m_state->path : localized(u"No document");
    if (path != m_pathLabel->text()) {
        m_pathLabel->setText(path);
    }
    m_lock->setVisible(m_state && m_state->isReadOnly && !m_flashMessage);
    m_pathLabel->setVisible(!m_flashMessage);
    m_flashLabel->setVisible(m_flashMessage.has_value());
}

void StatusBarView::flash(const QString &message, Scheduler::Milliseconds duration)
{
    m_flashMessage = message;
    m_flashWork = m_scheduler.after(duration, [this] {
        m_flashMessage.reset();
        showMessageOrPath();
        layOut();
    });
    const bool wasShown = m_flashLabel->isVisible();
    m_flashLabel->setText(message);
    showMessageOrPath();
    layOut();
    if (wasShown) {
        announce(*m_flashLabel);
    }
    emit flashed(message);
}

// Choices

void StatusBarView::chooseLanguage(int index)
{
    // A copy, since the list may be made anew meanwhile.
    const Language chosen = m_sortedLanguages.at(size_t(index));
    emit languageChosen(chosen);
}

void StatusBarView::chooseEncoding(int index)
{
    emit encodingChosen(TextFile::selectableEncodings.at(size_t(index)));
}

void StatusBarView::chooseLineEnding(int index)
{
    emit lineEndingChosen(lineEndings.at(size_t(index)).ending);
}

/// The first entry leaves it to the words of the text. While it does any other is chosen alone, then they come and go one by one.
void StatusBarView::chooseDictionary(int index)
{
    QStringList chosen;
    if (index > 0) {
        chosen = m_state->spelling->chosen;
        const QString name = m_state->spelling->installed.at(index - 1);
        if (!chosen.removeOne(name)) {
            chosen << name;
        }
    }
    emit dictionariesChosen(chosen);
}

void StatusBarView::updateSpelling()
{
    if (!m_state || !m_state->spelling) {
        return;
    }
    const SpellingState &spelling = *m_state->spelling;
    QStringList choices{localized(u"Automatic")};
    QList<int> shown;
    for (const QString &name : spelling.installed) {
        if (spelling.chosen.contains(name)) {
            shown << int(choices.size());
        }
        choices << titleOfDictionary(name);
    }
    if (shown.isEmpty()) {
        shown << 0;
    }
    if (choices != m_spellingPopUp->choices()) {
        m_spellingPopUp->setChoices(choices);
    }
    m_spellingPopUp->setShownIndices(shown, spelling.inUse.isEmpty() ? localized(u"No dictionary") : spelling.inUse.join(u", "_s));
}

void StatusBarView::chooseIndentation(int index)
{
    emit indentationChosen(indentationChoices.at(size_t(index)));
}
