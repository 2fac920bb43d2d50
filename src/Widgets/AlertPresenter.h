// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <deque>
#include <functional>
#include <optional>
#include <vector>

class QWidget;

enum class AlertStyle { informational, warning, critical };

enum class AlertButtonRole {
    normal,
    /// Escape and the closing of the alert choose it.
    cancel,
    /// Something gets lost; never the default button.
    destructive,
};

struct AlertButton {
    QString title = {};
    AlertButtonRole role = AlertButtonRole::normal;
};

/// A question or a message for the user. All texts are in the language of the interface already.
struct Alert {
    AlertStyle style = AlertStyle::warning;
    /// What happened or what is asked, in one sentence.
    QString messageText = {};
    /// What follows from it; may be empty.
    QString informativeText = {};
    /// In the order in which they answer 1000, 1001, 1002 …; the first is the default button. None stands for a single "OK".
    QList<AlertButton> buttons = {};

    /// What the alert lists, such as the keys of commands; such a one has no other text than its message, and one button.
    struct Group {
        struct Line {
            QString text = {};
            /// At the right.
            QString detail = {};
        };
        QString title = {};
        std::vector<Line> lines = {};
    };
    std::vector<Group> groups = {};

    /// A line for the user to fill in; it has the focus first.
    struct TextField {
        QString placeholder = {};
        QString text = {};
    };
    std::optional<TextField> textField = {};

    /// The answer of an alert that is closed without a choice: that of its cancel button, else of its last one.
    [[nodiscard]] int cancelAnswer() const;

    /// A critical alert that says what went wrong and, unless empty, what can be done about it.
    [[nodiscard]] static Alert forError(const QString &description, const QString &recoverySuggestion = {});
};

struct AlertReply {
    static constexpr int firstButton = 1000;
    static constexpr int secondButton = 1001;
    static constexpr int thirdButton = 1002;

    /// 1000 + the place of the button that was chosen.
    int button = firstButton;
    /// What the text field holds, if there is one.
    QString text = {};
};

struct OpenPanel {
    enum class Choice { file, files, folder };

    Choice choice = Choice::files;
    /// Empty for the desktop's own words.
    QString title = {};
    /// Absolute path; empty for the desktop's own choice.
    QString startFolder = {};
    /// Of the button that takes the choice; empty for the desktop's own word.
    QString prompt = {};
};

struct SavePanel {
    QString title = {};
    QString startFolder = {};
    /// File name without a folder.
    QString suggestedName = {};
};

/// The kind and size of letters.
struct FontChoice {
    QString family = {};
    double pointSize = 0;
};

struct FontPanel {
    QString title = {};
    /// What is chosen at first.
    FontChoice current = {};
    /// Points, both included.
    double leastSize = 1;
    double greatestSize = 1000;
};

/// One of several, in a table of two columns.
struct ChoicePanel {
    struct Choice {
        QString title = {};
        /// May have several lines.
        QString detail = {};
        bool isEnabled = true;
    };
    QString title = {};
    QString message = {};
    QString choiceTitle = {};
    QString detailTitle = {};
    /// Of the button that takes the choice.
    QString prompt = {};
    std::vector<Choice> choices = {};
    /// The place of the one that is chosen at first.
    int current = 0;
};

/// Asks the user. Everything belongs to a window that it blocks while it is open (null: none, then it blocks nothing), and everything
/// answers through a completion, never by waiting. Completions are called at most once, perhaps before the call returns, and not at all
/// when the window is destroyed first. Main thread only.
class AlertPresenter {
public:
    using AlertCompletion = std::function<void(const AlertReply &reply)>;
    /// Absolute paths; none when the panel was cancelled.
    using OpenCompletion = std::function<void(const QStringList &paths)>;
    /// Absolute path; replacing a file that exists has been confirmed already. None when the panel was cancelled.
    using SaveCompletion = std::function<void(const std::optional<QString> &path)>;
    /// None when the panel was cancelled.
    using FontCompletion = std::function<void(const std::optional<FontChoice> &font)>;

    /// The place of the one chosen; none when the panel was cancelled.
    using ChoiceCompletion = std::function<void(std::optional<int> choice)>;

    AlertPresenter() = default;
    AlertPresenter(const AlertPresenter &) = delete;
    AlertPresenter &operator=(const AlertPresenter &) = delete;
    virtual ~AlertPresenter() = default;

    /// Alerts of one window come one after the other. `completion` may be empty.
    virtual void present(const Alert &alert, QWidget *window, AlertCompletion completion) = 0;
    virtual void present(const OpenPanel &panel, QWidget *window, OpenCompletion completion) = 0;
    virtual void present(const SavePanel &panel, QWidget *window, SaveCompletion completion) = 0;
    virtual void present(const FontPanel &panel, QWidget *window, FontCompletion completion) = 0;
    virtual void present(const ChoicePanel &panel, QWidget *window, ChoiceCompletion completion) = 0;
    /// The sound for "that cannot be done now".
    virtual void beep() = 0;
};

/// Answers without a person and remembers what it was asked. An alert for which no answer lies ready is answered with its cancel
/// button (its only button when there is one; the last when none cancels), a panel is cancelled.
class ScriptedAlertPresenter final : public AlertPresenter {
public:
    using AlertPresenter::present;
    void present(const Alert &alert, QWidget *window, AlertCompletion completion) override;
    void present(const OpenPanel &panel, QWidget *window, OpenCompletion completion) override;
    void present(const SavePanel &panel, QWidget *window, SaveCompletion completion) override;
    void present(const FontPanel &panel, QWidget *window, FontCompletion completion) override;
    void present(const ChoicePanel &panel, QWidget *window, ChoiceCompletion completion) override;
    void beep() override { ++m_beepCount; }

    /// Answers lie ready in the order in which they are given, for each kind apart. `button` is 1000, 1001, …
    void answer(int button, const QString &text = {}) { m_replies.push_back({.button = button, .text = text}); }
    void answerOpen(const QStringList &paths) { m_openPaths.push_back(paths); }
    void answerSave(const QString &path) { m_savePaths.push_back(path); }
    void answerFont(const FontChoice &font) { m_fonts.push_back(font); }
    /// By the title of the choice.
    void answerChoice(const QString &title) { m_choices.push_back(title); }

    /// From now on alerts stay open, until answerHeld() answers the oldest as one that comes then.
    void hold() { m_holds = true; }
    void answerHeld();

    [[nodiscard]] const std::vector<Alert> &alerts() const { return m_alerts; }
    [[nodiscard]] const std::vector<OpenPanel> &openPanels() const { return m_openPanels; }
    [[nodiscard]] const std::vector<SavePanel> &savePanels() const { return m_savePanels; }
    [[nodiscard]] const std::vector<ChoicePanel> &choicePanels() const { return m_choicePanels; }
    [[nodiscard]] int beepCount() const { return m_beepCount; }

private:
    void reply(const Alert &alert, const AlertCompletion &completion);

    struct HeldAlert {
        Alert alert;
        AlertCompletion completion;
    };
    std::deque<HeldAlert> m_held;
    bool m_holds = false;
    std::vector<Alert> m_alerts;
    std::vector<OpenPanel> m_openPanels;
    std::vector<SavePanel> m_savePanels;
    std::deque<AlertReply> m_replies;
    std::deque<QStringList> m_openPaths;
    std::deque<QString> m_savePaths;
    std::deque<FontChoice> m_fonts;
    std::vector<ChoicePanel> m_choicePanels;
    std::deque<QString> m_choices;
    int m_beepCount = 0;
};
