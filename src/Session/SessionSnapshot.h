// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/FileState.h"
#include "Model/TextOrigin.h"
#include "Text/TextRange.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

class QJsonObject;
class QJsonValue;

/// What is needed to bring a window back as it was, but for the texts: those are in files and drafts.
///
/// Kept as one JSON object. Ids are upper-case UUIDs, numbers are JSON numbers, `savedAt` counts seconds from the beginning of 2001 in
/// UTC; what is none is left out. Keys that are unknown are ignored, every other one has to be there and of its type.
struct SessionSnapshot {
    struct Pane {
        /// The tabs, left to right. Ids without a document are of tabs that do not come back.
        QList<QUuid> documentIDs;
        qint64 selectedIndex = 0;

        friend bool operator==(const Pane &, const Pane &) = default;
    };

    struct Document {
        QUuid id;
        /// Absolute; none for a text without a file.
        std::optional<QString> filePath;
        /// Name of the file in the drafts folder that holds the unsaved text.
        std::optional<QString> draftFilename;
        /// Only when the user chose the language.
        std::optional<QString> languageID;
        quint32 encodingRawValue = 0;
        /// The break itself.
        QString lineEnding;
        /// UTF-16 code units; anything when it comes from a file.
        TextRange selection;
        /// Logical pixels.
        double scrollOffset = 0;
        /// Of the file that the text agrees with, but for what is unsaved. One that cannot be read counts as none.
        std::optional<FileState> fileState = std::nullopt;
        /// Of a text without a file. One that cannot be read counts as none.
        std::optional<TextOrigin> origin = std::nullopt;

        [[nodiscard]] QJsonObject toObject() const;
        /// As in fromJson().
        [[nodiscard]] static std::optional<Document> fromValue(const QJsonValue &value);

        friend bool operator==(const Document &, const Document &) = default;
    };

    /// Each once. First those of the panes; those after them have unsaved text and are in no pane of this window.
    QList<Document> documents;
    QList<Pane> panes;
    qint64 focusedPaneIndex = 0;
    /// Panes beside each other.
    bool splitIsVertical = true;
    /// "{{x, y}, {width, height}}".
    std::optional<QString> windowFrame;
    double savedAt = 0;

    [[nodiscard]] QByteArray toJson() const;
    /// None when `json` is no snapshot, with whatever in it. Nothing in the result is more than of its type: indexes, ranges and names may
    /// be nonsense.
    [[nodiscard]] static std::optional<SessionSnapshot> fromJson(const QByteArray &json);

    friend bool operator==(const SessionSnapshot &, const SessionSnapshot &) = default;
};

/// "{{x, y}, {width, height}}" as it is in a snapshot.
struct WindowFrame {
    // Logical pixels; y counts from the bottom of the screen to the bottom of the window.
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    [[nodiscard]] QString toString() const;
    /// None unless there are four numbers which may belong to a window.
    [[nodiscard]] static std::optional<WindowFrame> fromString(const QString &text);

    friend bool operator==(const WindowFrame &, const WindowFrame &) = default;
};
