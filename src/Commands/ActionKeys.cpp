// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Commands/ActionKeys.h"

using namespace Qt::StringLiterals;

QList<QKeySequence> keySequences(const Action &action)
{
    // An empty text would be read as one empty sequence.
    return *action.keys ? QKeySequence::listFromString(QString::fromUtf8(action.keys)) : QList<QKeySequence>();
}

QString keyText(const Action &action)
{
    const QList<QKeySequence> keys = keySequences(action);
    return keys.isEmpty() ? QString() : keys.first().toString(QKeySequence::NativeText);
}

QString titleWithKey(const QString &title, const Action &action)
{
    const QString key = keyText(action);
    return key.isEmpty() ? title : u"%1 (%2)"_s.arg(title, key);
}
