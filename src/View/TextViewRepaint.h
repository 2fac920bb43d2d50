// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextRange.h"

#include <vector>

class TextView;
struct TextChange;

/// Has the rows of a text view painted anew that look different after something, and no others.
class TextViewRepaint final {
public:
    explicit TextViewRepaint(TextView &view) : m_view(view) {}

    /// From the first row that is seen to the last, whole lines where they do not wrap.
    [[nodiscard]] TextRange seen() const;
    /// All that `range` touches.
    void rows(TextRange range);
    /// The text was changed, and the layout knows of it.
    void change(const TextChange &change);
    /// The view has another selection now, one as it had before.
    void selection(TextSelection before);
    /// What is seen of these, for instance because they have other styles now, and the layout knows of it.
    void ranges(const std::vector<TextRange> &ranges);

private:
    TextView &m_view;
};
