// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <atomic>
#include <memory>
#include <stop_token>

/// Whether lines that differ in white space only, be it within a line, are the same.
enum class Whitespace { counts, ignored };

/// How others take part in a comparison that may take long. Any thread may stop it or read how far it is.
struct DiffControl {
    std::stop_token stop = {};
    /// Grows from 0 to twice the lengths of both texts together, in UTF-16 units, while they are read; null when nobody asks. The
    /// search for the fewest edits comes after that and is short but for texts of very many equal lines.
    std::shared_ptr<std::atomic<qsizetype>> processed = nullptr;

    /// For the comparison itself: reports progress, false when it is to stop.
    [[nodiscard]] bool advance(qsizetype units) const
    {
        if (processed) {
            processed->fetch_add(units, std::memory_order_relaxed);
        }
        return !stop.stop_requested();
    }
};
