// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>
#include <vector>

/// The clipboard, and the primary selection where the desktop has one, for text. Main thread only.
///
/// A provider makes a text only when somebody asks for it, as often as somebody asks, until the content is replaced: perhaps never,
/// perhaps long after its document was closed, perhaps while the program ends. It must own all that it needs (a snapshot and a range)
/// and must not call the pasteboard.
class Pasteboard {
public:
    using Provider = std::function<QString()>;

    Pasteboard() = default;
    Pasteboard(const Pasteboard &) = delete;
    Pasteboard &operator=(const Pasteboard &) = delete;
    virtual ~Pasteboard() = default;

    /// The clipboard's text, line breaks as its owner wrote them; empty when it holds no text. Waits for the program that owns the
    /// content, a few seconds if that hangs.
    [[nodiscard]] virtual QString text() const = 0;
    /// Cheap enough for every opening of a menu: the owner is asked once for each content.
    [[nodiscard]] virtual bool hasText() const = 0;
    virtual void setText(const QString &text) = 0;
    virtual void setLazyText(Provider provider) = 0;
    /// Moves whenever the clipboard's content changes, also by other programs, and by nothing else. Only compare it with itself.
    [[nodiscard]] virtual int changeCount() const = 0;

    /// What the text that was just set is made of: pieces of so many units, with one unit between. It is forgotten with the text.
    void setPieces(std::vector<qsizetype> lengths)
    {
        m_pieces = std::move(lengths);
        m_piecesAt = changeCount();
    }
    [[nodiscard]] std::vector<qsizetype> pieces() const { return m_piecesAt == changeCount() ? m_pieces : std::vector<qsizetype>(); }

    /// The text that was just set is a whole line, and wants to be pasted as one. It is forgotten with the text.
    void markAsLine() { m_lineAt = changeCount(); }
    [[nodiscard]] bool isLine() const { return m_lineAt == changeCount(); }

    /// False where the desktop has no primary selection; the calls below then do nothing and give nothing.
    [[nodiscard]] virtual bool supportsPrimary() const = 0;
    virtual void setPrimary(Provider provider) = 0;
    [[nodiscard]] virtual QString primaryText() const = 0;
    /// True while the primary selection is the one that this program set.
    [[nodiscard]] virtual bool ownsPrimary() const = 0;

private:
    std::vector<qsizetype> m_pieces;
    int m_piecesAt = -1;
    int m_lineAt = -1;
};

/// A pasteboard of its own that no other program sees.
class MemoryPasteboard final : public Pasteboard {
public:
    enum class Primary { supported, missing };

    explicit MemoryPasteboard(Primary primary = Primary::supported) : m_primaryKind(primary) {}

    [[nodiscard]] QString text() const override;
    [[nodiscard]] bool hasText() const override { return bool(m_text); }
    void setText(const QString &text) override;
    void setLazyText(Provider provider) override;
    [[nodiscard]] int changeCount() const override { return m_changeCount; }

    [[nodiscard]] bool supportsPrimary() const override { return m_primaryKind == Primary::supported; }
    void setPrimary(Provider provider) override;
    [[nodiscard]] QString primaryText() const override;
    [[nodiscard]] bool ownsPrimary() const override { return m_ownsPrimary; }

    /// What another program does: puts its text on the clipboard or makes it the primary selection.
    void setTextFromElsewhere(const QString &text) { setText(text); }
    void setPrimaryFromElsewhere(const QString &text);
    /// Nothing that is text lies on the clipboard any more.
    void clear();

private:
    Provider m_text;
    Provider m_primary;
    Primary m_primaryKind;
    int m_changeCount = 0;
    bool m_ownsPrimary = false;
};
