// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/Mnemonics.h"

#include <QKeySequence>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace {

/// Finds each title the place of its letter.
class Marking {
public:
    Marking(const QStringList &titles, QString &taken) : m_titles(titles), m_taken(taken), m_places(titles.size(), none) {}

    void markAll(const auto &mayStand)
    {
        for (qsizetype index = 0; index < m_titles.size(); ++index) {
            if (m_places[index] == none) {
                mark(index, mayStand);
            }
        }
    }
    /// Where all letters of a title are taken, one that has another to go to gives its own up.
    void exchange(const auto &mayStand)
    {
        for (qsizetype index = 0; index < m_titles.size(); ++index) {
            for (qsizetype other = 0; other < m_titles.size() && m_places[index] == none; ++other) {
                const qsizetype place = m_places[other];
                const qsizetype wanted = place == none ? none : m_titles[index].indexOf(m_titles[other][place], 0, Qt::CaseInsensitive);
                if (wanted != none && mark(other, mayStand)) {
                    m_places[index] = wanted;
                }
            }
        }
    }
    [[nodiscard]] QStringList marked() const
    {
        QStringList marked = m_titles;
        for (qsizetype index = 0; index < marked.size(); ++index) {
            if (m_places[index] != none) {
                marked[index].insert(m_places[index], u'&');
            }
        }
        return marked;
    }

private:
    static constexpr qsizetype none = -1;

    bool mark(qsizetype index, const auto &mayStand)
    {
        const QString &title = m_titles[index];
        for (qsizetype place = 0; place < title.size(); ++place) {
            const QChar letter = title[place].toLower();
            if (letter.isLetterOrNumber() && mayStand(title, place) && !m_taken.contains(letter)) {
                m_taken += letter;
                m_places[index] = place;
                return true;
            }
        }
        return false;
    }

    const QStringList &m_titles;
    QString &m_taken;
    QList<qsizetype> m_places;
};

} // namespace

QStringList withMnemonics(const QStringList &titles, QString &taken)
{
    QStringList escaped = titles;
    escaped.replaceInStrings(u"&"_s, u"&&"_s);
    const auto anywhere = [](const QString &, qsizetype) { return true; };
    Marking marking(escaped, taken);
    marking.markAll([](const QString &, qsizetype place) { return place == 0; });
    marking.markAll([](const QString &title, qsizetype place) { return place == 0 || title[place - 1].isSpace(); });
    marking.markAll(anywhere);
    marking.exchange(anywhere);
    return marking.marked();
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
