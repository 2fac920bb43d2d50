// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UI/PrintJob.h"
#include "UI/PrintOptions.h"
#include "UI/WorkspaceServices.h"

class DocumentActions;
class QPrinter;
struct PageOrder;

/// The commands that put the text of a window's current editor on paper or into a file of another kind. The text is taken as it is when the
/// command is given; what is typed meanwhile changes nothing. Main thread only.
class PrintActions final : public QObject, public Responder {
    Q_OBJECT

public:
    /// `editor` answers null for none; `widget` is something in the window. All must outlive this.
    PrintActions(const WorkspaceServices &services, DocumentActions &documents, std::function<EditorViewController *()> editor,
                 QWidget &widget);

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override;

    [[nodiscard]] bool isActive() const;
    enum class Outcome {
        /// Cancelled too.
        over,
        /// Something of it did, which is said.
        failed,
    };
    /// Shows how far what is being printed or exported has come, and calls `then` when that is over, at once when nothing is. The latest
    /// call counts.
    void whenOver(std::function<void(Outcome outcome)> then);

signals:
    void messageShown(const QString &message, Scheduler::Milliseconds duration);

private:
    enum class Format { pdf, html };
    using Work = PrintJob::Work;

    void printDocument();
    void printPreview();
    void exportAsPdf() { askForOptions(Format::pdf); }
    void exportAsHtml() { askForOptions(Format::html); }
    [[nodiscard]] bool hasText() const;
    /// Beeps where there is none.
    [[nodiscard]] std::optional<PrintSource> source() const;

    /// Asks how; `range` is what is printed if nobody says otherwise.
    void print(const PrintSource &source, TextRange range);
    void print(const PrintedText &text, const std::shared_ptr<QPrinter> &printer);
    void askForOptions(Format format);
    void askForFile(Format format, const PrintedText &text);
    void exportTo(const QString &path, Format format, const PrintedText &text);
    [[nodiscard]] Work writing(const QString &path, const PrintedText &text, const QPageLayout &paper, const PageOrder &order) const;
    void start(const QString &title, Work work, const QString &success);
    void noticeEnd();
    void end(Outcome outcome);

    WorkspaceServices m_services;
    DocumentActions &m_documents;
    std::function<EditorViewController *()> m_editor;
    QWidget &m_widget;
    std::function<void(Outcome outcome)> m_whenOver;
};
