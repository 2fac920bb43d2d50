// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Keys, modes and what is pending. What keys do to the text is in VimCommands.cpp, where they lead in VimEngineMotions.cpp.

#include "Vim/VimEngine.h"

#include "Base/Translation.h"
#include "Text/TextBoundaries.h"
#include "Vim/VimExact.h"
#include "Vim/VimKeyTable.h"
#include "Vim/VimKeys.h"
#include "Vim/VimParts.h"

#include <QScopedValueRollback>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype largestCount = 1'000'000'000;

qsizetype numberIn(const QString &digits, qsizetype otherwise)
{
    bool isNumber = false;
    const qlonglong number = digits.toLongLong(&isNumber);
    return isNumber ? std::min<qsizetype>(number, largestCount) : otherwise;
}

/// Control-[ is Escape as well.
char16_t keyInAnyMode(const VimKeyEvent &event)
{
    const char16_t key = event.charactersIgnoringModifiers.front().unicode();
    return event.control && key == u'[' ? VimKey::escape : key;
}

VimKeymap keymapOf(const VimOptions &options)
{
    return VimKeymap(options.preset, options.isExact ? options.mappings : nullptr);
}

} // namespace

QString displayName(VimEngine::Mode mode)
{
    static constexpr std::array<QStringView, 6> names = {u"NORMAL", u"INSERT", u"VISUAL", u"V-LINE", u"COMMAND", u"V-BLOCK"};
    static_assert(names.size() == size_t(VimEngine::Mode::visualBlock) + 1);
    return names[size_t(mode)].toString();
}

VimEngine::VimEngine(VimTextView &view, VimEngineDelegate &delegate, VimRegisters &registers, const VimOptions &options)
    : m_view(view), m_delegate(delegate), m_registers(registers), m_options(options), m_keymap(keymapOf(options)),
      m_moving(std::make_unique<Moving>(*this)), m_editing(std::make_unique<Editing>(*this))
{
    m_view.setCaretLook(VimCaret::block);
    if (options.isExact) {
        m_exact = std::make_unique<Exact>(*this);
    }
}

VimEngine::~VimEngine()
{
    pauseInsertSession();
    m_view.setCaretLook(VimCaret::bar);
}

// Keys

bool VimEngine::handle(const VimKeyEvent &event)
{
    return carryOut([&] {
        if (m_exact) {
            m_exact->repeating.record(event);
        }
        return handleKey(event);
    });
}

bool VimEngine::carryOut(const std::function<bool()> &keys)
{
    const QScopedValueRollback handling(m_isHandling, true);
    const bool isDone = keys();
    if (m_exact) {
        m_exact->changing.endChange();
    }
    if (std::exchange(m_hasNews, false)) {
        m_delegate.vimEngineDidChangeState(*this);
    }
    return isDone;
}

bool VimEngine::handleKey(const VimKeyEvent &event)
{
    const QString &characters = event.charactersIgnoringModifiers;
    const char16_t key = characters.isEmpty() ? 0 : characters.front().unicode();
    if (m_exact && m_exact->commanding.takeAnswer(event)) {
        return true;
    }
    const bool isLiteral = m_mode == Mode::insert && m_awaiting && m_awaiting->what == Awaiting::literal && !m_awaiting->digraph;
    const bool isAwaited = isLiteral || (m_mode == Mode::commandLine && m_commandLine.awaitsKey());
    const VimKeyStroke stroke{.character = key, .control = event.control, .option = event.option};
    const bool isOfAnyMode = characters.size() == 1 && !isAwaited && row(KeyPlace::anyMode, keyInAnyMode(event));
    if (m_exact && m_usesMappings && !m_awaiting && !isAwaited && !characters.isEmpty()) {
        // Escape calls off the preset's keys.
        const bool goesOn = m_keymap.isWaiting() && (!isOfAnyMode || m_keymap.awaitsUsers(table()));
        if (characters.size() == 1 && (goesOn || m_keymap.wants(stroke, table()))) {
            takeExactly(m_keymap.consume(stroke, table()));
            return true;
        }
        if (characters.size() > 1) {
            releaseKeys(); // no mapping has one of several units
        }
    }
    if (isOfAnyMode && takeKey(KeyPlace::anyMode, keyInAnyMode(event))) {
        return true;
    }
    if (m_mode == Mode::insert) {
        return handleInsert(event);
    }
    if (m_mode == Mode::commandLine) {
        handleCommandLine(event);
        return true;
    }
    if (characters.isEmpty()) {
        return true;
    }
    // A command that awaits it has it, not a mapping that could begin with it; exact mappings had their turn.
    const bool isCommands = m_exact || (m_awaiting && !m_keymap.completes(stroke, table()));
    if (isCommands && !m_keymap.isWaiting()) {
        handleStroke(stroke, characters);
        return true;
    }
    return takeOutcome(m_keymap.consume(stroke, table()), event);
}

bool VimEngine::wants(const VimKeyEvent &event) const
{
    const QString &characters = event.charactersIgnoringModifiers;
    if (characters.isEmpty()) {
        return false;
    }
    const char16_t key = characters.front().unicode();
    const VimKeyStroke stroke{.character = key, .control = event.control, .option = event.option};
    const bool isMapped = m_keymap.wants(stroke, table());
    if (VimKey::isForMappings(key) && !(m_mode == Mode::commandLine && key == VimKey::backtab)) {
        return isMapped;
    }
    if (event.control && event.option) {
        return isMapped; // no command has both
    }
    if (row(KeyPlace::anyMode, keyInAnyMode(event))) {
        return true;
    }
    if (awaitsChord()) {
        return true;
    }
    if (m_mode == Mode::insert) {
        return ((event.control || event.option) && isMapped) || (event.control && row(KeyPlace::whileInserting, key));
    }
    if (isMapped) {
        return true;
    }
    const bool beginsDigraph = m_exact && key == u'k' && m_awaiting && m_awaiting->mayBeDigraph();
    return event.control ? beginsDigraph || row(KeyPlace::withControl, key) : !event.option;
}

bool VimEngine::awaitsChord() const
{
    switch (m_mode) {
    case Mode::insert:
        return m_awaiting.has_value();
    case Mode::commandLine:
        return true;
    case Mode::normal:
    case Mode::visual:
    case Mode::visualLine:
    case Mode::visualBlock:
        break;
    }
    const bool isAfterG = m_exact && m_awaiting && m_awaiting->what == Awaiting::gPrefix;
    return m_keymap.isWaiting() || awaitsWindowKey() || isAfterG;
}

bool VimEngine::awaitsWindowKey() const
{
    return m_awaiting && m_awaiting->what == Awaiting::windowPrefix;
}

void VimEngine::handleStroke(const VimKeyStroke &stroke, QStringView key)
{
    if (stroke.control) {
        handleControl(stroke.character);
        return;
    }
    QString &digits = m_pendingOperator ? m_operatorCountBuffer : m_countBuffer;
    if (m_exact && stroke.character == VimKey::forwardDelete && !digits.isEmpty() && !m_awaiting) {
        digits.chop(1); // as one that was mistyped
        return;
    }
    const auto stands = std::ranges::find(NavigationRow::all, stroke.character, &NavigationRow::key);
    if (stands == NavigationRow::all.end()) {
        handleNormal(key);
    } else if (stands->place == KeyPlace::withControl) {
        handleControl(stands->standsFor);
    } else {
        if (m_exact && stands->standsFor == u'0') {
            m_countBuffer.clear(); // it is no digit
            m_operatorCountBuffer.clear();
        }
        handleNormal(QStringView(&stands->standsFor, 1));
    }
}

bool VimEngine::handleInsert(const VimKeyEvent &event)
{
    if (m_exact) {
        return m_exact->inserting.handle(event);
    }
    const QString &key = event.charactersIgnoringModifiers;
    if (m_awaiting && !key.isEmpty()) {
        complete(*std::exchange(m_awaiting, std::nullopt), key);
        return true;
    }
    if (event.control) {
        return key.size() == 1 && takeKey(KeyPlace::whileInserting, key.front().unicode());
    }
    noteInsertedText(event.characters);
    return false;
}

void VimEngine::noteInsertedText(const QString &text)
{
    if (m_mode == Mode::insert && m_exact) {
        m_exact->inserting.noteTyped(text);
        m_exact->repeating.recordText(text);
    } else if (m_mode == Mode::insert) {
        m_editing->noteInserted(text);
    }
}

void VimEngine::handleControl(char16_t key)
{
    if (awaitsWindowKey()) {
        complete(*std::exchange(m_awaiting, std::nullopt), QStringView(&key, 1));
        return;
    }
    if (m_exact) {
        m_exact->repeating.note(VimKeys::text({.characters = {}, .charactersIgnoringModifiers = QString(QChar(key)), .control = true}));
        const auto awaited = std::exchange(m_awaiting, std::nullopt);
        const bool isAfterG = awaited && awaited->what == Awaiting::gPrefix;
        if (awaited && awaited->mayBeDigraph() && key == u'k') {
            m_awaiting = awaited;
            m_awaiting->digraph.emplace();
        } else if (awaited && !awaited->digraph && awaited->what == Awaiting::replaceCharacter && key >= u'a' && key <= u'z' &&
                   key != u'c') {
            if (key == u'v' || key == u'q') {
                m_awaiting = awaited; // whatever comes is literal
            } else {
                complete(*awaited, QString(QChar(char16_t(key - u'`'))));
            }
        } else if (awaited && !isAfterG) {
            resetPending();
        } else if (!takeKey(isAfterG ? KeyPlace::withGAndControl : KeyPlace::withControl, key)) {
            resetPending();
        }
        return;
    }
    takeKey(KeyPlace::withControl, key);
}

void VimEngine::handleNormal(QStringView key)
{
    m_pendingKeys += key;
    notify();
    const char16_t unit = key.size() == 1 ? key.front().unicode() : 0;
    if (m_awaiting) {
        noteKey(key);
        complete(*std::exchange(m_awaiting, std::nullopt), key);
        return;
    }
    if (takeDigit(unit)) {
        return;
    }
    noteKey(key);
    if (!takeKey(KeyPlace::plain, unit)) {
        failKey();
    }
}

/// For ".", without counts and registers.
void VimEngine::noteKey(QStringView key)
{
    if (m_exact) {
        m_exact->repeating.note(key);
    }
}

/// There is no such key.
void VimEngine::failKey()
{
    if (m_exact) {
        m_exact->repeating.noteFailure();
    }
    resetPending();
    if (m_exact) {
        m_exact->inserting.comeBack();
    }
}

bool VimEngine::takeDigit(char16_t key)
{
    QString &digits = m_pendingOperator ? m_operatorCountBuffer : m_countBuffer;
    if (key < u'0' || key > u'9' || (key == u'0' && digits.isEmpty())) {
        return false;
    }
    digits += QChar(key);
    return true;
}

const VimEngine::KeyRow *VimEngine::row(KeyPlace place, char16_t key) const
{
    const bool takesObject = m_pendingOperator || isVisual();
    const auto isKey = [&](const KeyRow &known) { return known.place == place && known.key == key; };
    const auto fits = [&](const KeyRow &known) {
        return isKey(known) && (takesObject || !known.awaitsObject()) && (known.modes != KeyRow::Modes::normalOnly || !takesObject) &&
               (known.modes != KeyRow::Modes::notPending || !m_pendingOperator) &&
               (known.modes != KeyRow::Modes::visualOnly || isVisual()) && known.isThereWith(m_options);
    };
    bool isExactly = false;
    if (m_exact) {
        if (const auto found = std::ranges::find_if(exactKeys(), fits); found != exactKeys().end()) {
            return &*found;
        }
        isExactly = std::ranges::any_of(exactKeys(), isKey);
    }
    // Of a key that Vim has otherwise, only what begins an object is left.
    const auto found =
        std::ranges::find_if(keys(), [&](const KeyRow &known) { return fits(known) && (!isExactly || known.awaitsObject()); });
    return found == keys().end() ? nullptr : &*found;
}

bool VimEngine::takeKey(KeyPlace place, char16_t key)
{
    const KeyRow *known = row(place, key);
    if (place == KeyPlace::plain && m_pendingOperator && isKeyOf(*m_pendingOperator, key)) {
        if (m_exact) {
            m_exact->operating.applyLines(*m_pendingOperator, effectiveCount());
        } else {
            m_editing->applyLinewiseOperator(*m_pendingOperator, effectiveCount());
        }
        return true;
    }
    if (!known) {
        return false;
    }
    if (const auto *motion = std::get_if<KeyRow::Motion>(&known->function)) {
        m_moving->go(motion->target, motion->unmoved);
    } else if (const auto *command = std::get_if<KeyRow::Command>(&known->function)) {
        command->perform(*this, std::max(effectiveCount(), command->leastCount));
    } else if (const auto *kind = std::get_if<OperatorKind>(&known->function)) {
        return takeOperator(*kind);
    } else if (const auto *awaited = std::get_if<Awaited>(&known->function)) {
        m_awaiting = *awaited;
    } else if (const auto *exactly = std::get_if<KeyRow::ExactMotion>(&known->function)) {
        m_exact->going.go(exactly->motion);
    } else {
        m_view.perform(*std::get<const Action *>(known->function));
        if (m_exact) {
            resetPending();
        }
    }
    return true;
}

bool VimEngine::isKeyOf(OperatorKind kind, char16_t key)
{
    const auto isOne = [&](const KeyRow &known) {
        const auto *other = std::get_if<OperatorKind>(&known.function);
        return known.key == key && other && *other == kind;
    };
    return std::ranges::any_of(keys(), isOne) || std::ranges::any_of(exactKeys(), isOne);
}

bool VimEngine::takeOperator(OperatorKind kind)
{
    if (isVisual()) {
        m_exact ? m_exact->selecting.apply(kind) : m_editing->applyToSelection(kind);
        return true;
    }
    if (m_pendingOperator == kind && m_exact) {
        m_exact->operating.applyLines(kind, effectiveCount()); // as in gUgU
        return true;
    }
    if (m_pendingOperator) {
        return false;
    }
    m_pendingOperator = kind;
    return true;
}

// What a key completes

void VimEngine::complete(const Awaited &awaited, QStringView key)
{
    const char16_t unit = key.size() == 1 ? key.front().unicode() : 0;
    if (m_exact && completeExactly(awaited, key)) {
        return;
    }
    switch (awaited.what) {
    case Awaiting::findCharacter:
        if (unit == 0) {
            resetPending(); // one unit is compared with another
            return;
        }
        m_moving->find(unit, awaited.find);
        return;
    case Awaiting::gotoMark:
        m_moving->goToMark(key.toString(), awaited.isExact);
        return;
    case Awaiting::textObject:
        takeObject(awaited.extent, unit);
        return;
    case Awaiting::replaceCharacter:
        m_editing->replaceCharacter(key, effectiveCount());
        return;
    case Awaiting::setMark:
        m_moving->setMark(key.toString());
        resetPending();
        return;
    case Awaiting::registerName:
        m_pendingRegister = unit;
        return;
    case Awaiting::insertedRegister:
        m_editing->insertRegister(unit);
        return;
    case Awaiting::gPrefix:
        if (!takeKey(KeyPlace::afterG, unit)) {
            resetPending();
        }
        return;
    case Awaiting::zPrefix:
        if (!takeKey(KeyPlace::afterZ, unit)) {
            resetPending();
        }
        return;
    case Awaiting::openBracketPrefix:
    case Awaiting::closeBracketPrefix:
    case Awaiting::capitalZPrefix:
    case Awaiting::recordedRegister:
    case Awaiting::macroRegister:
    case Awaiting::literal:
        return;
    case Awaiting::windowPrefix:
        resetPending();
        if (!takeKey(KeyPlace::afterWindow, unit)) {
            m_view.beep();
        }
        return;
    }
}

/// What means something else, or only means something, where Vim decides; false for all else.
bool VimEngine::completeExactly(const Awaited &awaited, QStringView key)
{
    if (awaited.digraph) {
        Awaited waiting = awaited;
        const auto typed = waiting.digraph->take(key);
        if (typed) {
            waiting.digraph.reset();
            complete(waiting, *typed);
        } else {
            m_awaiting = waiting;
        }
        return true;
    }
    const char16_t unit = key.size() == 1 ? key.front().unicode() : 0;
    switch (awaited.what) {
    case Awaiting::findCharacter:
        m_exact->going.find(key, awaited.find);
        return true;
    case Awaiting::gotoMark:
        m_exact->going.toMark(unit, awaited.isExact);
        return true;
    case Awaiting::setMark:
        m_exact->going.setMark(unit);
        return true;
    case Awaiting::textObject:
        isVisual() ? m_exact->selecting.takeObject(awaited.extent, unit) : m_exact->operating.takeObject(awaited.extent, unit);
        return true;
    case Awaiting::replaceCharacter:
        isVisual() ? m_exact->selecting.replaceCharacters(key) : m_exact->operating.replaceCharacter(key, effectiveCount());
        return true;
    case Awaiting::registerName:
        if (!VimRegisters::isExactName(unit)) {
            failKey();
            return true;
        }
        m_pendingRegister = unit;
        m_exact->repeating.dropNoted(2);
        return true;
    case Awaiting::recordedRegister:
        m_exact->repeating.toggleRecording(unit);
        return true;
    case Awaiting::macroRegister:
        m_exact->repeating.runMacro(unit);
        return true;
    case Awaiting::gPrefix:
        if (!takeKey(KeyPlace::afterG, unit)) {
            failKey();
        }
        return true;
    case Awaiting::openBracketPrefix:
    case Awaiting::closeBracketPrefix:
    case Awaiting::capitalZPrefix:
        if (!takeKey(awaited.what == Awaiting::openBracketPrefix    ? KeyPlace::afterOpenBracket
                     : awaited.what == Awaiting::closeBracketPrefix ? KeyPlace::afterCloseBracket
                                                                    : KeyPlace::afterCapitalZ,
                     unit)) {
            failKey();
        }
        return true;
    case Awaiting::insertedRegister:
    case Awaiting::zPrefix:
    case Awaiting::windowPrefix:
    case Awaiting::literal:
        break;
    }
    return false;
}

void VimEngine::awaitWindowKey()
{
    m_awaiting = Awaited{.what = Awaiting::windowPrefix};
    m_pendingKeys = u"^w"_s;
    notify();
}

void VimEngine::takeObject(VimTextObject::Extent extent, char16_t key)
{
    VimBuffer text = buffer();
    const auto object = VimTextObject::range(text, caret(), key, extent, effectiveCount());
    if (!object) {
        resetPending();
    } else if (m_pendingOperator) {
        m_editing->apply(*m_pendingOperator, object->range, object->linewise ? Span::lines : Span::characters);
    } else {
        m_visualAnchor = object->range.location;
        moveCaret(std::max(object->range.end() - 1, object->range.location));
        resetPending();
    }
}

// State

void VimEngine::configure(const VimOptions &options)
{
    const bool wasWaiting = m_keymap.isWaiting();
    const bool isOther = options.isExact != m_options.isExact;
    if (isOther) {
        leaveToNormal();
        m_exact = options.isExact ? std::make_unique<Exact>(*this) : nullptr;
        setConfiguration(m_configuration);
    }
    m_options = options;
    m_keymap = keymapOf(options);
    if (wasWaiting || isOther) {
        notify();
    }
}

void VimEngine::setConfiguration(VimConfiguration *configuration)
{
    m_configuration = configuration;
    if (m_exact) {
        m_exact->marking.join();
    }
}

void VimEngine::notify()
{
    if (m_isHandling) {
        m_hasNews = true;
    } else {
        m_delegate.vimEngineDidChangeState(*this);
    }
}

void VimEngine::setMode(Mode mode)
{
    if (m_mode == mode) {
        return;
    }
    m_mode = mode;
    m_view.setCaretLook(mode == Mode::insert ? VimCaret::bar : VimCaret::block);
    notify();
}

bool VimEngine::awaitsCharacter() const
{
    return m_awaiting && (m_awaiting->what == Awaiting::findCharacter || m_awaiting->what == Awaiting::replaceCharacter);
}

QString VimEngine::pendingDescription() const
{
    return m_keymap.isWaiting() ? m_keymap.pendingDescription() : m_pendingKeys;
}

qsizetype VimEngine::effectiveCount() const
{
    const qsizetype count = std::max<qsizetype>(numberIn(m_countBuffer, 1), 1);
    return std::min(largestCount, std::max<qsizetype>(count * numberIn(m_operatorCountBuffer, 1), 1));
}

void VimEngine::clearPending()
{
    m_countBuffer.clear();
    m_operatorCountBuffer.clear();
    m_pendingOperator.reset();
    m_pendingRegister.reset();
    m_awaiting.reset();
    m_pendingKeys.clear();
    notify();
}

void VimEngine::resetPending()
{
    if (m_exact) {
        m_changedBuffer = false;
        m_extent.reset();
        m_exact->repeating.forget();
        m_exact->operating.forget();
        m_exact->changing.forgetTaken();
        clearPending();
        return;
    }
    m_editing->noteChange();
    m_changedBuffer = false;
    m_extent.reset();
    clearPending();
}

qsizetype VimEngine::caret() const
{
    // Others may have shortened the text meanwhile.
    return isVisual() ? std::min(m_visualHead, m_view.text().length()) : m_view.selectedRange().location;
}

void VimEngine::takeSelection(TextSelection selection)
{
    if (m_isHandling || takesText()) {
        return;
    }
    const TextRange range = selection.range();
    if (m_exact && !m_exact->commanding.question().isEmpty()) {
        // Who points elsewhere answers no more.
        m_exact->commanding.endQuestions();
        m_view.select(range, selection.caret);
    }
    m_keymap.forget();
    clearPending();
    if (range.isEmpty()) {
        setMode(Mode::normal);
        settleCaret();
        return;
    }
    // Both ends are in what a visual mode selects.
    const qsizetype last = TextBoundaries::previousGrapheme(m_view.text(), range.end());
    const bool isForward = selection.caret >= selection.anchor;
    m_visualAnchor = isForward ? range.location : last;
    m_visualHead = isForward ? last : range.location;
    if (m_exact) {
        m_exact->selecting.begin(Mode::visual, m_visualAnchor, m_visualHead);
        return;
    }
    m_lastPlace = m_visualHead;
    m_desiredColumn = m_visualHead - buffer().lineStart(m_visualHead);
    setMode(Mode::visual);
}

void VimEngine::leaveToNormal()
{
    if (m_exact) {
        m_keymap.forget();
        rememberCommandLine();
        m_commandLine.clear();
        m_view.showOffer(std::nullopt);
        const Mode mode = m_mode;
        if (mode == Mode::insert) {
            m_exact->inserting.leave();
        } else if (isVisual()) {
            m_exact->selecting.leave();
        }
        resetPending();
        setMode(Mode::normal);
        if (mode == Mode::commandLine) {
            moveCaret(m_view.selectedRange().location);
        }
        return;
    }
    if (m_mode == Mode::insert) {
        m_editing->endInsertSession();
        moveCaret(std::max<qsizetype>(caret() - 1, 0));
    }
    m_keymap.forget();
    rememberCommandLine();
    m_commandLine.clear();
    clearPending();
    setMode(Mode::normal);
    moveCaret(m_view.selectedRange().location);
}

// Insert sessions

bool VimEngine::mayInsert(qsizetype length, qsizetype count)
{
    if (length <= longestInsertion / count) {
        return true;
    }
    m_delegate.vimEngineSays(*this, localized(u"Not inserted: it would be more than 32 MB of text"));
    return false;
}

/// A block is filled up to its width.
bool VimEngine::mayPaste(const VimRegisterContents &contents, qsizetype count)
{
    const qsizetype filled = contents.isBlock ? (contents.blockWidth + 1) * contents.text.lineCount() : 0;
    return mayInsert(std::max(contents.text.length(), filled), count);
}

void VimEngine::pauseInsertSession()
{
    if (std::exchange(m_isInUndoGroup, false)) {
        m_view.endUndoGroup();
    }
}

void VimEngine::resumeInsertSession()
{
    if (m_mode == Mode::insert && !std::exchange(m_isInUndoGroup, true)) {
        m_view.beginUndoGroup();
    }
}

// Visual modes

void VimEngine::enterVisual(Mode mode)
{
    m_visualAnchor = caret();
    m_visualHead = m_visualAnchor;
    setMode(mode);
    updateVisualSelection(m_visualHead);
    resetPending();
}

void VimEngine::toggleVisual(Mode mode)
{
    if (m_mode != mode) {
        enterVisual(mode);
        return;
    }
    const qsizetype head = m_visualHead;
    setMode(Mode::normal);
    moveCaret(head);
    resetPending();
}

void VimEngine::updateVisualSelection(qsizetype head)
{
    if (m_exact) {
        m_exact->selecting.select(head);
        return;
    }
    m_visualHead = head;
    const Rope &text = m_view.text();
    const qsizetype low = std::min(m_visualAnchor, head);
    const qsizetype high = std::max(m_visualAnchor, head);
    const TextRange selected = m_mode == Mode::visualLine
                                   ? linewiseRange(low, high)
                                   : wholeCharacters(text, TextRange::between(low, std::min(high + 1, text.length())));
    m_view.select(selected, head);
}
