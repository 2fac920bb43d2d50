// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Base/Scheduler.h"
#include "Commands/Responder.h"
#include "Highlighting/Language.h"
#include "Highlighting/Scope.h"
#include "Spelling/SpellingWords.h"
#include "Text/TextStorage.h"

#include <QObject>
#include <QStringList>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QAction;
class QMenu;
class SpellChecker;
class SpellingPanel;
class SyntaxHighlighter;
class TextView;

/// Spelling in one text view: underlines what is misspelled, goes from mistake to mistake, corrects.
///
/// In a language that has comments and strings only these are checked, in any other text all that is no code. Nothing is looked at but
/// what is seen, or searched, and no key waits for a dictionary. The word that is being typed is not underlined before the caret leaves
/// it. Main thread only; offsets are UTF-16 units.
class SpellingController final : public QObject {
    Q_OBJECT

public:
    struct Services {
        Scheduler &scheduler;
        SpellChecker &checker;
        /// Common to all views.
        SpellingPanel &panel;
        /// The sound for "no mistake found".
        std::function<void()> beep;
        /// Reports to the user what went wrong.
        std::function<void(const QString &message)> report;
    };
    struct Correction {
        TextRange range;
        QString word;
        /// The likeliest first; none when they are still looked for.
        std::optional<QStringList> guesses;

        friend bool operator==(const Correction &, const Correction &) = default;
    };
    enum class Outcome { none, searching, found, nothingFound };

    /// So many units are searched in one turn of the event loop.
    static constexpr qsizetype sliceLength = 8192;
    /// The longest that a menu waits for suggestions; what comes later it shows when it is there.
    static constexpr std::chrono::milliseconds menuTimeout{40};
    /// Of an edit before the dictionaries are guessed anew.
    static constexpr Scheduler::Milliseconds guessDelay{1000};

    /// `highlighter` finds comments and strings, null where there is none. It, the view and the services must outlive the controller.
    SpellingController(TextView &view, SyntaxHighlighter *highlighter, const Language &language, Services services,
                       QObject *parent = nullptr);
    ~SpellingController() override;

    void setLanguage(const Language &language);
    [[nodiscard]] TextView &view() { return m_view; }
    /// With the dictionaries of this text.
    [[nodiscard]] SpellChecker &checker() const { return m_ownChecker ? *m_ownChecker : m_services.checker; }

    /// Those of these names are for this text; none for those that its words seem to be from, which is found out when spelling is checked
    /// and again when the text has become another.
    void setDictionaries(const QStringList &names);
    /// What was set last.
    [[nodiscard]] const QStringList &chosenDictionaries() const { return m_chosenDictionaries; }
    /// Names of those in use.
    [[nodiscard]] QStringList dictionaries() const;

    /// Off to begin with.
    [[nodiscard]] bool isContinuous() const { return m_isContinuous; }
    /// What is underlined of `seen` while it is on.
    [[nodiscard]] std::vector<TextRange> misspellingsIn(TextRange seen);
    // The actions toggleContinuousSpellChecking:, checkSpelling: and showGuessPanel:.
    void toggleContinuous();
    [[nodiscard]] ActionState continuousState() const;
    /// Selects the misspelled word behind the selection, at the text's end on from its start; beeps when there is none. A large text is
    /// searched in slices; an edit or another selection ends that.
    void checkSpelling();
    [[nodiscard]] bool canCheck() const;
    void showPanel();

    /// What became of the last `checkSpelling()`.
    [[nodiscard]] Outcome outcome() const { return m_outcome; }
    /// The text can be changed.
    [[nodiscard]] bool canReplace() const;

    /// The word at `offset` or ending there, if it is known to be misspelled.
    [[nodiscard]] std::optional<Correction> correctionAt(qsizetype offset, std::chrono::milliseconds timeout);
    /// The selected word, likewise.
    [[nodiscard]] std::optional<Correction> selectedCorrection();
    /// As one step that can be undone; only a beep when the word is not there any more.
    void replace(const Correction &correction, const QString &replacement);
    void learn(const QString &word);
    void ignore(const QString &word);
    /// At the top of a text's context menu: what the word at `offset` may be meant to be, if it is misspelled.
    void addCorrections(QMenu &menu, qsizetype offset);

signals:
    /// The outcome of a search, the selected word or what is known of it may be another.
    void changed();
    /// Those in use or chosen are others.
    void dictionariesChanged();

private:
    struct Search {
        /// Words that begin here or behind are to be looked at, up to `limit`.
        qsizetype from = 0;
        /// Where the search began.
        qsizetype start = 0;
        bool hasWrapped = false;
    };

    [[nodiscard]] std::vector<SpellingWord> wordsTouching(TextRange range) const;
    [[nodiscard]] bool isChecked(Scope scope) const;
    [[nodiscard]] bool isBeingTyped(TextRange word) const;
    void noteEdit(const TextChange &change);
    void noteSelection();
    void noteAnswers();

    void useChecker(std::shared_ptr<SpellChecker> checker);
    void guessDictionaries();
    [[nodiscard]] QStringList sampledWords();

    void addGuesses(QMenu &menu, QAction *before, const Correction &correction);
    void addLateGuesses(QMenu &menu, QAction *before, const Correction &correction);

    void goOn();
    void endSearch(Outcome outcome);
    void select(TextRange word);

    TextView &m_view;
    SyntaxHighlighter *m_highlighter;
    Services m_services;
    Language m_language;
    bool m_checksScopesOnly = false;
    bool m_isContinuous = false;

    /// None while those of the user's languages are used.
    std::shared_ptr<SpellChecker> m_ownChecker;
    QStringList m_chosenDictionaries;
    /// The units of the text when its dictionaries were guessed; none before that.
    std::optional<qsizetype> m_guessedLength;
    BackgroundTask m_guessing;
    DelayedTask m_nextGuess;

    /// Where typing has brought the caret, as long as it stays in that word.
    std::optional<qsizetype> m_typedAt;

    std::optional<Search> m_search;
    DelayedTask m_nextSlice;
    Outcome m_outcome = Outcome::none;
    bool m_isSelecting = false;
};
