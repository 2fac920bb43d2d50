// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/SpellingPanel.h"

#include "Base/Translation.h"
#include "Spelling/DictionaryName.h"
#include "Spelling/SpellChecker.h"
#include "View/TextView.h"
#include "Widgets/AccessibleRole.h"
#include "Widgets/DialogGrid.h"
#include "Widgets/Mnemonics.h"
#include "Widgets/WindowSize.h"

#include <QAccessible>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QVBoxLayout>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize startSize(420, 300);

} // namespace

SpellingPanel::SpellingPanel(SpellChecker &checker) : m_checker(checker) {}

SpellingPanel::~SpellingPanel() = default;

void SpellingPanel::makeWindow()
{
    m_window = std::make_unique<QDialog>(nullptr, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    m_window->setAttribute(Qt::WA_QuitOnClose, false);
    m_message = new QLabel;
    becomeNotice(*m_message);
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    QFont bold = m_message->font();
    bold.setBold(true);
    m_message->setFont(bold);
    m_replacementTitle = new QLabel;
    m_replacement = new QLineEdit;
    m_replacementTitle->setBuddy(m_replacement);
    m_replacement->installEventFilter(this);
    m_guessesTitle = new QLabel;
    m_guesses = new QListWidget;
    m_guessesTitle->setBuddy(m_guesses);
    m_dictionaries = new QLabel;
    m_dictionaries->setTextFormat(Qt::PlainText);
    m_dictionaries->setWordWrap(true);

    auto *buttons = new QVBoxLayout;
    buttons->setSpacing(DialogGrid::rowSpacing);
    for (QPushButton **button : {&m_change, &m_findNext, &m_ignore, &m_learn}) {
        *button = new QPushButton;
        (*button)->setAutoDefault(false);
    }
    m_change->setDefault(true);
    buttons->addWidget(m_findNext);
    buttons->addWidget(m_ignore);
    buttons->addWidget(m_learn);
    buttons->addStretch();

    m_message->setContentsMargins(0, 0, 0, DialogGrid::rowSpacing);
    auto *grid = new QGridLayout(m_window.get());
    DialogGrid::apply(*grid);
    grid->setVerticalSpacing(DialogGrid::titleSpacing);
    grid->setRowMinimumHeight(2, m_replacement->sizeHint().height() + DialogGrid::rowSpacing);
    grid->addWidget(m_message, 0, 0, 1, 2);
    grid->addWidget(m_replacementTitle, 1, 0);
    grid->addWidget(m_replacement, 2, 0);
    grid->addWidget(m_change, 2, 1);
    grid->addWidget(m_guessesTitle, 3, 0);
    grid->addWidget(m_guesses, 4, 0);
    grid->addLayout(buttons, 4, 1);
    grid->addWidget(m_dictionaries, 5, 0, 1, 2);
    grid->setColumnStretch(0, 1);
    grid->setRowStretch(4, 1);
    QWidget::setTabOrder(m_replacement, m_change);
    QWidget::setTabOrder(m_change, m_guesses);
    QWidget::setTabOrder(m_guesses, m_findNext);
    QWidget::setTabOrder(m_findNext, m_ignore);
    QWidget::setTabOrder(m_ignore, m_learn);
    connectControls();
    retranslate();
    showCorrection(Typed::replace);
    m_window->resize(sizeOnScreen(*m_window, startSize));
}

void SpellingPanel::connectControls()
{
    connect(m_guesses, &QListWidget::currentTextChanged, this, [this](const QString &guess) {
        if (!guess.isEmpty()) {
            m_replacement->setText(guess);
            m_change->setEnabled(m_correction.has_value());
        }
    });
    // The default button acts on Return, a double click is all that is missing.
    connect(m_guesses, &QListWidget::itemDoubleClicked, this, &SpellingPanel::change);
    connect(m_replacement, &QLineEdit::textEdited, this, [this](const QString &text) {
        m_change->setEnabled(m_correction && m_target && m_target->canReplace() && text != m_correction->word);
    });
    connect(m_change, &QPushButton::clicked, this, &SpellingPanel::change);
    connect(m_findNext, &QPushButton::clicked, this, &SpellingPanel::findNext);
    connect(m_ignore, &QPushButton::clicked, this, [this] { act(&SpellingController::ignore); });
    connect(m_learn, &QPushButton::clicked, this, [this] { act(&SpellingController::learn); });
}

void SpellingPanel::retranslate()
{
    if (!m_window) {
        return;
    }
    m_window->setWindowTitle(localized(u"Spelling"));
    QString taken;
    QStringList titles = withMnemonics({localized(u"Replace with"), localized(u"Suggestions"), localized(u"Change"),
                                        localized(u"Find Next"), localized(u"Ignore"), localized(u"Learn")},
                                       taken);
    m_replacementTitle->setText(titles.takeFirst() + u':');
    m_guessesTitle->setText(titles.takeFirst() + u':');
    for (QPushButton *button : {m_change, m_findNext, m_ignore, m_learn}) {
        button->setText(titles.takeFirst());
    }
    m_ignore->setToolTip(localized(u"Takes the word for correct until Quillet is quit"));
    m_learn->setToolTip(localized(u"Adds the word to your own dictionary"));
    m_replacement->setAccessibleName(localized(u"Replace with"));
    m_guesses->setAccessibleName(localized(u"Suggestions"));
    update();
}

/// Up and Down in the field go through the suggestions.
bool SpellingPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_replacement && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        const int row = m_guesses->currentRow() + (key == Qt::Key_Down ? 1 : -1);
        if ((key == Qt::Key_Up || key == Qt::Key_Down) && row >= 0 && row < m_guesses->count()) {
            m_guesses->setCurrentRow(row);
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

void SpellingPanel::follow(SpellingController &target)
{
    if (m_target == &target) {
        return;
    }
    if (m_target) {
        disconnect(m_target, nullptr, this, nullptr);
    }
    m_target = &target;
    connect(&target, &SpellingController::changed, this, &SpellingPanel::update);
    connect(&target, &QObject::destroyed, this, &SpellingPanel::update);
    update();
}

void SpellingPanel::show(SpellingController &target)
{
    if (!m_window) {
        makeWindow();
        place(*target.view().window());
    }
    follow(target);
    // It stays above the window of the text.
    m_window->winId();
    if (QWindow *owner = target.view().window()->windowHandle()) {
        m_window->windowHandle()->setTransientParent(owner);
    }
    if (!m_window->isVisible()) {
        // Said when it is shown, and not once more when it is brought up to date.
        m_message->setText(message());
    }
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
    m_replacement->setFocus();
    update();
    if (!m_correction && checker().isAvailable()) {
        findNext();
    }
}

/// In the corner of the text's window, where it covers least of what is read.
void SpellingPanel::place(const QWidget &owner)
{
    constexpr QPoint gap(24, 24);
    const QRect around = owner.geometry();
    m_window->move(around.bottomRight() - QPoint(m_window->width(), m_window->height()) - gap);
}

void SpellingPanel::update()
{
    if (!m_window || !m_window->isVisible() || m_isActing) {
        return;
    }
    const auto before = std::exchange(m_correction, m_target ? m_target->selectedCorrection() : std::nullopt);
    const bool isSearching = m_target && m_target->outcome() == SpellingController::Outcome::searching;
    const bool wasSearching = std::exchange(m_wasSearching, isSearching);
    if (before != m_correction || wasSearching != isSearching) {
        const bool isSameWord = before && m_correction && before->range == m_correction->range && before->word == m_correction->word;
        showCorrection(isSameWord && m_replacement->isModified() ? Typed::keep : Typed::replace);
    }
    if (const QString text = message(); text != m_message->text()) {
        m_message->setText(text);
        announce(*m_message);
    }
    QStringList names;
    for (const QString &dictionary : checker().dictionaries()) {
        names << languageOfDictionary(dictionary);
    }
    m_dictionaries->setText(names.isEmpty() ? QString() : formatted(localized(u"Dictionaries: %@"), names.join(u", "_s)));
    m_findNext->setEnabled(m_target && m_target->canCheck());
}

SpellChecker &SpellingPanel::checker() const
{
    return m_target ? m_target->checker() : m_checker;
}

QString SpellingPanel::message() const
{
    using Outcome = SpellingController::Outcome;
    if (!checker().isAvailable()) {
        return localized(u"No dictionary of your languages is installed. They come in packages like hunspell-en-us and hunspell-de-de.");
    }
    if (m_correction) {
        return formatted(localized(u"“%@” is not in the dictionary."), m_correction->word);
    }
    const Outcome outcome = m_target ? m_target->outcome() : Outcome::none;
    if (outcome == Outcome::searching) {
        return localized(u"Searching…");
    }
    return outcome == Outcome::nothingFound ? localized(u"No misspelled words were found.") : localized(u"No misspelled word is selected.");
}

void SpellingPanel::showCorrection(Typed typed)
{
    const QStringList guesses = m_correction ? m_correction->guesses.value_or(QStringList()) : QStringList();
    {
        const QSignalBlocker quiet(m_guesses);
        m_guesses->clear();
        m_guesses->addItems(guesses);
        m_guesses->setCurrentRow(guesses.isEmpty() ? -1 : 0);
    }
    if (QWidget *focused = m_window->focusWidget(); focused && focused != m_guesses && m_window->isActiveWindow()) {
        // The list tells screen readers of its current row as if it had the focus.
        QAccessibleEvent event(focused, QAccessible::Focus);
        QAccessible::updateAccessibility(&event);
    }
    if (typed == Typed::replace) {
        m_replacement->setText(!guesses.isEmpty() ? guesses.first() : m_correction ? m_correction->word : QString());
        m_replacement->selectAll();
    }
    // Field and list keep the focus without a word too; the buttons while the next word is sought, or it would wander off.
    if (!m_target || m_target->outcome() != SpellingController::Outcome::searching) {
        const bool canReplace = m_correction && m_target->canReplace();
        m_replacement->setReadOnly(!canReplace);
        m_change->setEnabled(canReplace && m_replacement->text() != m_correction->word);
        m_ignore->setEnabled(m_correction.has_value());
        m_learn->setEnabled(m_correction.has_value());
    }
}

void SpellingPanel::change()
{
    if (m_correction && m_target && m_change->isEnabled()) {
        {
            const QScopedValueRollback acting(m_isActing, true);
            m_target->replace(*m_correction, m_replacement->text());
        }
        findNext();
    }
}

void SpellingPanel::act(void (SpellingController::*action)(const QString &word))
{
    if (m_correction && m_target) {
        {
            const QScopedValueRollback acting(m_isActing, true);
            (m_target->*action)(m_correction->word);
        }
        findNext();
    }
}

void SpellingPanel::findNext()
{
    if (m_target && m_target->outcome() != SpellingController::Outcome::searching) {
        m_target->checkSpelling();
    }
}
