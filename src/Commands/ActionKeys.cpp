// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Commands/ActionKeys.h"

#include "Base/Translation.h"

using namespace Qt::StringLiterals;

QList<QKeySequence> keySequences(const Action &action)
{
    // An empty text would be read as one empty sequence.
    return *action.keys ? QKeySequence::listFromString(QString::fromUtf8(action.keys)) : QList<QKeySequence>();
}

QString titleWithKey(const QString &title, const QKeySequence &key)
{
    return key.isEmpty() ? title : u"%1 (%2)"_s.arg(title, key.toString(QKeySequence::NativeText));
}

QString toolTipOf(const Action &action, const QString &title)
{
    const QString tip = titleWithKey(title, keySequences(action).value(0));
    return action.help ? tip + u'\n' + localized(action.help) : tip;
}
