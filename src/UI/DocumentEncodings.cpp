// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Files whose encoding the user names.

#include "Base/FilePath.h"
#include "Base/Translation.h"
#include "Files/EncodingDetection.h"
#include "Model/DocumentStore.h"
#include "Model/EncodingMemory.h"
#include "UI/DocumentActions.h"
#include "Widgets/AlertPresenter.h"

#include <QFileInfo>
#include <QPointer>

bool DocumentActions::canReopen() const
{
    return hasFile() && !currentDocument()->arrival().isPending() && !currentDocument()->file().isNew();
}

/// The file's bytes are looked at by a worker.
void DocumentActions::chooseEncodingOf(const QString &path, const QString &consequence, const QString &prompt,
                                       std::function<void(TextEncoding encoding)> completion)
{
    using Candidates = std::vector<EncodingDetection::Candidate>;
    const auto ask = [this, path, consequence, prompt, completion = std::move(completion)](const Candidates &candidates) {
        ChoicePanel panel{.title = localized(u"Text Encoding"),
                          .message =
                              formatted(localized(u"This is how “%@” reads in each encoding. The likeliest are on top; the lines shown "
                                                  u"are the first that differ."),
                                        shownPath(QFileInfo(path).fileName())),
                          .choiceTitle = localized(u"Encoding"),
                          .detailTitle = localized(u"Text"),
                          .prompt = prompt};
        if (!consequence.isEmpty()) {
            panel.message += u' ' + consequence;
        }
        for (const EncodingDetection::Candidate &candidate : candidates) {
            panel.choices.push_back(
                {.title = displayName(candidate.encoding),
                 .detail = candidate.isPossible ? candidate.lines.join(u'\n') : localized(u"The file is not valid in this encoding"),
                 .isEnabled = candidate.isPossible});
        }
        m_services.presenter.present(panel, window(), [candidates, completion](std::optional<int> choice) {
            if (choice) {
                completion(candidates[size_t(*choice)].encoding);
            }
        });
    };
    m_detecting = BackgroundTask::start(
        m_services.workers,
        [path, language = QLocale().language(), &files = m_services.documents.services().files](const std::stop_token &) {
            return EncodingDetection::candidates(TextFile::tellingBytes(path, files), language);
        },
        ask);
    std::ignore = m_detecting.waitUntil(std::chrono::steady_clock::now() + m_services.documents.services().timeout);
}

void DocumentActions::reopenWithEncoding()
{
    if (!canReopen()) {
        beep();
        return;
    }
    const auto document = currentDocument()->shared_from_this();
    const QString consequence =
        document->hasUnsavedText() ? localized(u"Your unsaved changes are replaced by the file’s text; Undo brings them back.") : QString();
    chooseEncodingOf(document->path(), consequence, localized(u"Reopen"), [this, document](TextEncoding encoding) {
        document->reinterpret(encoding, errorPresenter(), TextDocument::Remembered::yes);
    });
}

void DocumentActions::askForFileAndEncoding()
{
    m_services.presenter.present(OpenPanel{.choice = OpenPanel::Choice::file, .startFolder = panelFolder()}, window(),
                                 [this](const QStringList &paths) {
                                     if (paths.isEmpty()) {
                                         return;
                                     }
                                     rememberPanelFolder(paths.first());
                                     openWithEncoding(paths.first());
                                 });
}

void DocumentActions::openWithEncoding(const QString &path)
{
    chooseEncodingOf(path, {}, localized(u"Open"), [this, path](TextEncoding encoding) {
        if (EncodingMemory *encodings = m_services.documents.services().encodings) {
            encodings->note(path, encoding);
        }
        if (const auto open = m_services.documents.documentAt(path); open && !open->hasUnsavedText()) {
            open->reinterpret(encoding, errorPresenter(), TextDocument::Remembered::yes);
        }
        emit filesChosen({path});
    });
}
