// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "View/Viewport.h"
#include "Vim/VimSubstituteJob.h"

#include <QObject>
#include <QRect>

#include <memory>
#include <optional>
#include <vector>

class SubstitutionPanel;
class TextView;
class VimEngine;

/// What a `:s` would do, while it is typed in exact modal editing: its hits are marked where they are seen, scrolled to if none is and the
/// text is short, and once there is a replacement a panel shows what their lines would become. What was seen before comes back at its end.
/// Main thread only.
class SubstitutionPreview final : public QObject {
    Q_OBJECT

public:
    /// `view` must outlive it.
    explicit SubstitutionPreview(TextView &view);
    ~SubstitutionPreview() override;
    Q_DISABLE_COPY_MOVE(SubstitutionPreview)

    /// To be called when the engine's state is another one.
    void follow(VimEngine &engine);

private:
    void revealFirstHit();
    void show();
    void end();
    [[nodiscard]] QRect rowOf(const VimSubstituteHit &hit) const;
    [[nodiscard]] std::vector<TextRange> hitsIn(TextRange seen) const;

    TextView &m_view;
    /// While one is typed.
    std::optional<VimSubstituteJob> m_job;
    bool m_hasReplacement = false;
    QString m_line;
    Viewport::Place m_place;
    /// Those that are seen.
    std::vector<VimSubstituteHit> m_hits;
    std::unique_ptr<SubstitutionPanel> m_panel;
};
