// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Spelling/SpellChecker.h"

#include "Base/Localization.h"
#include "Base/StandardFolder.h"
#include "Spelling/SpellGuess.h"
#include "Spelling/SpellLibrary.h"
#include "Spelling/UserWords.h"

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
/// How many languages beside the user's own are looked into for one that a text is in.
constexpr size_t mostOthers = 12;

QString environment(const char *name)
{
    return qEnvironmentVariable(name);
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

/// The dictionaries of one checker, shared with the workers.
class SpellChecker::Engine {
public:
    Engine(const std::vector<SpellDictionaryFiles> &files, SpellLibrary &library)
    {
        for (const SpellDictionaryFiles &each : files) {
            if (m_volumes.size() < mostDictionaries) {
                m_volumes.push_back(library.volume(each));
            }
        }
    }

    /// Any thread.
    [[nodiscard]] const std::vector<std::shared_ptr<SpellLibrary::Volume>> &volumes() const { return m_volumes; }
    /// False once loading has shown that none of them can be read. Any thread.
    [[nodiscard]] bool isUsable() const { return m_isUsable; }

    [[nodiscard]] bool isCorrect(const QString &word)
    {
        load();
        bool isAnybodys = false;
        for (const auto &volume : m_volumes) {
            const std::optional<bool> answer = volume->knows(word);
            if (answer == true) {
                return true;
            }
            isAnybodys = isAnybodys || answer;
        }
        return !isAnybodys;
    }

    /// Of each language in the order that its dictionary gives them; of different languages the nearer to the word first.
    [[nodiscard]] QStringList suggestions(const QString &word)
    {
        load();
        std::vector<QStringList> all;
        for (const auto &volume : m_volumes) {
            if (auto suggestions = volume->suggestions(word)) {
                all.push_back(*std::move(suggestions));
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
        std::call_once(m_loading,
                       [this] { m_isUsable = std::ranges::count_if(m_volumes, [](const auto &volume) { return volume->load(); }) > 0; });
    }

    std::vector<std::shared_ptr<SpellLibrary::Volume>> m_volumes;
    std::once_flag m_loading;
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

SpellChecker::SpellChecker(Workers &workers, Setup setup, QObject *parent)
    : QObject(parent), m_workers(workers), m_setup(std::move(setup)), m_library(std::make_shared<SpellLibrary>()),
      m_userWords(std::make_shared<UserWords>(m_setup.learnedWords))
{
    connect(m_userWords.get(), &UserWords::changed, this, &SpellChecker::answersChanged);
}

SpellChecker::SpellChecker(const SpellChecker &family, const QStringList &dictionaries)
    : m_workers(family.m_workers), m_setup(family.m_setup), m_chosen(dictionaries), m_library(family.m_library),
      m_userWords(family.m_userWords)
{
    connect(m_userWords.get(), &UserWords::changed, this, &SpellChecker::answersChanged);
}

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
    if (m_engine) {
        return;
    }
    std::vector<SpellDictionaryFiles> files;
    if (m_chosen.isEmpty()) {
        files = SpellDictionary::installed(m_setup.folders, m_setup.languages);
    } else {
        const std::vector<SpellDictionaryFiles> all = SpellDictionary::installed(m_setup.folders);
        for (const QString &name : m_chosen) {
            std::ranges::copy_if(all, std::back_inserter(files), [&name](const auto &each) { return each.name == name; });
        }
    }
    m_engine = std::make_shared<Engine>(files, *m_library);
}

std::shared_ptr<SpellChecker> SpellChecker::with(const QStringList &dictionaries)
{
    std::erase_if(m_others, [](const auto &other) { return other.second.expired(); });
    std::shared_ptr<SpellChecker> found = m_others[dictionaries].lock();
    if (!found) {
        found = std::shared_ptr<SpellChecker>(new SpellChecker(*this, dictionaries));
        m_others[dictionaries] = found;
    }
    return found;
}

const QStringList &SpellChecker::installed()
{
    if (!m_installed) {
        m_installed.emplace();
        for (const SpellDictionaryFiles &files : SpellDictionary::installed(m_setup.folders)) {
            m_installed->append(files.name);
        }
        m_installed->sort();
    }
    return *m_installed;
}

BackgroundTask SpellChecker::guess(const QStringList &words, std::function<void(const QStringList &dictionaries)> done)
{
    const auto languageOf = [](const SpellDictionaryFiles &files) { return files.name.section(u'_', 0, 0); };
    SpellGuess::Candidates candidates{.likely = SpellDictionary::installed(m_setup.folders, m_setup.languages), .others = {}};
    QStringList languages;
    std::ranges::transform(candidates.likely, std::back_inserter(languages), languageOf);
    QStringList otherLanguages;
    for (const SpellDictionaryFiles &files : SpellDictionary::installed(m_setup.folders)) {
        if (const QString language = languageOf(files); !languages.contains(language) && !otherLanguages.contains(language)) {
            otherLanguages << language;
        }
    }
    candidates.others = SpellDictionary::installed(m_setup.folders, otherLanguages);
    candidates.others.resize(std::min(candidates.others.size(), mostOthers));
    if (candidates.likely.size() + candidates.others.size() < 2) {
        return {};
    }
    return BackgroundTask::start(
        m_workers,
        [words, candidates, library = m_library](const std::stop_token &stop) {
            return SpellGuess::dictionaries(words, candidates, *library, stop);
        },
        std::move(done));
}

bool SpellChecker::isAvailable()
{
    findDictionaries();
    return !m_engine->volumes().empty() && m_engine->isUsable();
}

QStringList SpellChecker::dictionaries()
{
    findDictionaries();
    QStringList names;
    for (const auto &volume : m_engine->volumes()) {
        names << volume->files().name;
    }
    return names;
}

SpellChecker::Answer SpellChecker::check(const QString &word)
{
    if (word.isEmpty() || !isAvailable() || m_userWords->contains(word)) {
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

Result<void> SpellChecker::learn(const QString &word)
{
    return m_userWords->learn(word);
}

void SpellChecker::ignore(const QString &word)
{
    m_userWords->ignore(word);
}
