// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/TextDocument.h"

#include "Base/FilePath.h"
#include "Base/HomePath.h"
#include "Base/Translation.h"
#include "Highlighting/LanguageRegistry.h"
#include "Model/FirstLine.h"
#include "Model/SaveTransformation.h"
#include "Settings/Preferences.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype firstLineReach = 512;
// Colouring works on whole lines; one of megabytes would hold up the keys for half a second after each pause.
constexpr qsizetype longestColouredLine = 1'000'000;

/// The edits do nothing but to add text to one of that length.
bool isAdded(const TextEdits &edits, qsizetype length)
{
    return edits.count() == 1 && edits[0].range == TextRange{length, 0};
}

std::optional<FileStamp> stampOf(const std::optional<FileState> &state)
{
    return state ? std::optional(state->stamp) : std::nullopt;
}

bool isForbidden(int error)
{
    return error == EACCES || error == EPERM || error == EROFS;
}

struct DraftOrigin {
    /// What the file has beside its text, for the draft.
    FileForm form;
    /// Of the file; what is the same in the draft is kept once.
    Rope text;
};

/// The file that `draft` was made of. None when it cannot be read.
std::optional<DraftOrigin> originOf(const QString &path, std::optional<TextEncoding> remembered, const Rope &draft, FileCalls &files)
{
    const auto contents = TextFile::readRemembered(path, remembered, files);
    if (!contents) {
        return std::nullopt;
    }
    FileForm form = contents->form;
    const TextEdits edits = TextEdits::difference(contents->text, draft);
    form.lineEndings.apply({edits, contents->text, draft}, contents->lineEnding);
    return DraftOrigin{std::move(form), edits.inverse(contents->text).applied(draft)};
}

} // namespace

TextDocument::TextDocument(const DocumentServices &services, const QString &path, const std::optional<TextFile::Contents> &contents,
                           const QUuid &id)
    : TextDocument(services, path, path.isEmpty() ? QString() : QDir::cleanPath(path), contents, id)
{
    m_follower.follow(m_path, stampOf(m_follower.state()));
}

TextDocument::TextDocument(const DocumentServices &services, const QString &path, const QString &identity,
                           const std::optional<TextFile::Contents> &contents, const QUuid &id)
    : conventions({m_storage, m_language, services.preferences, services.workers, services.files, m_path, [this] { postMetadata(); }}),
      m_services(services), m_id(id), m_undoManager(m_storage, [&scheduler = services.scheduler] { return scheduler.now(); }), m_path(path),
      m_requests(services.scheduler, services.workers, [this] { postMetadata(); }), m_encoding({.storage = m_storage,
                                                                                                .undoManager = m_undoManager,
                                                                                                .workers = services.workers,
                                                                                                .memory = services.encodings,
                                                                                                .path = m_path,
                                                                                                .changed = [this] { postMetadata(); }}),
      m_savedText(m_storage, services.scheduler, services.workers, [this](bool isSaved) { setDirty(!isSaved); }),
      m_follower({.scheduler = services.scheduler,
                  .workers = services.workers,
                  .watchers = services.watchers,
                  .files = services.files,
                  .storage = m_storage,
                  .saved = m_savedText,
                  .form = m_form,
                  .encodings = services.encodings,
                  .changed = [this](const FileReading &reading) { takeChanged(reading); },
                  .deleted = [this] { takeDeleted(); }})
{
    m_follower.setIdentity(identity);
    if (contents) {
        {
            const UndoManager::Pause pause(m_undoManager);
            m_storage.apply({{}, contents->text});
        }
        m_undoManager.markSavePoint();
        conventions.noteText();
        m_encoding.take(contents->encoding, contents->suggestedEncoding);
        m_lineEnding = contents->lineEnding;
        m_form.set(contents->form);
        m_follower.agreeOn(contents->state, contents->position);
        m_follower.setReadOnly(contents->isReadOnly);
    }
    m_savedText.set(m_storage.text());
    m_language = detectedLanguage();
    QObject::connect(&m_storage, &TextStorage::didProcessEditing, &m_context, [this](const TextChange &change) {
        noteEdit();
        m_encoding.noteEdit(change);
        m_form.noteEdit(change, m_lineEnding);
    });
}

TextDocument::~TextDocument() = default;

std::unique_ptr<TextDocument> TextDocument::generated(const DocumentServices &services, const QString &title, const QString &text,
                                                      const Language &language)
{
    auto document = std::make_unique<TextDocument>(services, QString(), TextFile::Contents{.text = Rope(text)});
    document->m_generatedTitle = title;
    document->languageWasChosenManually = true;
    document->m_language = language;
    return document;
}

void TextDocument::setGeneratedText(const QString &text)
{
    reload(comparedWith({.text = Rope(text)}));
}

std::unique_ptr<TextDocument> TextDocument::fromDraft(const DocumentServices &services, const QString &path,
                                                      const TextFile::Contents &contents, const QUuid &id,
                                                      const std::optional<FileStamp> &keptAt, MissingFile missingFile)
{
    std::unique_ptr<TextDocument> document(new TextDocument(services, path, QDir::cleanPath(path), contents, id));
    document->m_isDraft = true;
    document->m_savedText.setUnwritten();
    document->m_follower.follow(path, std::nullopt);
    if (!path.isEmpty()) {
        struct Found {
            QString identity;
            bool exists = false;
            bool isChanged = false;
            bool isReadOnly = false;
            EditorConfig config;
            std::optional<DraftOrigin> origin = std::nullopt;
        };
        const bool keepsForm = services.preferences.value(Settings::keepFileForm);
        const bool isRead = keepsForm || services.preferences.value(Settings::markChanges);
        document->m_draftLooking = BackgroundTask::start(
            services.workers,
            [path, keptAt, isRead, draft = contents.text, remembered = document->m_encoding.remembered(), state = contents.state,
             &files = services.files](const std::stop_token &) {
                const bool exists = isThere(path);
                const bool isChanged =
                    state ? !DocumentFile::isStill(path, *state, files) : keptAt && DocumentFile::hasChangedSince(path, *keptAt, files);
                return Found{DocumentFile::identityOf(path),
                             exists,
                             exists && isChanged,
                             TextFile::isReadOnly(path, files),
                             EditorConfig::of(path, files),
                             exists && !isChanged && isRead ? originOf(path, remembered, draft, files) : std::nullopt};
            },
            [self = document.get(), path, missingFile, keepsForm, draft = contents.text](const Found &found) {
                if (self->m_path != path) {
                    return;
                }
                self->m_follower.setIdentity(found.identity);
                self->setReadOnly(found.isReadOnly);
                self->conventions.take(found.config);
                if (found.origin && self->m_isDraft) {
                    self->m_savedText.setUnwritten(found.origin->text);
                }
                self->postMetadata();
                if (!found.exists && missingFile == MissingFile::isMade) {
                    self->m_follower.setNew(true);
                } else if (!found.exists) {
                    self->takeDeleted();
                } else if (found.isChanged) {
                    self->m_follower.read();
                } else if (found.origin && keepsForm) {
                    self->takeForm(found.origin->form, draft);
                }
            });
    }
    return document;
}

/// The form is that of `text`, which may have been edited since.
void TextDocument::takeForm(FileForm form, const Rope &text)
{
    const TextEdits edits = TextEdits::difference(text, m_storage.text());
    form.lineEndings.apply({edits, text, m_storage.text()}, m_lineEnding);
    m_form.set(form);
    postMetadata();
}

std::unique_ptr<TextDocument> TextDocument::awaiting(const DocumentServices &services, const QString &path, TextEncoding encoding,
                                                     LineEnding lineEnding, const QUuid &id, MissingFile missingFile)
{
    const TextFile::Contents nothing{.text = {}, .encoding = encoding, .lineEnding = lineEnding};
    std::unique_ptr<TextDocument> document(new TextDocument(services, path, QDir::cleanPath(path), nothing, id));
    document->m_arrival.begin();
    document->m_requests.start(
        FileRequests::Kind::arrival, std::chrono::milliseconds(0),
        [path, remembered = document->m_encoding.remembered(), &files = services.files](const std::stop_token &) {
            return Arrival{TextFile::readRemembered(path, remembered, files), DocumentFile::identityOf(path),
                           TextFile::isReadOnly(path, files), EditorConfig::of(path, files)};
        },
        [self = document.get(), missingFile](const Arrival &arrival) { self->arrive(arrival, missingFile); });
    return document;
}

void TextDocument::arrive(const Arrival &arrival, MissingFile missingFile)
{
    const std::shared_ptr<TextDocument> self = weak_from_this().lock(); // it may be removed by those who are notified
    const bool isNew = missingFile == MissingFile::isMade && !arrival.contents && arrival.contents.error().found == PathKind::missing;
    DocumentArrival::Failure failure;
    if (!arrival.contents && !isNew) {
        failure.error = arrival.contents.error();
    } else {
        m_follower.setIdentity(arrival.identity);
        failure.twin = m_services.otherOfFile ? m_services.otherOfFile(arrival.identity, *this) : nullptr;
    }
    const auto waiting = m_arrival.end(std::move(failure));
    if (m_arrival.failure()) {
        m_services.notifications.post(didFailToArrive, this);
    } else {
        conventions.take(arrival.config);
        takeArrived(arrival.contents.value_or(
            TextFile::Contents{.encoding = encoding(), .lineEnding = m_lineEnding, .isReadOnly = arrival.isReadOnly}));
        m_follower.setNew(isNew);
    }
    for (const auto &then : waiting) {
        then();
    }
}

void TextDocument::takeArrived(const TextFile::Contents &contents)
{
    const TextRange selection = lastSelectedRange;
    {
        const UndoManager::Pause pause(m_undoManager);
        adopt(comparedWith(conventions.filledIn(contents)));
    }
    m_undoManager.removeAllActions();
    m_undoManager.markSavePoint();
    const bool fits = selection.location <= m_storage.length() && selection.length <= m_storage.length() - selection.location;
    lastSelectedRange = fits ? selection : TextRange();
    if (!languageWasChosenManually) {
        setLanguage(detectedLanguage());
    }
    m_follower.follow(m_path, stampOf(contents.state));
    m_services.notifications.post(didReloadFromDisk, this);
    postMetadata();
}

bool TextDocument::hasUnsavedEdits() const
{
    if (!m_isDirty || !m_savedText.isComparing()) {
        return m_isDirty;
    }
    // The save point is that of the last save asked for, which may not be through.
    return !m_savedText.isSaved().value_or(m_undoManager.isAtSavePoint() && !m_saves.isActive());
}

bool TextDocument::hasUnsavedText() const
{
    if (isGenerated() || m_arrival.isPending() || (isUntitled() && m_storage.length() == 0)) {
        return false;
    }
    return m_isDraft || isUntitled() || hasUnsavedEdits();
}

QString TextDocument::displayName() const
{
    if (m_generatedTitle) {
        return localized(*m_generatedTitle);
    }
    if (!m_path.isEmpty()) {
        return shownPath(QFileInfo(m_path).fileName());
    }
    if (origin) {
        return formatted(localized(u"%@ (recovered)"), origin->shownName());
    }
    const QString line = m_services.preferences.value(Settings::nameByFirstLine) ? firstLineOf(m_storage.text()) : QString();
    return line.isEmpty() ? localized(u"Untitled") : line;
}

void TextDocument::postMetadata() const
{
    m_services.notifications.post(didChangeMetadata, this);
}

void TextDocument::setAwaited(Awaited awaited)
{
    m_awaited = awaited;
    postMetadata();
}

void TextDocument::setDirty(bool isDirty)
{
    if (m_isDirty != isDirty && !isGenerated()) {
        m_isDirty = isDirty;
        postMetadata();
    }
}

void TextDocument::setReadOnly(bool isReadOnly)
{
    if (m_follower.isReadOnly() != isReadOnly) {
        m_follower.setReadOnly(isReadOnly);
        postMetadata();
    }
}

// Dirty or not

void TextDocument::noteEdit()
{
    if (m_highlighter) {
        m_highlighter->setLanguage(colouredLanguage()); // a line may have become too long for it, or short enough
    }
    if (m_isLoading) {
        return;
    }
    setDirty(true);
    m_requests.cancel(FileRequests::Kind::reading); // its text would take the place of what was typed
    m_savedText.compareSoon();
}

// Properties

void TextDocument::setEncoding(TextEncoding encoding)
{
    conventions.isEncodingChosen = true;
    if (m_encoding.value() != encoding && !m_arrival.isPending()) {
        m_encoding.set(encoding);
    }
}

void TextDocument::setLineEnding(LineEnding lineEnding)
{
    conventions.isLineEndingChosen = true;
    const auto kept = m_form.kept();
    const bool isKept = kept && kept->lineEndings.isMixed();
    if ((m_lineEnding == lineEnding && !isKept) || m_arrival.isPending()) {
        return;
    }
    m_lineEnding = lineEnding;
    m_form.setUniform(lineEnding);
    if (!m_isLoading) {
        setDirty(true);
    }
    postMetadata();
}

void TextDocument::setLanguage(const Language &language)
{
    if (m_language == language) {
        return;
    }
    m_language = language;
    if (m_highlighter) {
        m_highlighter->setLanguage(colouredLanguage());
    }
    postMetadata();
}

const Language &TextDocument::colouredLanguage() const
{
    return m_storage.text().longestLine() > longestColouredLine ? Language::plainText() : m_language;
}

void TextDocument::attachHighlighter(const Theme &theme)
{
    m_highlighter =
        std::make_unique<SyntaxHighlighter>(m_storage, colouredLanguage(), theme, m_services.scheduler, m_services.notifications);
    m_highlighter->rehighlightAll();
}

Language TextDocument::detectedLanguage() const
{
    const QString head = m_storage.string({0, std::min(m_storage.length(), firstLineReach)});
    return LanguageRegistry::detect(m_path, head.section(u'\n', 0, 0));
}

// Saving and reading

void TextDocument::save(const QString &path, const SaveQueue::Completion &completion, const DocumentFile::Manner &manner)
{
    if (m_arrival.isPending()) {
        if (completion) {
            completion(failure(formatted(localized(u"“%@” cannot be saved, because it has not been read yet."), displayName())));
        }
        return;
    }
    m_undoManager.breakCoalescing();
    m_undoManager.markSavePoint();
    DocumentFile::Snapshot snapshot = snapshotOf(*this, path);
    snapshot.manner = manner;
    m_saves.add(std::move(snapshot), completion);
    startSaving();
}

void TextDocument::startSaving()
{
    DocumentFile::Snapshot *const snapshot = m_saves.begin();
    if (!snapshot) {
        return;
    }
    snapshot->rescueFolder = m_services.rescueFolder;
    // Who chose another name was asked about the file that has it.
    if (snapshot->path == m_path) {
        snapshot->expected = m_follower.expectation();
    }
    m_requests.cancel(FileRequests::Kind::reading);
    m_follower.beginOwnWrite();
    const FinishedText::Open open{
        .encoding = isUntitled() && !conventions.isEncodingChosen && snapshot->encoding == TextEncoding::utf8,
        .lineEnding = isUntitled() && !conventions.isLineEndingChosen && snapshot->lineEnding == LineEnding::lf,
        .hasByteOrderMark = m_form.value().hasByteOrderMark,
    };
    const bool isAuthorized = snapshot->manner.authority == DocumentFile::Authority::administrator;
    m_requests.start(
        isAuthorized ? FileRequests::Kind::authorizedWriting : FileRequests::Kind::writing, m_services.timeout,
        [snapshot = *snapshot, options = conventions.saveOptions(), open, &files = m_services.files,
         administrator = m_services.administrator](const std::stop_token &stop) {
            FinishedText text = FinishedText::of(snapshot, options, open, files);
            auto result = DocumentFile::write(text.snapshot, files, administrator, stop);
            return Saved{std::move(text), std::move(result)};
        },
        [this](const Saved &saved) { endSaving(saved); });
}

void TextDocument::endSaving(const Saved &saved)
{
    const std::shared_ptr<TextDocument> self = weak_from_this().lock(); // it may be removed by those who are notified
    const SaveQueue::Save save = m_saves.end();
    const DocumentFile::WriteResult &written = saved.result;
    m_follower.endOwnWrite(written ? std::optional(written->state.stamp) : std::nullopt);
    if (written || written.error().code == TextFile::missingCharactersError) {
        takeForm(save.snapshot, saved.text.snapshot);
    }
    if (written) {
        takeWritten(saved.text, *written);
    } else {
        m_undoManager.forgetSavePoint();
    }
    if (!written && written.error().code == AtomicFile::changedError) {
        showConflict(written.error().found);
    }
    if (!written && isForbidden(written.error().code) && save.snapshot.path == m_path) {
        setReadOnly(true);
    }
    const Result<AtomicFile::InPlace> result =
        written.map([](const DocumentFile::Written &done) { return done.inPlace; }).map_error([](const TextFile::WriteError &error) {
            return Error(error);
        });
    for (const SaveQueue::Completion &completion : save.completions) {
        completion(result);
    }
    if (m_saves.isActive()) {
        startSaving();
    } else {
        m_saves.finish(written.has_value());
    }
}

/// What was decided while it was saved; the user may have decided otherwise meanwhile.
void TextDocument::takeForm(const DocumentFile::Snapshot &asked, const DocumentFile::Snapshot &finished)
{
    if (asked.encoding != finished.encoding && encoding() == asked.encoding) {
        m_encoding.take(finished.encoding, std::nullopt);
    }
    if (asked.lineEnding != finished.lineEnding && m_lineEnding == asked.lineEnding) {
        m_lineEnding = finished.lineEnding;
        m_form.setUniform(m_lineEnding);
    }
}

/// As one step of undo. A caret behind blanks that go at the end of the text stays in its line, not behind the break that comes.
void TextDocument::applyInParts(const TextEdits &edits)
{
    const ReplacedStretch hull = edits.hull();
    m_undoManager.beginGroup(GroupKind::other, TextSelection{hull.location, hull.location + hull.removed}, nullptr);
    const TextEdit last = edits[edits.count() - 1];
    if (!last.range.isEmpty() && last.text == Rope(u"\n")) {
        TextEdits blanks;
        for (const TextEdit &edit : edits) {
            blanks.add(edit.range, edit.range == last.range ? Rope() : edit.text);
        }
        m_storage.apply(blanks);
        m_storage.apply({{m_storage.length(), 0}, last.text});
    } else {
        m_storage.apply(edits);
    }
    m_undoManager.endGroup(TextSelection::at(hull.location + hull.inserted));
}

void TextDocument::takeWritten(const FinishedText &text, const DocumentFile::Written &written)
{
    const DocumentFile::Snapshot &snapshot = text.snapshot;
    const bool isSameText = m_storage.revision() == snapshot.revision;
    if (isSameText && !text.edits.isEmpty()) {
        m_isLoading = true;
        applyInParts(text.edits);
        m_isLoading = false;
        m_undoManager.breakCoalescing();
        m_undoManager.markSavePoint();
        lastSelectedRange = {std::min(m_storage.length(), lastSelectedRange.location), 0};
    }
    conventions.take(text.config);
    agreeWithFile(snapshot.text, written.hash);
    m_follower.agreeOn(written.state);
    if (!snapshot.form || !m_form.kept()) {
        m_form.setNormal(snapshot.lineEnding);
    }
    if (FileForm form = m_form.value(); snapshot.form && form.hasByteOrderMark != snapshot.form->hasByteOrderMark) {
        form.hasByteOrderMark = snapshot.form->hasByteOrderMark;
        m_form.set(form);
    }
    if (!isSameText || encoding() != snapshot.encoding || m_lineEnding != snapshot.lineEnding) {
        m_isDirty = true;
    }
    if (!isSameText) {
        m_savedText.compareSoon();
    }
    if (m_services.discardDraft && !m_isDirty) {
        m_services.discardDraft(m_id);
    }
    m_encoding.noteWritten(snapshot.path, snapshot.encoding);
    m_follower.setIdentity(written.identity);
    m_follower.setReadOnly(written.isReadOnly);
    if (snapshot.path != m_path) {
        // A file of the user's from now on.
        m_generatedTitle.reset();
        origin.reset();
        m_path = snapshot.path;
        if (!languageWasChosenManually) {
            setLanguage(detectedLanguage());
        }
        m_follower.follow(m_path, written.state.stamp);
    }
    postMetadata();
}

/// The file has `text`; whatever was asked about it or the document's text before is answered.
void TextDocument::agreeWithFile(const Rope &text, std::optional<quint64> hash)
{
    m_follower.forget();
    m_savedText.set(text, hash);
    m_isDirty = false;
    m_isDraft = false;
    m_follower.setNew(false);
    m_externalState = ExternalState::none;
}

TextDocument::FileReading TextDocument::comparedWith(const TextFile::Contents &contents) const
{
    return {.contents = contents, .difference = TextEdits::difference(m_storage.text(), contents.text), .revision = m_storage.revision()};
}

void TextDocument::adopt(const FileReading &reading)
{
    const bool isContinued = m_storage.length() > 0 && isAdded(reading.difference, m_storage.length());
    m_isLoading = true;
    m_storage.apply(reading.difference);
    m_isLoading = false;
    if (!isContinued) {
        conventions.noteText();
    }
    m_encoding.take(reading.contents.encoding, reading.contents.suggestedEncoding);
    m_lineEnding = reading.contents.lineEnding;
    m_form.set(reading.contents.form);
    agreeWithFile(m_storage.text(), reading.hash);
    m_follower.agreeOn(reading.contents.state, reading.contents.position);
    m_follower.setReadOnly(reading.contents.isReadOnly);
    lastSelectedRange = {std::min(m_storage.length(), lastSelectedRange.location), 0};
    // What is added at the end is coloured like what is typed there.
    if (m_highlighter && !isContinued) {
        m_highlighter->rehighlightAll();
    }
}

void TextDocument::reload(const FileReading &reading)
{
    m_endBeforeReload = isAdded(reading.difference, m_storage.length()) ? std::optional(m_storage.length()) : std::nullopt;
    {
        const UndoManager::Pause pause(m_undoManager);
        FileReading filled = reading;
        filled.contents = conventions.filledIn(reading.contents);
        adopt(filled);
    }
    m_undoManager.removeAllActions();
    m_undoManager.markSavePoint();
    if (m_services.discardDraft) {
        m_services.discardDraft(m_id);
    }
    m_services.notifications.post(didReloadFromDisk, this);
    postMetadata();
}

void TextDocument::takeFile(std::optional<TextEncoding> forcedEncoding, void (TextDocument::*take)(const FileReading &reading),
                            const ReadCompletion &completion)
{
    if (m_path.isEmpty() || m_arrival.isPending()) {
        return;
    }
    m_saves.whenOver([this, forcedEncoding, take, completion](bool /*isWritten*/) {
        m_requests.start(
            FileRequests::Kind::reading, m_services.timeout,
            [path = m_path, as = DocumentFile::ReadAs{forcedEncoding, m_encoding.remembered()}, current = m_storage.snapshot(),
             &files = m_services.files](const std::stop_token &stop) {
                return std::pair(DocumentFile::read(path, as, current, files, stop), EditorConfig::of(path, files));
            },
            [this, take, completion](const std::pair<DocumentFile::ReadResult, EditorConfig> &read) {
                const auto &[reading, config] = read;
                if (reading) {
                    conventions.take(config);
                    (this->*take)(reading->revision == m_storage.revision() ? *reading : comparedWith(reading->contents));
                }
                if (completion) {
                    completion(reading.map([](const FileReading &) {}));
                }
            });
    });
}

void TextDocument::revertToFileOnDisk(const ReadCompletion &completion)
{
    takeFile(std::nullopt, &TextDocument::reload, completion);
}

void TextDocument::reinterpret(TextEncoding encoding, const ReadCompletion &completion, Remembered remembered)
{
    // Who has named one before has named another now.
    const bool isRemembered = remembered == Remembered::yes || m_encoding.remembered();
    takeFile(encoding, &TextDocument::takeReinterpreted,
             [this, encoding, isRemembered, completion](const Result<void, TextFile::ReadError> &read) {
                 if (read && isRemembered) {
                     m_encoding.remember(encoding);
                 }
                 if (completion) {
                     completion(read);
                 }
             });
}

void TextDocument::takeReinterpreted(const FileReading &reading)
{
    m_undoManager.breakCoalescing();
    adopt(reading);
    m_undoManager.breakCoalescing();
    m_undoManager.markSavePoint();
    postMetadata();
}

// What others do to the file

void TextDocument::takeDeleted()
{
    m_isDirty = true;
    m_savedText.setNone();
    setExternalState(ExternalState::deleted);
}

void TextDocument::setExternalState(ExternalState state)
{
    m_externalState = state;
    m_services.notifications.post(didDetectExternalChange, this);
    postMetadata();
}

void TextDocument::setFollowingFile(bool isFollowing)
{
    if (isFollowing) {
        m_follower.follow(m_path, stampOf(m_follower.state()));
        return;
    }
    m_requests.cancel(FileRequests::Kind::reading);
    m_follower.follow(QString(), std::nullopt);
    // A file that grew is compared as a whole when it is followed again.
    m_follower.agreeOn(m_follower.state());
}

void TextDocument::clearExternalState()
{
    const bool hadOrigin = std::exchange(origin, std::nullopt).has_value();
    const bool hadState = !m_arrival.isPending() && m_externalState != ExternalState::none;
    if (hadState) {
        m_externalState = ExternalState::none;
    }
    if (hadState || hadOrigin) {
        postMetadata();
    }
}

void TextDocument::takeChanged(const FileReading &reading)
{
    if (reading.revision != m_storage.revision()) {
        m_follower.read(); // typed meanwhile: the comparison was with another text
        return;
    }
    setReadOnly(reading.contents.isReadOnly);
    if (reading.difference.isEmpty()) {
        m_savedText.set(m_storage.text(), reading.hash);
        m_form.set(reading.contents.form);
        m_follower.agreeOn(reading.contents.state, reading.contents.position);
        m_undoManager.markSavePoint();
        m_isDraft = false;
        m_isDirty = false;
        postMetadata(); // a draft counts as clean before, too
        return;
    }
    if (!hasUnsavedText() && m_services.preferences.value(Settings::reloadCleanFilesAutomatically)) {
        reload(reading);
        return;
    }
    showConflict(reading.contents.state);
}

/// Nothing that others wrote is written over before this was said of it.
void TextDocument::showConflict(const std::optional<FileState> &found)
{
    m_follower.noteShown(found);
    setExternalState(ExternalState::conflicted);
}

QString displayPath(const TextDocument &document)
{
    if (document.isGenerated()) {
        return formatted(localized(u"%@ - read only"), document.displayName());
    }
    return document.isUntitled() ? localized(u"Untitled - not saved") : shownPath(abbreviatedPath(document.path()));
}

DocumentFile::Snapshot snapshotOf(const TextDocument &document, const QString &path)
{
    const TextStorage &storage = document.storage();
    return {.path = path,
            .text = storage.text(),
            .revision = storage.revision(),
            .encoding = document.encoding(),
            .lineEnding = document.lineEnding(),
            .form = document.form().kept()};
}
