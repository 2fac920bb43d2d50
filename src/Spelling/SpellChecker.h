// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Base/Result.h"
#include "Spelling/SpellDictionary.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QStringList>

#include <chrono>
#include <functional>
#include <map>

class SpellLibrary;
class UserWords;

/// Whether words are spelled correctly, by the dictionaries of the user's languages and the words that the user taught the program.
///
/// A word is correct when any of the languages knows it, and when no dictionary is for its script. The main thread only looks into what
/// is known already; what is not is found out on a worker, many words at a time, and `answersChanged` reports that it is worth asking
/// again. Dictionaries are loaded there too, when the first word is asked for. Main thread only.
class SpellChecker final : public QObject {
    Q_OBJECT

public:
    struct Setup {
        /// Absolute paths, those to be preferred first.
        QStringList folders;
        /// Like "de_AT.UTF-8" or "en".
        QStringList languages;
        /// The file of the learned words, one a line in UTF-8; lines that hold no word are left as they are. Empty for none.
        QString learnedWords;
    };
    enum class Answer {
        correct,
        wrong,
        /// `answersChanged` will report it.
        pending,
    };

    /// `workers` must be gone before the application object.
    SpellChecker(Workers &workers, Setup setup, QObject *parent = nullptr);
    ~SpellChecker() override;

    /// The dictionaries of this desktop, for the languages of the interface and of the session.
    [[nodiscard]] static Setup systemSetup();
    /// Other languages from now on.
    void setLanguages(const QStringList &languages);

    /// A checker with the dictionaries of these names instead, for texts in other languages, and with the same words of the user; the same
    /// one as long as somebody holds it. Names that are not installed are passed over.
    [[nodiscard]] std::shared_ptr<SpellChecker> with(const QStringList &dictionaries);
    /// Names of all dictionaries that are installed, by name; looked for once.
    [[nodiscard]] const QStringList &installed();
    /// Calls `done` with the dictionaries that these words of a text seem to be written by, found out on a worker. Nothing to be found out
    /// and never called when there is no choice.
    [[nodiscard]] BackgroundTask guess(const QStringList &words, std::function<void(const QStringList &dictionaries)> done);

    /// There is a dictionary for one of the languages. Without one every word is correct.
    [[nodiscard]] bool isAvailable();
    /// A word was asked for, so that the dictionaries are or get loaded.
    [[nodiscard]] bool isInUse() const { return m_isInUse; }
    /// Names of the dictionaries in use, like "de_AT".
    [[nodiscard]] QStringList dictionaries();

    [[nodiscard]] Answer check(const QString &word);
    /// Not known to be wrong.
    [[nodiscard]] bool isCorrect(const QString &word) { return check(word) != Answer::wrong; }

    /// What the word may have been meant to be, the likeliest first. None when they are not known within `timeout`; `answersChanged`
    /// reports when they are.
    [[nodiscard]] std::optional<QStringList> suggestions(const QString &word, std::chrono::milliseconds timeout = {});

    // See UserWords.
    [[nodiscard]] Result<void> learn(const QString &word);
    void ignore(const QString &word);

signals:
    /// Words that were asked for have answers, or have others than before.
    void answersChanged();

private:
    class Engine;
    struct Guess;

    /// One of a family, which has the library and the user's words in common.
    SpellChecker(const SpellChecker &family, const QStringList &dictionaries);

    void findDictionaries();
    void remember(const QString &word, bool isCorrect);
    [[nodiscard]] std::optional<bool> known(const QString &word);
    void askSoon();
    void ask();
    void askForGuesses(const QString &word);
    void forgetAnswers();

    Workers &m_workers;
    Setup m_setup;
    /// Those of the languages when there are none.
    QStringList m_chosen;
    std::shared_ptr<SpellLibrary> m_library;
    std::shared_ptr<UserWords> m_userWords;
    std::map<QStringList, std::weak_ptr<SpellChecker>> m_others;
    std::shared_ptr<Engine> m_engine;
    std::optional<QStringList> m_installed;
    bool m_isInUse = false;

    /// When the first is full it becomes the second, whose words are forgotten unless asked for meanwhile.
    QHash<QString, bool> m_answers, m_olderAnswers;
    QSet<QString> m_wanted;
    bool m_willAsk = false;
    BackgroundTask m_asking;
    /// By word; a few.
    std::map<QString, Guess> m_guesses;
};
