// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/FinishedText.h"

#include <utility>

FinishedText FinishedText::of(DocumentFile::Snapshot snapshot, SaveOptions options, Open open, FileCalls &files)
{
    EditorConfig config = EditorConfig::of(snapshot.path, files);
    if (open.lineEnding && config.lineEnding) {
        snapshot.lineEnding = *config.lineEnding;
        if (snapshot.form) {
            snapshot.form->lineEndings = LineEndings::uniform(snapshot.lineEnding, snapshot.form->lineEndings.count());
        }
    }
    if (open.encoding && config.charset) {
        snapshot.encoding = config.charset->encoding;
    }
    const bool isMarked = config.charset && config.charset->hasByteOrderMark && config.charset->encoding == snapshot.encoding;
    if (isMarked && (open.encoding || open.hasByteOrderMark)) {
        snapshot.form = snapshot.form.value_or(FileForm());
        snapshot.form->hasByteOrderMark = true;
    }
    if (config.trimsTrailingWhitespace) {
        options.trimmed = *config.trimsTrailingWhitespace ? SaveOptions::Trimmed::everyLine : SaveOptions::Trimmed::nothing;
    }
    // Where someone types a blank may be the last word's first neighbour.
    if (options.trimmed == SaveOptions::Trimmed::everyLine && snapshot.manner.occasion == DocumentFile::Occasion::byItself) {
        options.trimmed = SaveOptions::Trimmed::nothing;
    }
    options.ensuresTrailingNewline = config.endsWithNewline.value_or(options.ensuresTrailingNewline);
    TextEdits edits = saveTransformation(snapshot.text, options);
    if (!edits.isEmpty()) {
        const Rope before = std::exchange(snapshot.text, edits.applied(snapshot.text));
        if (snapshot.form) {
            snapshot.form->lineEndings.apply({edits, before, snapshot.text}, snapshot.lineEnding);
        }
    }
    return {std::move(snapshot), std::move(edits), std::move(config)};
}
