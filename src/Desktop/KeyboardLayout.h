// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QObject>
#include <QSet>

class QKeyEvent;

/// Which chords can be typed on the keyboard in use, without AltGr. The toolkit does not tell when the user changes to another layout, so
/// it is looked at again whenever that is likely: when a window becomes active, a modifier was released, or a key comes that writes nothing
/// or something else than before. Main thread only, which is the application object's.
class KeyboardLayout final : public QObject {
    Q_OBJECT

public:
    explicit KeyboardLayout(QObject *parent = nullptr);

    /// Control with or without Alt and Shift, and a key that writes something; combined as QKeySequence does. None where the platform does
    /// not tell.
    [[nodiscard]] const QSet<int> &chords() const { return m_chords; }

signals:
    /// The chords are others.
    void changed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// As long as the layout is the same, only a few keys are asked for.
    void look();
    [[nodiscard]] bool mayTellOfAnother(const QKeyEvent &event);

    /// Of a few keys in which layouts differ.
    QList<int> m_signature;
    QSet<int> m_chords;
    /// What a key wrote last without a modifier, as the platform numbers both.
    QHash<quint32, quint32> m_written;
};
