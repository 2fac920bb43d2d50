// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Model/DocumentConventions.h"

#include <QMenu>

#include <array>

class QActionGroup;

/// What is offered for indenting, for all texts and for one.
inline constexpr auto indentationChoices = std::to_array<Indentation>({
    {2, Indentation::Unit::spaces},
    {4, Indentation::Unit::spaces},
    {8, Indentation::Unit::spaces},
    {2, Indentation::Unit::tab},
    {4, Indentation::Unit::tab},
    {8, Indentation::Unit::tab},
});
[[nodiscard]] QString titleOf(Indentation indentation);
/// Who says so, to be read by itself. `language` is the text's.
[[nodiscard]] QString titleOf(DocumentConventions::Source source, const Language &language);

/// What one text is indented with, whatever holds for others, and how its lines are rewritten for that. Choosing changes nothing by itself.
class TextIndentationMenu final : public QMenu {
    Q_OBJECT

public:
    explicit TextIndentationMenu(QWidget *parent);

    void retranslate();
    /// None: it is found out.
    void setChosen(std::optional<Indentation> indentation);

signals:
    void chosen(std::optional<Indentation> indentation);
    void conversionChosen(Indentation::Unit unit);

private:
    std::optional<Indentation> m_chosen;
};
