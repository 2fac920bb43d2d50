// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Commands/Responder.h"
#include "Editor/LongWork.h"
#include "Text/CaretEditing.h"
#include "Text/LineEditing.h"

#include <QObject>

class EditorTextView;

/// The commands of a text view that move, arrange and convert lines and letters. What reads much is done on a worker, while the view can be
/// used: Escape stops it, and when the text has changed meanwhile it is done once more, for what is selected then. Main thread only. The
/// view must outlive it and comes before it in the chain of responders.
class LineCommands final : public QObject, public Responder {
    Q_OBJECT

public:
    /// UTF-16 units of which what is read at once has at most so many.
    static constexpr qsizetype readAtOnce = qsizetype(256) * 1024;

    LineCommands(EditorTextView &view, CommandServices services, QObject *parent = nullptr);
    ~LineCommands() override;

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override;

    /// All lines of the text begin as far from the margin as before, with spaces alone or with as many tabs as there is room for, and new
    /// ones are indented so.
    void convertIndentation(Indentation::Unit unit);

    /// What a command goes by besides the text.
    struct Context {
        Indentation indentation;
        bool indentsNewLines = true;
        /// Of the interface, as BCP 47 names it.
        QByteArray language;
        std::stop_token stop = {};
    };
    using Command = std::optional<TextStep> (*)(const Rope &text, TextRange selection, const Context &context);
    /// What a command reads.
    using Extent = TextRange (*)(const Rope &text, TextRange selection);
    /// With several carets a command concerns the lines of all of them, which carets may go with, what each by itself stands at, or the
    /// text by the primary one.
    enum class Scope { lines, movedLines, letters, text };

signals:
    /// The text is indented with these from now on.
    void converted(Indentation::Unit unit);

private:
    template<Command command, Scope scope, Extent extent>
    void run()
    {
        start({command, scope, extent});
    }
    /// The selected lines, or all.
    template<Indentation::Unit unit>
    void convert();
    struct Row {
        Command command;
        Scope scope;
        Extent extent;

        [[nodiscard]] std::optional<CaretStep> step(const Rope &text, const Selections &selections, const Context &context) const;
        [[nodiscard]] qsizetype unitsRead(const Rope &text, const Selections &selections) const;
    };
    void start(const Row &row);
    void startOnWorker(const Row &row);
    void apply(const std::optional<CaretStep> &step, const Selections &asked);
    void stop(const QString &message);
    [[nodiscard]] Context context() const;
    [[nodiscard]] bool canEdit() const;

    EditorTextView &m_view;
    CommandServices m_services;
    BackgroundTask m_task;
    LongWork m_work;
};
