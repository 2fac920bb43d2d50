// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Commands/ActionKeys.h"

#include "Base/Translation.h"
#include "Commands/KeyboardChords.h"

#include <algorithm>

using namespace Qt::StringLiterals;

QList<QKeySequence> keySequences(const Action &action)
{
    if (!*action.keys) {
        return {}; // an empty text would be read as one empty sequence
    }
    QList<QKeySequence> keys = QKeySequence::listFromString(QString::fromUtf8(action.keys));
    std::stable_partition(keys.begin(), keys.end(), KeyboardChords::has);
    return keys;
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
