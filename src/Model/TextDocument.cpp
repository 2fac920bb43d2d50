// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/TextDocument.h"

#include "Base/HomePath.h"
#include "Base/Translation.h"
#include "Files/TextHash.h"
#include "Highlighting/LanguageRegistry.h"
#include "Model/SaveTransformation.h"
#include "Settings/Preferences.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype firstLineReach = 512;
// Colouring works on whole lines; one of megabytes would hold up the keys for half a second after each pause.
constexpr qsizetype longestColouredLine = 1'000'000;

/// Also at the same time, since clocks tick a few times in a hundredth of a second only.
bool hasChangedSince(const QString &path, const FileStamp &stamp)
{
    struct stat status = {};
    const auto time = [](const timespec &value) { return std::pair(value.tv_sec, value.tv_nsec); };
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 && time(status.st_mtim) >= time(stamp.modified);
}

} // namespace

TextDocument::TextDocument(const DocumentServices &services, const QString &path, const std::optional<TextFile::Contents> &contents,
                           const QUuid &id)
    : TextDocument(services, path, path.isEmpty() ? QString() : identityOf(path), contents, id)
{
    startWatching(contents ? contents->stamp : std::nullopt);
}

TextDocument::TextDocument(const DocumentServices &services, const QString &path, const QString &identity,
                           const std::optional<TextFile::Contents> &contents, const QUuid &id)
    : m_services(services), m_id(id), m_undoManager(m_storage, [&scheduler = services.scheduler] { return scheduler.now(); }), m_path(path),
      m_identity(identity)
{
    if (contents) {
        {
            const UndoManager::Pause pause(m_undoManager);
            m_storage.apply({{}, contents->text});
        }
        m_undoManager.markSavePoint();
        m_encoding = contents->encoding;
        m_lineEnding = contents->lineEnding;
    }
    rememberSavedText();
    m_language = detectedLanguage();
    QObject::connect(&m_storage, &TextStorage::didProcessEditing, &m_context, [this] { noteEdit(); });
}

TextDocument::~TextDocument() = default;

QString TextDocument::identityOf(const QString &path)
{
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? QDir::cleanPath(path) : canonical;
}

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
                                                      const TextFile::Contents &contents, const QUuid &id)
{
    std::unique_ptr<TextDocument> document(new TextDocument(services, path, QDir::cleanPath(path), contents, id));
    document->m_isDraft = true;
    document->startWatching(std::nullopt);
    if (!path.isEmpty()) {
        document->m_arrival = BackgroundTask::start(
            services.workers,
            [path, kept = contents.stamp](const std::stop_token &) {
                return std::pair(identityOf(path), kept && hasChangedSince(path, *kept));
            },
            [self = document.get(), path](const std::pair<QString, bool> &found) {
                if (self->m_path == path) {
                    self->m_identity = found.first;
                    if (found.second) {
                        self->compareWithFile();
                    }
                }
            });
    }
    return document;
}

std::unique_ptr<TextDocument> TextDocument::awaiting(const DocumentServices &services, const QString &path, TextEncoding encoding,
                                                     LineEnding lineEnding, const QUuid &id)
{
    const TextFile::Contents nothing{.text = {}, .encoding = encoding, .lineEnding = lineEnding};
    std::unique_ptr<TextDocument> document(new TextDocument(services, path, QDir::cleanPath(path), nothing, id));
    document->m_externalState = ExternalState::waiting;
    document->m_arrival = BackgroundTask::start(
        services.workers,
        [path](const std::stop_token &) {
            return Arrival{TextFile::read(path), identityOf(path)};
        },
        [self = document.get()](const Arrival &arrival) { self->arrive(arrival); });
    return document;
}

void TextDocument::arrive(const Arrival &arrival)
{
    m_externalState = ExternalState::none;
    if (!arrival.contents) {
        m_arrivalError = arrival.contents.error();
        m_services.notifications.post(didFailToArrive, this);
        return;
    }
    m_identity = arrival.identity;
    const TextRange selection = lastSelectedRange;
    {
        const UndoManager::Pause pause(m_undoManager);
        adopt(comparedWith(*arrival.contents));
    }
    m_undoManager.removeAllActions();
    m_undoManager.markSavePoint();
    const bool fits = selection.location <= m_storage.length() && selection.length <= m_storage.length() - selection.location;
    lastSelectedRange = fits ? selection : TextRange();
    if (!languageWasChosenManually) {
        setLanguage(detectedLanguage());
    }
    startWatching(arrival.contents->stamp);
    m_services.notifications.post(didReloadFromDisk, this);
    postMetadata();
}

bool TextDocument::hasUnsavedText() const
{
    if (isGenerated() || isWaiting() || (isUntitled() && m_storage.length() == 0)) {
        return false;
    }
    return m_isDirty || m_isDraft || isUntitled();
}

QString TextDocument::displayName() const
{
    if (m_generatedTitle) {
        return *m_generatedTitle;
    }
    return m_path.isEmpty() ? localized(u"Untitled") : QFileInfo(m_path).fileName();
}

QString TextDocument::displayPath() const
{
    if (m_generatedTitle) {
        return formatted(localized(u"%@ - read only"), *m_generatedTitle);
    }
    if (m_path.isEmpty()) {
        return localized(u"Untitled - not saved");
    }
    return abbreviatedPath(m_path);
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
    m_dirtyHashing.cancel();
    m_dirtyCheck = m_services.scheduler.after(dirtyCheckDelay, [this] { checkDirty(); });
}

void TextDocument::rememberSavedText(std::optional<quint64> hash)
{
    m_savedHashing.cancel();
    m_isOnlyCopy = false;
    m_savedLength = m_storage.length();
    m_savedContentHash = hash;
    m_unhashedText = {};
    if (hash) {
        return;
    }
    if (m_storage.length() < largeText) {
        m_savedContentHash = textHash(m_storage.text());
    } else {
        m_unhashedText = m_storage.text();
    }
}

void TextDocument::checkDirty()
{
    // A letter more or less tells without a look at the text.
    if (m_storage.length() != m_savedLength) {
        setDirty(true);
        return;
    }
    if (!m_savedContentHash) {
        hashSavedText();
        return;
    }
    if (m_storage.length() < largeText) {
        applyDirtyCheck(textHash(m_storage.text()));
        return;
    }
    m_dirtyHashing = BackgroundTask::start(
        m_services.workers, [text = m_storage.text()](const std::stop_token &stop) { return textHash(text, stop); },
        [this, revision = m_storage.revision()](std::optional<quint64> hash) {
            if (hash && revision == m_storage.revision()) {
                applyDirtyCheck(*hash);
            }
        });
}

void TextDocument::hashSavedText()
{
    if (m_savedHashing.isPending()) {
        return;
    }
    m_savedHashing = BackgroundTask::start(
        m_services.workers, [text = m_unhashedText](const std::stop_token &stop) { return textHash(text, stop); },
        [this](std::optional<quint64> hash) {
            m_savedContentHash = hash;
            m_unhashedText = {};
            checkDirty();
        });
}

void TextDocument::applyDirtyCheck(quint64 hash)
{
    setDirty(m_isOnlyCopy || hash != m_savedContentHash);
}

// Properties

void TextDocument::setEncoding(TextEncoding encoding)
{
    if (m_encoding != encoding && !isWaiting()) {
        m_encoding = encoding;
        postMetadata();
    }
}

void TextDocument::setLineEnding(LineEnding lineEnding)
{
    if (m_lineEnding == lineEnding || isWaiting()) {
        return;
    }
    m_lineEnding = lineEnding;
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

void TextDocument::transformForSaving()
{
    const Preferences &preferences = m_services.preferences;
    const TextEdits edits =
        saveTransformation(m_storage.text(), {.trimsTrailingWhitespace = preferences.value(Settings::trimTrailingWhitespaceOnSave),
                                              .ensuresTrailingNewline = preferences.value(Settings::ensureTrailingNewlineOnSave)});
    if (!edits.isEmpty()) {
        m_undoManager.breakCoalescing();
        m_storage.apply(edits);
        lastSelectedRange = {std::min(m_storage.length(), lastSelectedRange.location), 0};
    }
}

Result<void> TextDocument::save(const QString &path)
{
    if (isWaiting()) {
        return failure(formatted(localized(u"“%@” cannot be saved, because it has not been read yet."), displayName()));
    }
    transformForSaving();
    if (m_watcher) {
        m_watcher->beginOwnWrite();
    }
    const Result<void> written = TextFile::write(m_storage.text(), path, m_encoding, m_lineEnding);
    if (!written) {
        if (m_watcher) {
            m_watcher->endOwnWrite();
        }
        return written;
    }
    m_undoManager.breakCoalescing();
    m_undoManager.markSavePoint();
    agreeWithFile();
    if (m_services.discardDraft) {
        m_services.discardDraft(m_id);
    }
    postMetadata();
    if (m_watcher) {
        m_watcher->endOwnWrite();
    }
    if (path != m_path) {
        // A file of the user's from now on.
        m_generatedTitle.reset();
        m_path = path;
        m_identity = identityOf(path);
        if (!languageWasChosenManually) {
            setLanguage(detectedLanguage());
        }
        startWatching({});
    }
    postMetadata();
    return {};
}

/// The text is the file's as of now; whatever was asked about either before is answered.
void TextDocument::agreeWithFile(std::optional<quint64> hash)
{
    m_dirtyCheck.cancel();
    m_dirtyHashing.cancel();
    forgetFileQuestions();
    rememberSavedText(hash);
    m_isDirty = false;
    m_isDraft = false;
    m_externalState = ExternalState::none;
}

void TextDocument::forgetFileQuestions()
{
    m_deletedCheck.cancel();
    m_fileLooking.cancel();
    m_fileReading.cancel();
}

TextDocument::FileReading TextDocument::comparedWith(const TextFile::Contents &contents) const
{
    return {.contents = contents,
            .difference = TextEdits::difference(m_storage.text(), contents.text),
            .revision = m_storage.revision(),
            .hash = {}};
}

void TextDocument::adopt(const FileReading &reading)
{
    m_isLoading = true;
    m_storage.apply(reading.difference);
    m_isLoading = false;
    m_encoding = reading.contents.encoding;
    m_lineEnding = reading.contents.lineEnding;
    agreeWithFile(reading.hash);
    lastSelectedRange = {std::min(m_storage.length(), lastSelectedRange.location), 0};
    if (m_highlighter) {
        m_highlighter->rehighlightAll();
    }
}

void TextDocument::reload(const FileReading &reading)
{
    {
        const UndoManager::Pause pause(m_undoManager);
        adopt(reading);
    }
    m_undoManager.removeAllActions();
    m_undoManager.markSavePoint();
    if (m_services.discardDraft) {
        m_services.discardDraft(m_id);
    }
    m_services.notifications.post(didReloadFromDisk, this);
    postMetadata();
}

tl::expected<void, TextFile::ReadError> TextDocument::revertToFileOnDisk()
{
    if (m_path.isEmpty() || isWaiting()) {
        return {};
    }
    const auto contents = TextFile::read(m_path);
    if (!contents) {
        return tl::unexpected(contents.error());
    }
    reload(comparedWith(*contents));
    return {};
}

tl::expected<void, TextFile::ReadError> TextDocument::reinterpret(TextEncoding encoding)
{
    if (m_path.isEmpty() || isWaiting()) {
        return {};
    }
    const auto contents = TextFile::read(m_path, encoding);
    if (!contents) {
        return tl::unexpected(contents.error());
    }
    m_undoManager.breakCoalescing();
    adopt(comparedWith(*contents));
    m_undoManager.breakCoalescing();
    m_undoManager.markSavePoint();
    postMetadata();
    return {};
}

// What others do to the file

void TextDocument::startWatching(const std::optional<FileStamp> &known)
{
    forgetFileQuestions();
    m_watcher.reset();
    if (!m_path.isEmpty()) {
        m_watcher =
            std::make_unique<FileWatcher>(m_services.watchers, m_path, known, [this](FileWatcher::Event event) { handleFileEvent(event); });
    }
}

void TextDocument::handleFileEvent(FileWatcher::Event event)
{
    if (event == FileWatcher::Event::deleted) {
        m_deletedCheck = m_services.scheduler.after(deletionCheckDelay, [this] { checkDeleted(); });
    } else {
        forgetFileQuestions(); // it is there, whatever it was before
        compareWithFile();
    }
}

void TextDocument::checkDeleted()
{
    if (m_path.isEmpty()) {
        return;
    }
    // On a worker: asking a share whose server is gone may take minutes.
    m_fileLooking = BackgroundTask::start(
        m_services.workers, [path = m_path](const std::stop_token &) { return QFileInfo::exists(path); },
        [this](bool exists) {
            if (!exists) {
                m_fileReading.cancel(); // of a file that was there
                m_isDirty = true;
                m_isOnlyCopy = true;
                setExternalState(ExternalState::deleted);
            }
        });
}

void TextDocument::setExternalState(ExternalState state)
{
    m_externalState = state;
    m_services.notifications.post(didDetectExternalChange, this);
    postMetadata();
}

void TextDocument::clearExternalState()
{
    if (m_externalState != ExternalState::none && !isWaiting()) {
        m_externalState = ExternalState::none;
        postMetadata();
    }
}

void TextDocument::compareWithFile()
{
    m_fileReading = BackgroundTask::start(
        m_services.workers,
        [path = m_path, snapshot = m_storage.snapshot()](const std::stop_token &stop) -> std::optional<FileReading> {
            auto contents = TextFile::read(path);
            const auto hash = contents ? textHash(contents->text, stop) : std::nullopt;
            if (!hash) {
                return std::nullopt;
            }
            TextEdits difference = TextEdits::difference(snapshot.text, contents->text);
            return FileReading{std::move(*contents), std::move(difference), snapshot.revision, hash};
        },
        [this](std::optional<FileReading> reading) { applyReading(std::move(reading)); });
}

void TextDocument::applyReading(std::optional<FileReading> reading)
{
    if (!reading) {
        return;
    }
    if (reading->revision != m_storage.revision()) {
        compareWithFile(); // typed meanwhile: the comparison was with another text
        return;
    }
    if (reading->difference.isEmpty()) {
        rememberSavedText(reading->hash);
        m_isDraft = false;
        setDirty(false);
        return;
    }
    if (!hasUnsavedText() && m_services.preferences.value(Settings::reloadCleanFilesAutomatically)) {
        reload(*reading);
        return;
    }
    setExternalState(ExternalState::conflicted);
}
