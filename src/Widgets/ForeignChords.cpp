// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/ForeignChords.h"

#include "Desktop/ForeignKeyboard.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMenuBar>
#include <QShortcut>
#include <QWindow>

#include <algorithm>

namespace {

constexpr auto chordModifiers = Qt::ControlModifier | Qt::AltModifier;

struct Chord {
    Qt::Key key;
    Qt::Key keyWithoutShift;
    Qt::KeyboardModifiers modifiers;

    /// As shortcuts may be written: "Ctrl+Shift+\" is pressed as "Ctrl+|" is.
    [[nodiscard]] QList<QKeySequence> sequences() const
    {
        QList<QKeySequence> sequences{QKeySequence(modifiers | key)};
        if (modifiers.testFlag(Qt::ShiftModifier) && key != keyWithoutShift) {
            sequences << QKeySequence((modifiers & ~Qt::ShiftModifier) | key) << QKeySequence(modifiers | keyWithoutShift);
        }
        return sequences;
    }
};

Qt::Key keyOf(char16_t sign)
{
    return Qt::Key(QChar(sign).toUpper().unicode());
}

bool isInForce(Qt::ShortcutContext context)
{
    return context == Qt::WindowShortcut || context == Qt::ApplicationShortcut;
}

bool runMnemonic(const QWidget &window, const QKeySequence &keys)
{
    for (QMenuBar *bar : window.findChildren<QMenuBar *>()) {
        for (QAction *menu : bar->actions()) {
            if (QKeySequence::mnemonic(menu->text()) == keys) {
                bar->setActiveAction(menu);
                return true;
            }
        }
    }
    for (QAbstractButton *button : window.findChildren<QAbstractButton *>()) {
        if (button->isVisible() && button->isEnabled() && button->shortcut() == keys) {
            button->animateClick();
            return true;
        }
    }
    return false;
}

bool runShortcut(const QWidget &window, const QKeySequence &keys)
{
    for (QAction *action : window.findChildren<QAction *>()) {
        if (action->isEnabled() && isInForce(action->shortcutContext()) && action->shortcuts().contains(keys)) {
            action->trigger();
            return true;
        }
    }
    for (QShortcut *shortcut : window.findChildren<QShortcut *>()) {
        if (shortcut->isEnabled() && isInForce(shortcut->context()) && shortcut->key() == keys) {
            emit shortcut->activated();
            return true;
        }
    }
    return runMnemonic(window, keys);
}

bool runShortcut(const QWidget &window, const Chord &chord)
{
    return std::ranges::any_of(chord.sequences(), [&window](const QKeySequence &keys) { return runShortcut(window, keys); });
}

bool send(QWidget &target, QEvent::Type type, const QKeyEvent &pressed, const Chord &chord)
{
    QKeyEvent event(type, chord.key, chord.modifiers, pressed.nativeScanCode(), pressed.nativeVirtualKey(), pressed.nativeModifiers(), {},
                    pressed.isAutoRepeat());
    event.setAccepted(type == QEvent::KeyPress);
    QApplication::sendEvent(&target, &event);
    return event.isAccepted();
}

/// As the toolkit does it: what has the focus may claim the chord, then it is a shortcut's, then whoever takes it.
bool press(const QKeyEvent &pressed, const Chord &chord)
{
    QWidget *window = QApplication::activeWindow();
    if (!window) {
        return false;
    }
    QWidget *focus = window->focusWidget() ? window->focusWidget() : window;
    if (!send(*focus, QEvent::ShortcutOverride, pressed, chord) && runShortcut(*window, chord)) {
        return true;
    }
    if (send(*focus, QEvent::KeyPress, pressed, chord)) {
        return true;
    }
    const auto written = Qt::Key(pressed.key());
    return runShortcut(*window, {.key = written, .keyWithoutShift = written, .modifiers = pressed.modifiers() & ~Qt::ShiftModifier});
}

/// Whether the toolkit has found the letter in another of the user's layouts.
bool hasLatinLetter(const QKeyEvent &event)
{
    return event.key() >= Qt::Key_A && event.key() <= Qt::Key_Z;
}

/// None where the toolkit comes to the same by itself.
std::optional<Chord> chordMeantBy(const QKeyEvent &event, const ForeignKeyboard &keyboard)
{
    if (event.modifiers().testFlag(Qt::GroupSwitchModifier)) {
        const auto sign = Qt::Key(event.key());
        const bool isSign = sign > Qt::Key_Space && sign <= Qt::Key_AsciiTilde;
        return isSign ? std::optional(Chord{sign, sign, event.modifiers() & ~Qt::GroupSwitchModifier}) : std::nullopt;
    }
    const auto signs = ForeignKeyboard::signsInPlaceOf(event);
    if (!signs || !keyboard.wrote(event) || hasLatinLetter(event)) {
        return {};
    }
    const bool isShifted = event.modifiers().testFlag(Qt::ShiftModifier);
    const Chord chord{keyOf(isShifted ? signs->shifted : signs->plain), keyOf(signs->plain), event.modifiers()};
    return chord.key == event.key() && !isShifted ? std::nullopt : std::optional(chord);
}

} // namespace

ForeignChords::ForeignChords(ForeignKeyboard &keyboard, QObject *parent) : QObject(parent), m_keyboard(keyboard)
{
    qApp->installEventFilter(this);
}

bool ForeignChords::eventFilter(QObject *watched, QEvent *event)
{
    const bool isClaim = event->type() == QEvent::ShortcutOverride;
    if ((!isClaim && event->type() != QEvent::KeyPress) || !watched->isWindowType()) {
        return false;
    }
    const auto &key = static_cast<const QKeyEvent &>(*event);
    m_keyboard.note(key);
    const auto chord = key.modifiers() & chordModifiers ? chordMeantBy(key, m_keyboard) : std::nullopt;
    if (!chord || QApplication::activePopupWidget()) {
        return false;
    }
    if (isClaim) {
        // Else the toolkit would look for a shortcut of what is written on the key.
        event->accept();
        return true;
    }
    return press(key, *chord);
}
