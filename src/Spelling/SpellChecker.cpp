// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Spelling/SpellChecker.h"

#include "Base/AtomicFile.h"
#include "Base/Localization.h"
#include "Base/StandardFolder.h"
#include "Base/Translation.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <numeric>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype mostAnswers = 8192;
constexpr size_t mostGuesses = 32;
constexpr size_t mostDictionaries = 4;
constexpr qsizetype mostSuggestions = 10;
constexpr qsizetype longestLearnedWord = 128;

QString environment(const char *name)
{
    return qEnvironmentVariable(name);
}

bool isWord(const QString &line)
{
    return !line.isEmpty() && line.size() <= longestLearnedWord && std::ranges::all_of(line, [](QChar character) {
        return character.isPrint() && !character.isSpace() && character != QChar::ReplacementCharacter;
    });
}

/// A word that is not lower case throughout may stand at the start of a sentence.
QString uncapitalised(const QString &word)
{
    return word.first(1).toLower() + word.sliced(1);
}

/// Units to be changed, put in or left out, whatever their case.
ptrdiff_t editDistance(const QString &word, const QString &other)
{
    const QString from = word.toLower();
    const QString to = other.toLower();
    std::vector<ptrdiff_t> row(size_t(to.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const QChar unit : from) {
        ptrdiff_t diagonal = row[0]++;
        for (size_t place = 1; place < row.size(); ++place) {
            const ptrdiff_t changed = diagonal + (unit == to[qsizetype(place) - 1] ? 0 : 1);
            diagonal = row[place];
            row[place] = std::min({changed, row[place] + 1, row[place - 1] + 1});
        }
    }
    return row.back();
}

} // namespace

/// The dictionaries, shared with the workers. A lock is held for one word at a time, so that suggestions get in between those of a batch.
class SpellChecker::Engine {
public:
    explicit Engine(std::vector<SpellDictionaryFiles> files) : m_files(std::move(files))
    {
        if (m_files.size() > mostDictionaries) {
            m_files.resize(mostDictionaries);
        }
    }

    /// Any thread.
    [[nodiscard]] const std::vector<SpellDictionaryFiles> &files() const { return m_files; }
    /// False once loading has shown that none of them can be read. Any thread.
    [[nodiscard]] bool isUsable() const { return m_isUsable; }

    [[nodiscard]] bool isCorrect(const QString &word)
    {
        const std::lock_guard lock(m_mutex);
        load();
        bool isAnybodys = false;
        for (const auto &dictionary : m_dictionaries) {
            if (dictionary->isResponsible(word)) {
                isAnybodys = true;
                if (dictionary->knows(word)) {
                    return true;
                }
            }
        }
        return !isAnybodys;
    }

    /// Of each language in the order that its dictionary gives them; of different languages the nearer to the word first.
    [[nodiscard]] QStringList suggestions(const QString &word)
    {
        const std::lock_guard lock(m_mutex);
        load();
        std::vector<QStringList> all;
        for (const auto &dictionary : m_dictionaries) {
            if (dictionary->isResponsible(word)) {
                all.push_back(dictionary->suggestions(word));
            }
        }
        QStringList merged;
        const auto distance = [&word](const QStringList &list) { return list.isEmpty() ? PTRDIFF_MAX : editDistance(word, list.first()); };
        while (merged.size() < mostSuggestions) {
            const auto nearest = std::ranges::min_element(all, {}, distance);
            if (nearest == all.end() || nearest->isEmpty()) {
                break;
            }
            if (const QString guess = nearest->takeFirst(); !merged.contains(guess)) {
                merged << guess;
            }
        }
        return merged;
    }

private:
    void load()
    {
        if (std::exchange(m_isLoaded, true)) {
            return;
        }
        for (const SpellDictionaryFiles &files : m_files) {
            if (auto dictionary = SpellDictionary::load(files)) {
                m_dictionaries.push_back(std::move(dictionary));
            } else {
                qWarning("The dictionary %s is damaged or cannot be read.", qPrintable(files.words));
            }
        }
        m_isUsable = !m_dictionaries.empty();
    }

    std::vector<SpellDictionaryFiles> m_files;
    std::mutex m_mutex;
    std::vector<std::unique_ptr<SpellDictionary>> m_dictionaries;
    bool m_isLoaded = false;
    std::atomic<bool> m_isUsable = true;
};

/// Suggestions on their way from a worker.
struct SpellChecker::Guess {
    struct Arrival {
        std::mutex mutex;
        std::condition_variable arrived;
        std::optional<QStringList> suggestions;
    };

    std::shared_ptr<Arrival> arrival = std::make_shared<Arrival>();
    BackgroundTask task;
};

SpellChecker::SpellChecker(Workers &workers, Setup setup, QObject *parent) : QObject(parent), m_workers(workers), m_setup(std::move(setup))
{}

SpellChecker::~SpellChecker() = default;

SpellChecker::Setup SpellChecker::systemSetup()
{
    QStringList languages = Localization::systemLanguages(environment);
    languages.prepend(Localization::current().locale().name());
    return {.folders = SpellDictionary::folders(environment),
            .languages = languages,
            .learnedWords = standardFolder("XDG_CONFIG_HOME", u".config") + u"/Quillet/dictionary.txt"_s};
}

void SpellChecker::setLanguages(const QStringList &languages)
{
    if (m_setup.languages == languages) {
        return;
    }
    m_setup.languages = languages;
    m_engine.reset();
    forgetAnswers();
    emit answersChanged();
}

void SpellChecker::forgetAnswers()
{
    m_asking.cancel();
    m_answers.clear();
    m_olderAnswers.clear();
    m_guesses.clear();
    m_wanted.clear();
}

void SpellChecker::findDictionaries()
{
    if (!m_engine) {
        m_engine = std::make_shared<Engine>(SpellDictionary::installed(m_setup.folders, m_setup.languages));
    }
}

bool SpellChecker::isAvailable()
{
    findDictionaries();
    return !m_engine->files().empty() && m_engine->isUsable();
}

QStringList SpellChecker::dictionaries()
{
    findDictionaries();
    QStringList names;
    for (const SpellDictionaryFiles &files : m_engine->files()) {
        names << files.name;
    }
    return names;
}

SpellChecker::Answer SpellChecker::check(const QString &word)
{
    if (word.isEmpty() || !isAvailable() || isAccepted(word)) {
        return Answer::correct;
    }
    if (const auto isCorrect = known(word)) {
        return *isCorrect ? Answer::correct : Answer::wrong;
    }
    m_isInUse = true;
    m_wanted.insert(word);
    askSoon();
    return Answer::pending;
}

std::optional<bool> SpellChecker::known(const QString &word)
{
    if (const auto found = m_answers.constFind(word); found != m_answers.cend()) {
        return *found;
    }
    if (const auto found = m_olderAnswers.constFind(word); found != m_olderAnswers.cend()) {
        const bool isCorrect = *found;
        remember(word, isCorrect);
        return isCorrect;
    }
    return std::nullopt;
}

void SpellChecker::remember(const QString &word, bool isCorrect)
{
    if (m_answers.size() >= mostAnswers) {
        m_olderAnswers = std::exchange(m_answers, {});
    }
    m_answers.insert(word, isCorrect);
}

/// All that is asked for in this turn of the event loop goes to the worker together.
void SpellChecker::askSoon()
{
    if (m_asking.isPending() || std::exchange(m_willAsk, true)) {
        return;
    }
    QMetaObject::invokeMethod(this, &SpellChecker::ask, Qt::QueuedConnection);
}

void SpellChecker::ask()
{
    m_willAsk = false;
    if (m_wanted.isEmpty() || m_asking.isPending()) {
        return;
    }
    findDictionaries();
    using Answers = std::vector<std::pair<QString, bool>>;
    m_asking = BackgroundTask::start(
        m_workers,
        [engine = m_engine, words = std::exchange(m_wanted, {})](const std::stop_token &stop) {
            Answers answers;
            for (const QString &word : words) {
                if (stop.stop_requested()) {
                    break;
                }
                answers.emplace_back(word, engine->isCorrect(word));
            }
            return answers;
        },
        [this](const Answers &answers) {
            for (const auto &[word, isCorrect] : answers) {
                m_wanted.remove(word);
                remember(word, isCorrect);
            }
            if (!m_wanted.isEmpty()) {
                askSoon();
            }
            emit answersChanged();
        });
}

std::optional<QStringList> SpellChecker::suggestions(const QString &word, std::chrono::milliseconds timeout)
{
    if (word.isEmpty() || !isAvailable()) {
        return QStringList();
    }
    askForGuesses(word);
    Guess::Arrival &arrival = *m_guesses.at(word).arrival;
    std::unique_lock lock(arrival.mutex);
    arrival.arrived.wait_for(lock, timeout, [&arrival] { return arrival.suggestions.has_value(); });
    return arrival.suggestions;
}

void SpellChecker::askForGuesses(const QString &word)
{
    if (m_guesses.contains(word)) {
        return;
    }
    if (m_guesses.size() >= mostGuesses) {
        m_guesses.clear();
    }
    m_isInUse = true;
    Guess &guess = m_guesses[word];
    guess.task = BackgroundTask::start(
        m_workers,
        [engine = m_engine, arrival = guess.arrival, word](const std::stop_token &) {
            QStringList suggestions = engine->suggestions(word);
            const std::lock_guard lock(arrival->mutex);
            arrival->suggestions = std::move(suggestions);
            arrival->arrived.notify_all();
            return true;
        },
        [this](bool) { emit answersChanged(); });
}

// Words of the user's own

bool SpellChecker::isAccepted(const QString &word)
{
    readLearnedWords();
    return !m_accepted.isEmpty() && (m_accepted.contains(word) || m_accepted.contains(uncapitalised(word)));
}

void SpellChecker::readLearnedWords()
{
    if (std::exchange(m_hasReadLearned, true)) {
        return;
    }
    QFile file(m_setup.learnedWords);
    if (!QFileInfo(m_setup.learnedWords).isFile() || !file.open(QIODevice::ReadOnly)) {
        return;
    }
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    for (const QString &line : lines) {
        if (const QString word = line.trimmed(); isWord(word)) {
            m_accepted.insert(word);
        }
    }
}

Result<void> SpellChecker::learn(const QString &word)
{
    readLearnedWords();
    if (m_setup.learnedWords.isEmpty() || !isWord(word)) {
        ignore(word);
        return {};
    }
    // Another running program, or the user with an editor, may have added to the file: it is read again, and nothing in it is lost.
    QByteArray lines;
    if (QFile file(m_setup.learnedWords); QFileInfo(m_setup.learnedWords).isFile()) {
        if (!file.open(QIODevice::ReadOnly)) {
            ignore(word);
            return failure(formatted(localized(u"“%@” could not be learned: %@ cannot be read."), word, m_setup.learnedWords));
        }
        lines = file.readAll();
    }
    if (!lines.isEmpty() && !lines.endsWith('\n')) {
        lines += '\n';
    }
    m_hasReadLearned = false;
    readLearnedWords();
    const bool isKnown = m_accepted.contains(word) && lines.split('\n').contains(word.toUtf8());
    ignore(word);
    if (isKnown) {
        return {};
    }
    makePrivateFolder(QFileInfo(m_setup.learnedWords).path());
    return writeAtomically(m_setup.learnedWords, lines + word.toUtf8() + '\n', AtomicFile::NewFile::privateToUser);
}

void SpellChecker::ignore(const QString &word)
{
    if (!word.isEmpty()) {
        m_accepted.insert(word);
        emit answersChanged();
    }
}
