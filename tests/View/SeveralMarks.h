// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "View/ViewFixture.h"

/// Text with a `|` for every caret; `^` before it is the other end of what it selects. The first caret is the primary.
inline void setMarked(TextView &view, const QString &marked)
{
    QString text;
    std::vector<CaretSelection> all;
    std::optional<qsizetype> anchor;
    for (const QChar unit : marked) {
        if (unit == u'^') {
            anchor = text.length();
        } else if (unit == u'|') {
            all.push_back(CaretSelection::of({std::exchange(anchor, std::nullopt).value_or(text.length()), text.length()}));
        } else {
            text += unit;
        }
    }
    const UndoManager::Pause pause(view.undoManager());
    view.storage().apply({{0, view.storage().length()}, text});
    view.setSelection(Selections::merged(std::move(all), 0));
}

[[nodiscard]] inline QString marked(QString text, const Selections &selections)
{
    for (size_t i = selections.count(); i-- > 0;) {
        const CaretSelection &one = selections[i];
        const bool isForward = one.anchor <= one.caret.offset;
        text.insert(one.range().end(), isForward ? u'|' : u'^');
        if (!one.isEmpty()) {
            text.insert(one.range().location, isForward ? u'^' : u'|');
        }
    }
    return text;
}

[[nodiscard]] inline QString marked(const TextView &view)
{
    return marked(view.storage().string(), view.selections());
}
