// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/KeyboardLayout.h"

#include <QGuiApplication>
#include <QKeyEvent>

#include <private/qguiapplication_p.h>
#include <qpa/qplatformintegration.h>

#include <array>
#include <utility>

namespace {

constexpr std::array modifiersOfChords = {
    Qt::KeyboardModifiers(Qt::ControlModifier),
    Qt::ControlModifier | Qt::ShiftModifier,
    Qt::ControlModifier | Qt::AltModifier,
    Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier,
};

/// The keys that write something, as X numbers them: four rows, and the one beside the left Shift.
constexpr auto rowsOfKeys = std::to_array<std::pair<quint32, quint32>>({{10, 21}, {24, 35}, {38, 49}, {51, 61}, {94, 94}});
/// Q, Y, [, ;, \ and / of a US keyboard.
constexpr std::array<quint32, 6> tellingKeys = {24, 29, 34, 47, 51, 61};

/// The toolkit's public functions say what a key wrote, not what it would.
QList<int> possibleKeys(quint32 scanCode, Qt::KeyboardModifiers modifiers)
{
    const QKeyEvent event(QEvent::KeyPress, 0, modifiers, scanCode, 0, 0);
    const QPlatformIntegration *platform = QGuiApplicationPrivate::platformIntegration();
    return platform ? platform->possibleKeys(&event) : QList<int>();
}

bool isModifier(int key)
{
    return key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock;
}

} // namespace

KeyboardLayout::KeyboardLayout(QObject *parent) : QObject(parent)
{
    QCoreApplication::instance()->installEventFilter(this);
    // Rather than the event of a window that becomes active, which all of its widgets get.
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &KeyboardLayout::look);
    look();
}

bool KeyboardLayout::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::KeyRelease:
        if (isModifier(static_cast<QKeyEvent *>(event)->key())) {
            look();
        }
        break;
    // Before the shortcuts of the key.
    case QEvent::ShortcutOverride:
        if (mayTellOfAnother(*static_cast<QKeyEvent *>(event))) {
            look();
        }
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

bool KeyboardLayout::mayTellOfAnother(const QKeyEvent &event)
{
    if (event.modifiers() != Qt::NoModifier || event.text().isEmpty()) {
        return event.text().isEmpty();
    }
    quint32 &written = m_written[event.nativeScanCode()];
    return std::exchange(written, event.nativeVirtualKey()) != event.nativeVirtualKey();
}

void KeyboardLayout::look()
{
    QList<int> signature;
    for (const quint32 key : tellingKeys) {
        signature << possibleKeys(key, Qt::ControlModifier | Qt::ShiftModifier);
    }
    if (signature == m_signature) {
        return;
    }
    m_signature = signature;
    QSet<int> chords;
    for (const auto &[first, last] : rowsOfKeys) {
        for (quint32 key = first; key <= last; ++key) {
            for (const Qt::KeyboardModifiers modifiers : modifiersOfChords) {
                for (const int chord : possibleKeys(key, modifiers)) {
                    chords.insert(chord);
                }
            }
        }
    }
    if (chords != m_chords) {
        m_chords = chords;
        emit changed();
    }
}
