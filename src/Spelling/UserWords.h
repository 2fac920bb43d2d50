// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Result.h"

#include <QObject>
#include <QSet>
#include <QString>

/// The words that the user taught the program, or has it take for correct as long as it runs. Main thread only.
class UserWords final : public QObject {
    Q_OBJECT

public:
    /// `file` has the learned words, one a line in UTF-8; lines that hold no word are left as they are. Empty for none.
    explicit UserWords(QString file, QObject *parent = nullptr);

    /// Also at the start of a sentence.
    [[nodiscard]] bool contains(const QString &word);
    /// The word is correct from now on, and when the program runs again. When that could not be written, it is so for this time only.
    [[nodiscard]] Result<void> learn(const QString &word);
    /// The word is correct as long as the program runs.
    void ignore(const QString &word);

signals:
    void changed();

private:
    void read();

    QString m_file;
    QSet<QString> m_words;
    bool m_isRead = false;
};
