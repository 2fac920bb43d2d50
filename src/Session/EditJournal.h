// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Session/SessionSnapshot.h"
#include "Text/Rope.h"
#include "Text/TextEdits.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QUuid>

#include <ctime>
#include <optional>
#include <vector>

/// Edits of one text since it was the same as a draft, a file or nothing, in the order in which they were made: what is typed between two
/// writings of the draft.
///
/// A file of it holds records: the length of the content in bytes (32 bits), its ContentHash (64 bits), the content; numbers are little-
/// endian. The first record's content is the hash of the text that the edits build on (64 bits, see hashOf) and a snapshot with the
/// document's entry. Each other one's is a change of the text: for each edit, ascending, location, length and new length (64 bits each),
/// all of the text before the change, and the new text as UTF-16. A file may be cut off anywhere; what is whole counts.
struct EditJournal {
    quint64 baseHash = 0;
    SessionSnapshot::Document entry;
    std::vector<TextEdits> changes;

    /// ContentHash of the text as the UTF-8 that its draft has, which is U+FFFD for surrogates without their other half. O(n), any thread,
    /// of a rope that does not change meanwhile.
    [[nodiscard]] static quint64 hashOf(const Rope &text);
    /// The first record, and one of a change.
    [[nodiscard]] static QByteArray beginning(quint64 baseHash, const SessionSnapshot::Document &entry);
    [[nodiscard]] static QByteArray record(const TextEdits &change);
    /// None when there is not even a whole beginning. The edits of a change are ascending and apart, but may be of no text.
    [[nodiscard]] static std::optional<EditJournal> parse(QByteArrayView bytes);
    /// Whether the beginning is not there to its end. Else what is no journal has been damaged.
    [[nodiscard]] static bool isCutOff(QByteArrayView bytes);

    /// "1B4E28BA-2FA1-11D2-883F-0016D3CCA427.000012.journal": a document has several files, one after the other.
    [[nodiscard]] static QString nameFor(const QUuid &document, quint64 number);
    struct Name {
        QUuid document;
        quint64 number = 0;
    };
    [[nodiscard]] static std::optional<Name> parseName(const QString &name);
};

/// The journals of one document that earlier programs left, in their order.
struct LeftEdits {
    std::vector<EditJournal> journals;
    quint64 lastNumber = 0;
    /// When something was typed last.
    timespec modified = {};
};

/// What the journals of one document, in their order, make of `base`: they are followed from the last one that builds on it, as long as
/// each builds on the text that came before it. None when none does.
[[nodiscard]] std::optional<Rope> replayed(const std::vector<EditJournal> &journals, Rope base);

/// Whether `text` has all that the journals of one document brought, each at its place: then nothing is missing, whatever they build on.
[[nodiscard]] bool areContained(const std::vector<EditJournal> &journals, const Rope &text);

/// What each of the journals brought into a text that is not known, without what it took away again; what stood apart is on lines of its
/// own. Empty when they only took away.
[[nodiscard]] QString insertionsOf(const std::vector<EditJournal> &journals);
