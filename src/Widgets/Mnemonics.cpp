// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/Mnemonics.h"

#include <QKeySequence>
#include <QMenu>
#include <QSet>

using namespace Qt::StringLiterals;

QStringList withMnemonics(const QStringList &titles, QString &taken)
{
    QStringList marked = titles;
    marked.replaceInStrings(u"&"_s, u"&&"_s);
    QSet<qsizetype> done;
    const auto markAll = [&](const auto &mayStand) {
        for (qsizetype index = 0; index < marked.size(); ++index) {
            QString &title = marked[index];
            for (qsizetype place = 0; place < title.size() && !done.contains(index); ++place) {
                const QChar letter = title[place].toLower();
                if (letter.isLetterOrNumber() && mayStand(title, place) && !taken.contains(letter)) {
                    taken += letter;
                    done.insert(index);
                    title.insert(place, u'&');
                }
            }
        }
    };
    markAll([](const QString &, qsizetype place) { return place == 0; });
    markAll([](const QString &title, qsizetype place) { return place == 0 || title[place - 1].isSpace(); });
    markAll([](const QString &, qsizetype) { return true; });
    return marked;
}

QString withMnemonic(const QString &title, const QMenu &menu)
{
    QString taken;
    for (const QAction *item : menu.actions()) {
        const QKeySequence keys = QKeySequence::mnemonic(item->text());
        if (!keys.isEmpty()) {
            taken += QKeySequence(keys[0].key()).toString().toLower();
        }
    }
    return withMnemonics({title}, taken).first();
}
