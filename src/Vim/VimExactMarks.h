// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimExactPart.h"
#include "Vim/VimFileMarks.h"
#include "Vim/VimMarks.h"

/// The user's marks. Those of other texts are places of theirs.
class VimEngine::Marking final : public ExactPart, private VimFileMarks::Holder {
public:
    using ExactPart::ExactPart;
    ~Marking();
    Q_DISABLE_COPY_MOVE(Marking)

    /// From now on the text's other views have the same.
    void join();
    void set(char16_t name, qsizetype place);
    void remove(char16_t name);
    /// Has those of A–Z that are in this text, whoever set them, and no others.
    void update();
    [[nodiscard]] std::vector<VimFileMarks::Mark> elsewhere() const;
    /// To a mark in another text; false when there is no such mark.
    bool goElsewhere(char16_t name, bool isExact);

private:
    [[nodiscard]] std::optional<VimFileMarks::Place> heldMark(char16_t mark) const override;
    [[nodiscard]] QString heldText() const override;
    [[nodiscard]] VimMarks &heldMarks() override;
    void share(char16_t name);
    [[nodiscard]] VimFileMarks *shared() const;
};
