// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/PrintActions.h"

#include "Base/FilePath.h"
#include "Base/Localization.h"
#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Model/DocumentStore.h"
#include "Print/Printing.h"
#include "Settings/Preferences.h"
#include "UI/DocumentActions.h"
#include "UI/PrintPreview.h"
#include "Widgets/AlertPresenter.h"
#include "Widgets/Mnemonics.h"

#include <QDate>
#include <QFileInfo>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds flash{5};
/// Logical pixels, enough for its title.
constexpr int leastDialogWidth = 340;

/// The text's name without its ending, with another one.
QString suggestedName(const QString &title, const QString &ending)
{
    const QString base = QFileInfo(title).completeBaseName();
    return (base.isEmpty() ? QFileInfo(title).suffix() : base) + ending;
}

/// The same letters, in an object that no other thread uses.
QFont lettersOf(const QFont &font)
{
    QFont letters(font.families());
    letters.setStyleHint(font.styleHint());
    return letters;
}

/// A button that goes on and one that does not.
QLayout *dialogButtons(QDialog &dialog, const QString &accepting, QString &taken)
{
    const QStringList titles = withMnemonics({localized(u"Cancel"), accepting}, taken);
    auto *cancel = new QPushButton(titles[0]);
    auto *accept = new QPushButton(titles[1]);
    accept->setDefault(true);
    QObject::connect(cancel, &QPushButton::clicked, &dialog, &QDialog::reject);
    QObject::connect(accept, &QPushButton::clicked, &dialog, &QDialog::accept);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(accept);
    return buttons;
}

/// The toolkit's dialog, as it would be if it were made for today: with what can be chosen in view, and without pictures that only desktops
/// without any of their own show.
void decorate(const QPrintDialog &dialog)
{
    for (QPushButton *button : dialog.findChildren<QPushButton *>()) {
        if (button->text().endsWith(u">>"_s)) {
            button->click();
            button->hide();
        } else if (!QIcon::hasThemeIcon(u"document-print"_s)) {
            button->setIcon({});
        }
    }
}

} // namespace

PrintActions::PrintActions(const WorkspaceServices &services, DocumentActions &documents, std::function<EditorViewController *()> editor,
                           QWidget &widget)
    : m_services(services), m_documents(documents), m_editor(std::move(editor)), m_widget(widget)
{}

const ActionRow *PrintActions::actionFor(const Action &wanted) const
{
    using Self = PrintActions;
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&Self::printDocument, &Self::hasText>(Actions::printDocument),
        action<&Self::printPreview, &Self::hasText>(Actions::printPreview),
        action<&Self::exportAsPdf, &Self::hasText>(Actions::exportAsPdf),
        action<&Self::exportAsHtml, &Self::hasText>(Actions::exportAsHtml),
    });
    return findAction(rows, wanted);
}

bool PrintActions::hasText() const
{
    EditorViewController *editor = m_editor();
    return editor && !editor->document().arrival().isPending();
}

std::optional<PrintSource> PrintActions::source() const
{
    if (!hasText()) {
        m_services.presenter.beep();
        return std::nullopt;
    }
    EditorViewController &editor = *m_editor();
    const TextDocument &document = editor.document();
    const Rope &text = document.storage().text();
    return PrintSource{.text = {.text = text,
                                .range = {0, text.length()},
                                .language = document.highlighter() ? document.highlighter()->language() : document.language(),
                                .title = shownPath(document.displayName()),
                                .font = lettersOf(editor.textView().textFont()),
                                .tabWidth = editor.textView().indentation().tabWidth(),
                                .date = Localization::current().locale().toString(QDate::currentDate(), localized(u"d MMMM yyyy"))},
                       .selection = editor.textView().selection().range()};
}

void PrintActions::start(const QString &title, Work work, const QString &success)
{
    auto *job = new PrintJob(
        m_services.scheduler, m_services.workers, title, *m_widget.window(), std::move(work),
        [this, success](const Result<void> &result) {
            if (result) {
                emit messageShown(success, flash);
            } else {
                m_services.presenter.present(Alert::forError(result.error().message), m_widget.window(), {});
                end(Outcome::failed);
            }
        },
        this);
    connect(job, &QObject::destroyed, this, &PrintActions::noticeEnd);
}

bool PrintActions::isActive() const
{
    return findChild<PrintJob *>({}, Qt::FindDirectChildrenOnly) != nullptr;
}

void PrintActions::whenOver(std::function<void(Outcome outcome)> then)
{
    m_whenOver = std::move(then);
    std::ranges::for_each(findChildren<PrintJob *>(Qt::FindDirectChildrenOnly), &PrintJob::show);
    noticeEnd();
}

void PrintActions::noticeEnd()
{
    if (!isActive()) {
        end(Outcome::over);
    }
}

void PrintActions::end(Outcome outcome)
{
    if (const auto then = std::exchange(m_whenOver, nullptr)) {
        then(outcome);
    }
}

// Paper

void PrintActions::printDocument()
{
    if (const auto whole = source()) {
        print(*whole, whole->text.range);
    }
}

void PrintActions::printPreview()
{
    const auto shown = source();
    if (!shown) {
        return;
    }
    auto *preview = new PrintPreview(m_services.preferences, m_services.notifications, m_services.workers, *shown, m_widget.window());
    connect(preview, &PrintPreview::printRequested, this, [this, preview, shown] {
        const TextRange range = preview->text().range;
        preview->close();
        print(*shown, range);
    });
    connect(preview, &PrintPreview::exportRequested, this, [this, preview] {
        const PrintedText chosen = preview->text();
        preview->close();
        askForFile(Format::pdf, chosen);
    });
    preview->open();
}

void PrintActions::print(const PrintSource &source, TextRange range)
{
    const auto printer = std::make_shared<QPrinter>(QPrinter::HighResolution);
    const QPageLayout paper = ::printPaper(m_services.preferences);
    printer->setDocName(source.text.title);
    printer->setCreator(u"Quillet"_s);
    printer->setPageLayout(paper);
    auto *dialog = new QPrintDialog(printer.get(), m_widget.window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOption(QAbstractPrintDialog::PrintSelection, !source.selection.isEmpty());
    if (range == source.selection && !range.isEmpty()) {
        dialog->setPrintRange(QAbstractPrintDialog::Selection);
    }
    auto *options =
        new PrintOptionsForm(m_services.preferences, m_services.notifications, PrintOptionsForm::Purpose::printer, source, dialog);
    options->setWindowTitle(localized(u"Text"));
    dialog->setOptionTabs({options});
    decorate(*dialog);
    connect(dialog, &QDialog::accepted, this, [this, dialog, options, printer, source] {
        options->commit();
        rememberPaper(printer->pageLayout(), m_services.preferences);
        print(dialog->printRange() == QAbstractPrintDialog::Selection ? source.selected() : source.text, printer);
    });
    dialog->open();
}

void PrintActions::print(const PrintedText &text, const std::shared_ptr<QPrinter> &printer)
{
    const PageOrder order = PageOrder::of(*printer);
    const QString title = formatted(localized(u"Printing “%@”…"), text.title);
    if (const QString path = printer->outputFileName(); !path.isEmpty()) {
        start(title, writing(path, text, printer->pageLayout(), order),
              formatted(localized(u"Exported as “%@”"), shownPath(QFileInfo(path).fileName())));
        return;
    }
    const PrintStyle style = printStyle(m_services.preferences);
    start(
        title,
        [text, style, printer](const std::stop_token &stop, PrintProgress &progress) {
            return printText(text, style, *printer, stop, progress);
        },
        formatted(localized(u"Sent to “%@”"), printer->printerName()));
}

// Files

void PrintActions::askForOptions(Format format)
{
    const auto whole = source();
    if (!whole) {
        return;
    }
    const bool isPdf = format == Format::pdf;
    auto *dialog = new QDialog(m_widget.window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setObjectName(u"exportOptions"_s);
    dialog->setMinimumWidth(leastDialogWidth);
    dialog->setWindowTitle(localized(isPdf ? u"Export as PDF" : u"Export as HTML"));
    const auto purpose = isPdf ? PrintOptionsForm::Purpose::pages : PrintOptionsForm::Purpose::webPage;
    auto *options = new PrintOptionsForm(m_services.preferences, m_services.notifications, purpose, *whole);
    auto *stack = new QVBoxLayout(dialog);
    stack->addWidget(options, 1);
    QString taken;
    stack->addLayout(dialogButtons(*dialog, localized(u"Export…"), taken));
    options->markTitles(taken);
    connect(dialog, &QDialog::accepted, this, [this, options, format] {
        options->commit();
        askForFile(format, options->text());
    });
    dialog->open();
}

void PrintActions::askForFile(Format format, const PrintedText &text)
{
    EditorViewController *editor = m_editor();
    const SavePanel panel{.title = localized(format == Format::pdf ? u"Export as PDF" : u"Export as HTML"),
                          .startFolder = editor ? m_documents.folderBeside(editor->document()) : QString(),
                          .suggestedName = suggestedName(text.title, format == Format::pdf ? u".pdf"_s : u".html"_s)};
    m_services.presenter.present(panel, m_widget.window(), [self = QPointer(this), format, text](const std::optional<QString> &path) {
        if (self && path) {
            self->m_documents.rememberPanelFolder(*path);
            self->exportTo(*path, format, text);
        }
    });
}

void PrintActions::exportTo(const QString &path, Format format, const PrintedText &text)
{
    const QString name = shownPath(QFileInfo(path).fileName());
    if (m_services.documents.documentAt(path)) {
        m_services.presenter.present(Alert::forError(formatted(localized(u"“%@” is open here. Choose another name for the copy."), name)),
                                     m_widget.window(), {});
        return;
    }
    Work work = writing(path, text, ::printPaper(m_services.preferences), {});
    if (format == Format::html) {
        FileCalls &files = m_services.documents.services().files;
        work = [text, style = printStyle(m_services.preferences), path, &files](const std::stop_token &stop, PrintProgress &progress) {
            return writeHtml(text, style, path, files, stop, progress);
        };
    }
    start(formatted(localized(u"Exporting “%@”…"), name), std::move(work), formatted(localized(u"Exported as “%@”"), name));
}

PrintActions::Work PrintActions::writing(const QString &path, const PrintedText &text, const QPageLayout &paper,
                                         const PageOrder &order) const
{
    FileCalls &files = m_services.documents.services().files;
    return [text, style = printStyle(m_services.preferences), path, paper, order, &files](const std::stop_token &stop,
                                                                                          PrintProgress &progress) {
        return writePdf(text, style, paper, order, path, files, stop, progress);
    };
}
