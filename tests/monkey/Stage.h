// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "App/AppDelegate.h"
#include "Base/Localization.h"
#include "Editor/SpellingPanel.h"
#include "Spelling/SpellChecker.h"
#include "Surroundings.h"
#include "Text/RandomText.h"

#include <QPointer>

#include <array>

/// Some files that the monkey plays with, and what it writes into them.
class PlayGround {
public:
    explicit PlayGround(Random &random) : m_random(random)
    {
        for (const QStringView name : names) {
            write(m_folder.filePath(name.toString()));
        }
    }

    [[nodiscard]] QString folder() const { return m_folder.path(); }
    /// Most of the time of a file that is there.
    [[nodiscard]] QString anyPath() const
    {
        const auto place = m_random.below(qsizetype(names.size()) + 1);
        return m_folder.filePath(place < qsizetype(names.size()) ? names[size_t(place)].toString() : QStringLiteral("missing/none.txt"));
    }
    [[nodiscard]] QByteArray anyContent() const;
    void write(const QString &path) const;
    /// Writes, replaces, removes, renames or empties a file.
    [[nodiscard]] QString change() const;

private:
    static constexpr auto names =
        std::to_array<QStringView>({u"a.txt", u"b.cpp", u"c.md", u"d.json", u"long line.txt", u"Größe.py", u"Makefile"});

    Random &m_random;
    QTemporaryDir m_folder;
};

/// Answers questions by chance, at once or when told to; a window with an open question takes no input.
class MoodyPresenter final : public AlertPresenter {
public:
    MoodyPresenter(Random &random, const PlayGround &ground) : m_random(random), m_ground(ground) {}

    void present(const Alert &alert, QWidget *window, AlertCompletion completion) override;
    void present(const OpenPanel &panel, QWidget *window, OpenCompletion completion) override;
    void present(const SavePanel &panel, QWidget *window, SaveCompletion completion) override;
    void present(const FontPanel &panel, QWidget *window, FontCompletion completion) override;
    void present(const ChoicePanel &panel, QWidget *window, ChoiceCompletion completion) override;
    void beep() override {}

    [[nodiscard]] bool hasOpenQuestions() const { return !m_open.empty(); }
    void answerOne();

private:
    struct Question {
        QPointer<QWidget> window;
        bool hasWindow = false;
        std::function<void()> answer;
    };
    void ask(QWidget *window, std::function<void()> answer);

    Random &m_random;
    const PlayGround &m_ground;
    std::deque<Question> m_open;
};

/// The program with everything outside of it replaced, from its start to the closing of its last window.
struct Stage : Surroundings {
    /// Whether workers do their work at once, the same way every time, or on threads.
    enum class Work { inlined, onThreads };

    Stage(Random &random, const PlayGround &ground, Work work) : moody(random, ground)
    {
        if (work == Work::onThreads) {
            workers.threads = std::make_unique<DetachedWorkers>();
        }
        preferences.setLanguageResolver(Localization::use);
        preferences.set(Settings::language, AppLanguage::english);
    }

    MoodyPresenter moody;
    SpellChecker speller{workers, {{QStringLiteral(QUILLET_TEST_DATA "/spelling")}, {QStringLiteral("en")}, {}}};
    SpellingPanel spellingPanel{speller};
    AppDelegate application{{{scheduler, notifications, preferences, pasteboard, moody, documents, workers, find, registers, keyboard,
                              &speller, &spellingPanel, &fileMemory, &vimHistory, &vimConfiguration},
                             defaults,
                             desktop,
                             session,
                             keeper,
                             recent,
                             closedTabs}};
};
