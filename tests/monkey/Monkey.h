// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "monkey/Stage.h"

#include <QObject>

class QWindow;

/// Uses the program without sense, the same way for a seed: a step a turn of the event loop, and in the next turn a look whether everything
/// is still as it must be. What went wrong is reported with seed and step, and ends the process.
class Monkey final : public QObject {
public:
    enum class Talk { onFailure, always };

    Monkey(quint32 seed, int steps, Stage::Work work, Talk talk);
    ~Monkey() override;

    /// Ends the event loop when the steps are done.
    void start();
    /// To the standard error output; for signal handlers of a process that ends.
    void printTrace() const;

private:
    void tick();
    void step();
    void check();
    void checkWorkspace(WorkspaceViewController &workspace);
    void raiseCurtain();
    void leaveNestedLoop();
    void note(const QString &what);

    void pressKey();
    void pressShortcut();
    void typeLetters();
    void sendCommand();
    void multiplyCarets();
    void openDialog();
    void leaveDialog();
    void editBehind();
    void composeText();
    void click();
    void drag();
    void turnWheel();
    void dropFiles();
    void resizeWindow();
    void openFiles();
    void changePreference();
    void changeFile();
    void passTime();
    void fillPasteboard();
    void tidyWindows();

    void sendKey(Qt::Key key, Qt::KeyboardModifiers modifiers, const QString &text = {});
    void sendMouse(QEvent::Type type, QPoint place, Qt::MouseButton button, Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers = {});
    /// The popup or the dialog that is open, else a main window, or one beside it; null when there is none that takes input.
    [[nodiscard]] QWindow *target();
    [[nodiscard]] QPoint anyPlace(const QWindow &window);
    /// What `action` is sent with, where it needs something.
    [[nodiscard]] QVariant anyRepresented(const Action &action);
    [[nodiscard]] Qt::KeyboardModifiers anyModifiers();

    quint32 m_seed;
    Random m_random;
    const std::vector<const Action *> m_actions;
    int m_steps;
    Stage::Work m_work;
    Talk m_talk;
    int m_step = 0;
    bool m_isCheckDue = false;
    int m_nestedTurns = 0;
    QPointer<QWindow> m_pressed;
    std::deque<QByteArray> m_trace;
    PlayGround m_ground;
    std::unique_ptr<Stage> m_stage;
};
