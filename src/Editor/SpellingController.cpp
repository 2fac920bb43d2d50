// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/SpellingController.h"

#include "Base/Translation.h"
#include "Editor/SpellingPanel.h"
#include "Highlighting/Rule.h"
#include "Highlighting/SyntaxHighlighter.h"
#include "Spelling/SpellChecker.h"
#include "View/TextView.h"
#include "Widgets/Mnemonics.h"

#include <QMenu>
#include <QPointer>
#include <QScopedValueRollback>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype mostMenuGuesses = 5;
/// Keys and input methods change no more than so at a time; what is pasted is not being typed.
constexpr qsizetype longestTyped = 4;

/// Of a text, three times, to tell which languages it is in.
constexpr qsizetype sampleLength = 2048;
/// A short text that grows by so much may be in another.
constexpr qsizetype leastGrowth = 200;

constexpr auto markdownId = "markdown"_L1;

bool isTextual(Scope scope)
{
    return scope == Scope::comment || scope == Scope::string || scope == Scope::escape;
}

bool hasTextualScopes(const Language &language)
{
    const auto isOfThese = [](const auto &rule) { return isTextual(rule.scope); };
    return std::ranges::any_of(language.spans(), isOfThese) || std::ranges::any_of(language.rules(), isOfThese);
}

} // namespace

SpellingController::SpellingController(TextView &view, SyntaxHighlighter *highlighter, const Language &language, Services services,
                                       QObject *parent)
    : QObject(parent), m_view(view), m_highlighter(highlighter), m_services(std::move(services))
{
    setLanguage(language);
    connect(&view.storage(), &TextStorage::changed, this, &SpellingController::noteEdit);
    connect(&view, &TextView::selectionChanged, this, &SpellingController::noteSelection);
    connect(&m_services.checker, &SpellChecker::answersChanged, this, &SpellingController::noteAnswers);
}

SpellingController::~SpellingController()
{
    m_view.setLook(&TextLooks::misspellings, {});
}

void SpellingController::setLanguage(const Language &language)
{
    m_language = language;
    m_checksScopesOnly = m_highlighter && language.id() != markdownId && hasTextualScopes(language);
    if (m_isContinuous) {
        m_view.viewport()->update();
    }
}

// Which words count

bool SpellingController::isChecked(Scope scope) const
{
    return m_checksScopesOnly ? isTextual(scope) : scope != Scope::string;
}

std::vector<SpellingWord> SpellingController::wordsTouching(TextRange range) const
{
    const auto setting = m_checksScopesOnly ? SpellingWords::Setting::code : SpellingWords::Setting::prose;
    std::vector<SpellingWord> words = SpellingWords::touching(m_view.storage().text(), range, setting);
    // What is not coloured is prose throughout, in a language without comments and strings.
    if (words.empty() || !m_highlighter || (!m_checksScopesOnly && m_language.id() != markdownId)) {
        return words;
    }
    std::vector<TextRange> checked;
    m_highlighter->forEachScope(TextRange::between(words.front().range.location, words.back().range.end()),
                                [&](TextRange run, Scope scope) {
                                    if (!isChecked(scope)) {
                                        return;
                                    }
                                    if (!checked.empty() && checked.back().end() == run.location) {
                                        checked.back().length += run.length;
                                    } else {
                                        checked.push_back(run);
                                    }
                                });
    auto run = checked.begin();
    std::erase_if(words, [&](const SpellingWord &word) {
        while (run != checked.end() && run->end() < word.range.end()) {
            ++run;
        }
        return run == checked.end() || run->location > word.range.location;
    });
    return words;
}

std::vector<TextRange> SpellingController::misspellingsIn(TextRange seen)
{
    std::vector<TextRange> found;
    for (const SpellingWord &word : wordsTouching(seen)) {
        if (!isBeingTyped(word.range) && checker().check(word.text) == SpellChecker::Answer::wrong) {
            found.push_back(word.range);
        }
    }
    return found;
}

bool SpellingController::isBeingTyped(TextRange word) const
{
    return m_typedAt && m_view.selection() == TextSelection::at(*m_typedAt) && word.location < *m_typedAt && *m_typedAt <= word.end();
}

// Continuous checking

void SpellingController::toggleContinuous()
{
    m_isContinuous = !m_isContinuous;
    m_view.setLook(&TextLooks::misspellings,
                   m_isContinuous ? [this](TextRange seen) { return misspellingsIn(seen); } : TextView::MarkProvider());
    m_view.viewport()->update();
    guessDictionaries();
    emit dictionariesChanged();
}

bool SpellingController::canCheck() const
{
    return checker().isAvailable();
}

ActionState SpellingController::continuousState() const
{
    return {.isEnabled = canCheck() || m_isContinuous, .checkMark = m_isContinuous ? CheckMark::on : CheckMark::none};
}

void SpellingController::noteEdit(const TextChange &change)
{
    m_typedAt.reset();
    const TextRange typed = change.edits.newRange(0);
    if (change.edits.count() == 1 && typed.length <= longestTyped && change.edits[0].range.length <= longestTyped) {
        m_typedAt = typed.end();
    }
    if (m_search) {
        endSearch(Outcome::none);
    }
    if (m_guessedLength && !m_nextGuess.isPending()) {
        m_nextGuess = m_services.scheduler.after(guessDelay, [this] { guessDictionaries(); });
    }
}

void SpellingController::noteSelection()
{
    if (const TextSelection selection = m_view.selection(); m_typedAt && selection != TextSelection::at(*m_typedAt)) {
        const auto words = wordsTouching({selection.caret, 0});
        const bool isInSameWord = selection.isEmpty() && std::ranges::any_of(words, [&](const SpellingWord &word) {
                                      return word.range.touches({*m_typedAt, 0}) && word.range.location < selection.caret;
                                  });
        if (isInSameWord) {
            m_typedAt = selection.caret;
        } else {
            m_typedAt.reset();
            if (m_isContinuous) {
                m_view.viewport()->update();
            }
        }
    }
    if (m_isSelecting) {
        return;
    }
    if (m_search) {
        endSearch(Outcome::none);
    } else {
        m_outcome = Outcome::none;
        emit changed();
    }
}

void SpellingController::noteAnswers()
{
    if (m_isContinuous) {
        m_view.viewport()->update();
    }
    if (m_search && !m_nextSlice.isPending()) {
        goOn();
    } else {
        emit changed();
    }
}

// Dictionaries

void SpellingController::setDictionaries(const QStringList &names)
{
    m_chosenDictionaries = names;
    m_guessing.cancel();
    m_guessedLength.reset();
    useChecker(names.isEmpty() ? nullptr : m_services.checker.with(names));
    if (m_isContinuous) {
        guessDictionaries();
    }
}

QStringList SpellingController::dictionaries() const
{
    return checker().dictionaries();
}

void SpellingController::useChecker(std::shared_ptr<SpellChecker> checker)
{
    disconnect(&this->checker(), &SpellChecker::answersChanged, this, nullptr);
    m_ownChecker = std::move(checker);
    connect(&this->checker(), &SpellChecker::answersChanged, this, &SpellingController::noteAnswers);
    noteAnswers();
    emit dictionariesChanged();
}

/// Once when spelling is checked first, and again when the text has become twice as long or was replaced.
void SpellingController::guessDictionaries()
{
    const qsizetype length = m_view.storage().length();
    const bool isKnown = m_guessedLength && length < 2 * *m_guessedLength + leastGrowth && 2 * length >= *m_guessedLength;
    if (!m_chosenDictionaries.isEmpty() || isKnown) {
        return;
    }
    m_guessedLength = length;
    m_guessing = m_services.checker.guess(sampledWords(), [this](const QStringList &names) {
        if (names != dictionaries()) {
            useChecker(m_services.checker.with(names));
        }
    });
}

/// From its start, its middle and its end, each once.
QStringList SpellingController::sampledWords()
{
    const qsizetype length = m_view.storage().length();
    QStringList sample;
    for (const qsizetype start : {qsizetype(0), length / 2, length - sampleLength}) {
        const auto stretch =
            TextRange::between(std::clamp<qsizetype>(start, 0, length), std::clamp(start + sampleLength, qsizetype(0), length));
        if (m_highlighter) {
            m_highlighter->ensureHighlighted(stretch);
        }
        for (const SpellingWord &word : wordsTouching(stretch)) {
            sample << word.text;
        }
    }
    sample.removeDuplicates();
    return sample;
}

// From mistake to mistake

void SpellingController::checkSpelling()
{
    if (!canCheck()) {
        endSearch(Outcome::nothingFound);
        m_services.beep();
        return;
    }
    const qsizetype start = m_view.selection().range().end();
    m_search = Search{.from = start, .start = start};
    m_outcome = Outcome::searching;
    guessDictionaries();
    goOn();
}

/// Searches one slice. A word whose answer is not known yet ends it, after the rest was asked for too; the answers come back here.
void SpellingController::goOn()
{
    m_nextSlice.cancel();
    Search &search = *m_search;
    const qsizetype limit = search.hasWrapped ? search.start : m_view.storage().length();
    const auto slice = TextRange::between(search.from, std::min(search.from + sliceLength, limit));
    if (m_highlighter) {
        m_highlighter->ensureHighlighted(slice);
    }
    std::optional<qsizetype> pending;
    for (const SpellingWord &word : wordsTouching(slice)) {
        if (word.range.location < slice.location || word.range.location >= slice.end()) {
            continue;
        }
        const SpellChecker::Answer answer = checker().check(word.text);
        if (answer == SpellChecker::Answer::wrong && !pending) {
            select(word.range);
            return;
        }
        if (answer == SpellChecker::Answer::pending && !pending) {
            pending = word.range.location;
        }
    }
    search.from = pending.value_or(slice.end());
    if (!pending && search.from == limit) {
        if (search.hasWrapped || search.start == 0) {
            endSearch(Outcome::nothingFound);
            m_services.beep();
            return;
        }
        search.hasWrapped = true;
        search.from = 0;
    }
    if (!pending) {
        m_nextSlice = m_services.scheduler.after(Scheduler::Milliseconds(0), [this] { goOn(); });
    }
    emit changed();
}

void SpellingController::endSearch(Outcome outcome)
{
    m_search.reset();
    m_nextSlice.cancel();
    m_outcome = outcome;
    emit changed();
}

void SpellingController::select(TextRange word)
{
    {
        const QScopedValueRollback selecting(m_isSelecting, true);
        m_view.setSelection({word.location, word.end()}, TextView::Reveal::nearest);
        m_view.showIndicator(word);
    }
    endSearch(Outcome::found);
}

void SpellingController::showPanel()
{
    m_services.panel.show(*this);
}

// One word

std::optional<SpellingController::Correction> SpellingController::correctionAt(qsizetype offset, std::chrono::milliseconds timeout)
{
    for (const SpellingWord &word : wordsTouching({offset, 0})) {
        if (checker().check(word.text) == SpellChecker::Answer::wrong) {
            return Correction{word.range, word.text, checker().suggestions(word.text, timeout)};
        }
    }
    return std::nullopt;
}

std::optional<SpellingController::Correction> SpellingController::selectedCorrection()
{
    const TextRange selected = m_view.selection().range();
    if (selected.isEmpty()) {
        return std::nullopt;
    }
    auto correction = correctionAt(selected.location, {});
    return correction && correction->range == selected ? correction : std::nullopt;
}

bool SpellingController::canReplace() const
{
    return !m_view.isReadOnly();
}

void SpellingController::replace(const Correction &correction, const QString &replacement)
{
    const TextStorage &storage = m_view.storage();
    const bool isThere = correction.range.end() <= storage.length() && storage.string(correction.range) == correction.word;
    if (!isThere || !canReplace()) {
        m_services.beep();
        return;
    }
    m_view.insertText(replacement, correction.range);
}

void SpellingController::learn(const QString &word)
{
    if (const Result<void> learned = checker().learn(word); !learned) {
        m_services.report(learned.error().message);
    }
}

void SpellingController::ignore(const QString &word)
{
    checker().ignore(word);
}

void SpellingController::addCorrections(QMenu &menu, qsizetype offset)
{
    // Who does not check spelling needs no dictionaries.
    if (!m_isContinuous && !checker().isInUse()) {
        return;
    }
    const auto correction = correctionAt(offset, menuTimeout);
    if (!correction) {
        return;
    }
    QAction *const before = menu.actions().value(0);
    if (correction->guesses) {
        addGuesses(menu, before, *correction);
    } else {
        addLateGuesses(menu, before, *correction);
    }
    const auto add = [&](const QString &title, std::function<void()> reaction) {
        auto *item = new QAction(withMnemonic(title, menu), &menu);
        connect(item, &QAction::triggered, this, std::move(reaction));
        menu.insertAction(before, item);
    };
    menu.insertSeparator(before);
    add(localized(u"Learn Spelling"), [this, word = correction->word] { learn(word); });
    add(localized(u"Ignore Spelling"), [this, word = correction->word] { ignore(word); });
    menu.insertSeparator(before);
}

void SpellingController::addGuesses(QMenu &menu, QAction *before, const Correction &correction)
{
    const QStringList guesses = correction.guesses.value_or(QStringList());
    for (const QString &guess : guesses.first(std::min(guesses.size(), mostMenuGuesses))) {
        auto *item = new QAction(QString(guess).replace(u'&', u"&&"_s), &menu);
        connect(item, &QAction::triggered, this, [this, correction, guess] { replace(correction, guess); });
        QFont font = menu.font();
        font.setBold(true);
        item->setFont(font);
        item->setEnabled(canReplace());
        menu.insertAction(before, item);
    }
    if (guesses.isEmpty()) {
        auto *item = new QAction(localized(u"No Suggestions"), &menu);
        item->setEnabled(false);
        menu.insertAction(before, item);
    }
}

/// In a menu of their own, so that nothing moves under the pointer when they come.
void SpellingController::addLateGuesses(QMenu &menu, QAction *before, const Correction &correction)
{
    auto *late = new QMenu(localized(u"Suggestions"), &menu);
    QAction *searching = late->addAction(localized(u"Searching…"));
    searching->setEnabled(false);
    menu.insertMenu(before, late);
    connect(this, &SpellingController::changed, late, [this, late, searching = QPointer(searching), correction] {
        const auto guesses = checker().suggestions(correction.word);
        if (searching && guesses) {
            Correction found = correction;
            found.guesses = guesses;
            addGuesses(*late, searching, found);
            delete searching.data();
        }
    });
}
