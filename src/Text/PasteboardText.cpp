// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/PasteboardText.h"

#include "Base/Pasteboard.h"

using namespace Qt::StringLiterals;

void setText(Pasteboard &pasteboard, const Rope &text)
{
    constexpr qsizetype eagerLimit = 1 << 20;
    if (text.length() <= eagerLimit) {
        pasteboard.setText(text.toString());
    } else {
        pasteboard.setLazyText([text] { return text.toString(); });
    }
}

QString withLineFeeds(QString text)
{
    return text.replace("\r\n"_L1, "\n"_L1).replace(u'\r', u'\n');
}
