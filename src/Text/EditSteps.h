// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextEdits.h"

#include <vector>

/// Changes that follow each other and are to be one. They are put together as they come, when they have about as many edits, so that n
/// changes do not cost n².
class EditSteps final {
public:
    /// Each is added behind those that there are, or before them, as what takes changes back is.
    enum class Order { behind, before };
    explicit EditSteps(Order order) : m_order(order) {}

    void add(TextEdits step);
    [[nodiscard]] bool isEmpty() const { return m_steps.empty(); }
    /// What was added last, perhaps with some that were added right before it.
    [[nodiscard]] const TextEdits &last() const { return m_steps.back(); }
    /// All as one; none are left.
    [[nodiscard]] TextEdits take();
    void clear() { m_steps.clear(); }

private:
    void joinLastTwo();

    Order m_order;
    /// The fewer edits the later.
    std::vector<TextEdits> m_steps;
};
