// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/EditorViewController.h"
#include "Commands/Actions.h"

#include "Editor/ExternalChangeBanner.h"
#include "Editor/LineNumberRulerView.h"
#include "Editor/SpellingPanel.h"
#include "Highlighting/LanguageRegistry.h"
#include "Spelling/SpellChecker.h"
#include "Surroundings.h"
#include "View/ViewFixture.h"

#include <QDropEvent>
#include <QFile>
#include <QMenu>
#include <QMimeData>
#include <QPaintEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

#include <cmath>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class EditorTest : public testing::Test, protected Surroundings {
protected:
    [[nodiscard]] TextDocument &document(const QString &text)
    {
        auto made = std::make_unique<TextDocument>(documents.services(), QString(), TextFile::Contents{.text = Rope(text)});
        return documents.add(std::move(made));
    }
    [[nodiscard]] TextDocument &openFile(const QByteArray &bytes)
    {
        write(bytes);
        return *documents.open({path}, {}).front().document;
    }
    void write(const QByteArray &bytes) const
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    [[nodiscard]] std::unique_ptr<EditorViewController> open(TextDocument &document, QSize size = {600, 400})
    {
        auto editor = std::make_unique<EditorViewController>(services, document);
        QObject::connect(editor.get(), &EditorViewController::activated, [this] { ++focusRequests; });
        QObject::connect(editor.get(), &EditorViewController::stateChanged, [this] { ++stateChanges; });
        QObject::connect(editor.get(), &EditorViewController::filesDropped, [this](const QStringList &paths) { dropped += paths; });
        editor->resize(size);
        editor->show();
        editor->setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(editor.get()));
        pass(Scheduler::Milliseconds(100));
        return editor;
    }
    void pass(Scheduler::Milliseconds time)
    {
        for (int turn = 0; turn < 16; ++turn) {
            QCoreApplication::processEvents();
            scheduler.advance(time / 16);
        }
    }
    [[nodiscard]] static ExternalChangeBanner *banner(const EditorViewController &editor)
    {
        // One that is being taken down is hidden already.
        for (QWidget *child : editor.findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
            if (auto *found = dynamic_cast<ExternalChangeBanner *>(child); found && !found->isHidden()) {
                return found;
            }
        }
        return nullptr;
    }
    [[nodiscard]] static QPushButton *button(const EditorViewController &editor, const QString &title)
    {
        for (QPushButton *found : banner(editor)->findChildren<QPushButton *>()) {
            if (found->text() == title && !found->isHidden()) {
                return found;
            }
        }
        return nullptr;
    }
    /// Of the unit at `offset`, whether it is coloured.
    [[nodiscard]] static bool isColoured(TextDocument &document, qsizetype offset)
    {
        return document.storage().styleAt(offset) != plainStyle;
    }

    QString path = folder.filePath(u"a.c"_s);
    QStringList dropped;
    int focusRequests = 0;
    int stateChanges = 0;
};

QString lines(int count)
{
    QString text;
    for (int line = 1; line <= count; ++line) {
        text += u"int line%1; // a comment of some length, so that it wraps in a narrow view\n"_s.arg(line);
    }
    return text;
}

} // namespace

TEST_F(EditorTest, TwoEditorsOfADocumentShareTextAndHistoryOnly)
{
    TextDocument &shared = document(lines(500));
    const auto one = open(shared, {300, 300});
    const auto other = open(shared, {700, 400});
    one->textView().setSelection(TextSelection::at(shared.storage().text().lineStart(300)), TextView::Reveal::center);
    const double scroll = one->textView().scrollOffset();
    const qsizetype caret = one->textView().selection().caret;
    ASSERT_GT(scroll, 0);
    other->textView().setSelection(TextSelection::at(0));
    sendKeys(other->textView(), u"x<CR>y"_s);
    EXPECT_EQ(one->textView().selection().caret, caret + 3);
    EXPECT_GT(one->textView().scrollOffset(), scroll);
    const QPoint before = one->textView().caretRectangle().topLeft();
    sendKeys(other->textView(), u"<CR><CR>"_s);
    EXPECT_EQ(one->textView().caretRectangle().topLeft(), before);
    one->textView().undo();
    EXPECT_TRUE(shared.storage().string().startsWith(u"int line1"));
    EXPECT_FALSE(shared.undoManager().canUndo());
}

TEST_F(EditorTest, FollowsThePreferences)
{
    TextDocument &text = document(u"a\tb\n"_s);
    const auto editor = open(text);
    EditorTextView &view = editor->textView();
    EXPECT_EQ(view.wrapMode() == TextView::WrapMode::viewWidth, preferences.value(Settings::wrapLines));
    preferences.set(Settings::wrapLines, false);
    EXPECT_EQ(view.horizontalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    preferences.set(Settings::wrapLines, true);
    EXPECT_EQ(view.horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    const int width = view.viewport()->width();
    preferences.set(Settings::showLineNumbers, false);
    EXPECT_EQ(view.viewport()->width(), width + view.ruler().thickness());
    preferences.set(Settings::showLineNumbers, true);
    EXPECT_EQ(view.viewport()->width(), width);
    preferences.set(Settings::tabWidth, 3);
    preferences.set(Settings::insertSpaces, true);
    EXPECT_EQ(view.indentation().width, 3);
    // A Makefile wants its tabs whatever the user likes.
    text.setLanguage(LanguageRegistry::withID(u"makefile").value());
    EXPECT_EQ(view.indentation().unit, Indentation::Unit::tab);
    const Language &language = text.language();
    EXPECT_EQ(view.indentation().width, language.defaultIndentWidth().value_or(3));
    EXPECT_TRUE(view.state(Actions::toggleComment).isEnabled);
    preferences.set(Settings::themeName, u"Solarized Dark"_s);
    EXPECT_EQ(view.colors().background, QColor::fromRgb(Theme::solarizedDark().background));
    preferences.set(Settings::highlightCurrentLine, false);
    EXPECT_FALSE(view.colors().currentLine.isValid());
    preferences.set(Settings::fontSize, 20);
    EXPECT_EQ(view.textFont().pointSizeF(), 20);
}

TEST_F(EditorTest, ColoursWhatIsSeenOnceThingsAreQuiet)
{
    TextDocument &text = document(lines(20000));
    text.setLanguage(LanguageRegistry::withID(u"c").value());
    const auto editor = open(text);
    EXPECT_TRUE(isColoured(text, 0));
    const qsizetype far = text.storage().text().lineStart(15000);
    EXPECT_FALSE(isColoured(text, far));
    editor->textView().setSelection(TextSelection::at(far), TextView::Reveal::center);
    scheduler.advance(EditorViewController::highlightDelay - Scheduler::Milliseconds(1));
    EXPECT_FALSE(isColoured(text, far));
    scheduler.advance(Scheduler::Milliseconds(1));
    EXPECT_TRUE(isColoured(text, far));
    // Half a view more, above and below.
    EXPECT_TRUE(isColoured(text, text.storage().text().lineStart(14992)));
}

TEST_F(EditorTest, ComesBackToCaretAndScrollPosition)
{
    TextDocument &text = document(lines(500));
    auto editor = open(text);
    const qsizetype caret = text.storage().text().lineStart(200) + 4;
    editor->textView().setSelection({caret + 5, caret}, TextView::Reveal::center);
    const double scroll = editor->textView().scrollOffset();
    editor->saveViewState();
    editor.reset();
    editor = open(text);
    EXPECT_EQ(editor->textView().selection(), TextSelection::at(caret));
    EXPECT_EQ(editor->textView().scrollOffset(), scroll);
    editor->scrollToLine(1000);
    EXPECT_EQ(editor->textView().selection(), TextSelection::at(text.storage().length()));
    editor->scrollToLine(3);
    EXPECT_EQ(editor->textView().selection(), TextSelection::at(text.storage().text().lineStart(2)));
}

TEST_F(EditorTest, AGeneratedTextCannotBeEdited)
{
    TextDocument &keys = documents.add(TextDocument::generated(documents.services(), u"Keys"_s, u"text"_s, Language::plainText()));
    const auto editor = open(keys);
    sendKeys(editor->textView(), u"x<CR><BS><Tab>"_s);
    EXPECT_EQ(keys.storage().string(), u"text"_s);
}

TEST_F(EditorTest, TheBannerSaysWhatHappenedAndDoesItsWork)
{
    TextDocument &text = openFile("one");
    const auto editor = open(text);
    EXPECT_FALSE(banner(*editor));
    sendKeys(editor->textView(), u"my "_s);
    write("their version");
    pass(Scheduler::Milliseconds(1600));
    ASSERT_TRUE(banner(*editor));
    EXPECT_EQ(banner(*editor)->accessibleName(), u"“a.c” changed on disk and has unsaved edits here."_s);
    const QPointer<QPushButton> keep = button(*editor, u"Keep Mine"_s);
    const QPushButton *reload = button(*editor, u"Reload from Disk"_s);
    const QSize usual = editor->size();
    for (const int width : {170, 330, 800}) {
        editor->resize(width, 300);
        pass(Scheduler::Milliseconds(100));
        for (const QPushButton *shown : {static_cast<const QPushButton *>(keep), reload}) {
            EXPECT_GE(shown->width(), shown->sizeHint().width()) << "cut off at " << width;
            EXPECT_TRUE(banner(*editor)->rect().contains({shown->mapTo(banner(*editor), QPoint()), shown->size()})) << width;
        }
        const bool isBeside = banner(*editor)->height() < 2 * keep->height();
        EXPECT_EQ(isBeside, width == 800) << width << ": the sentence would be too short to tell what happened";
    }
    editor->resize(usual);
    keep->setFocus();
    text.storage().apply({{0, 2}, u"My"});
    write("their other version");
    pass(Scheduler::Milliseconds(1600));
    ASSERT_EQ(button(*editor, u"Keep Mine"_s), keep) << "a button that is being pressed stays";
    EXPECT_TRUE(keep->hasFocus());
    keep->click();
    EXPECT_FALSE(banner(*editor));
    EXPECT_EQ(text.storage().string(), u"My one"_s);
    EXPECT_TRUE(text.isDirty());

    write("their second version");
    pass(Scheduler::Milliseconds(1600));
    button(*editor, u"Reload from Disk"_s)->click();
    EXPECT_FALSE(banner(*editor));
    EXPECT_EQ(text.storage().string(), u"their second version"_s);
    EXPECT_FALSE(text.isDirty());

    QFile::remove(path);
    pass(Scheduler::Milliseconds(1600));
    ASSERT_TRUE(banner(*editor));
    EXPECT_EQ(banner(*editor)->accessibleName(), u"“a.c” was deleted or moved."_s);
    const auto second = open(text);
    EXPECT_TRUE(banner(*second));
    button(*second, u"Dismiss"_s)->click();
    EXPECT_FALSE(banner(*editor));
    EXPECT_TRUE(text.isDirty());

    write("back");
    pass(Scheduler::Milliseconds(1600));
    QFile::remove(path);
    pass(Scheduler::Milliseconds(1600));
    button(*editor, u"Save Again"_s)->click();
    EXPECT_TRUE(QFile::exists(path));
    EXPECT_FALSE(banner(*editor));
    QFile::remove(path);
    pass(Scheduler::Milliseconds(1600));
    folder.remove();
    button(*editor, u"Save Again"_s)->click();
    EXPECT_EQ(presenter.alerts().size(), 1U);
    EXPECT_TRUE(banner(*editor));
}

TEST_F(EditorTest, TheRulerIsAsWideAsItsLargestNumber)
{
    TextDocument &text = document(QString());
    const auto editor = open(text);
    LineNumberRulerView &ruler = editor->textView().ruler();
    const int three = ruler.thickness();
    const auto insert = [&text](int count) { text.storage().apply({{0, 0}, QString(count, u'\n')}); };
    insert(998);
    EXPECT_EQ(ruler.thickness(), three);
    insert(1);
    EXPECT_GT(ruler.thickness(), three);
    EXPECT_EQ(editor->textView().viewport()->x(), ruler.thickness());
    text.storage().apply({{0, 1}, QStringView()});
    EXPECT_EQ(ruler.thickness(), three);
    ruler.setExplicitNumbers(LineNumberRulerView::Numbers{[](qsizetype line) { return std::optional<qint64>(12344 + line); }, 12345});
    EXPECT_EQ(ruler.lineCount(), 12345);
    EXPECT_GT(ruler.thickness(), three);
    ruler.setExplicitNumbers(std::nullopt);
    EXPECT_EQ(ruler.lineCount(), text.storage().text().lineCount());
}

TEST_F(EditorTest, AClickOnANumberSelectsItsLine)
{
    TextDocument &text = document(lines(20));
    preferences.set(Settings::wrapLines, false);
    const auto editor = open(text);
    EditorTextView &view = editor->textView();
    const double height = view.layoutManager().rowHeight();
    const auto at = [&](int line) { return QPoint(5, int(view.textViewport().insets().vertical + (line - 0.5) * height)); };
    const Rope &rope = text.storage().text();
    QTest::mousePress(&view.ruler(), Qt::LeftButton, {}, at(3));
    EXPECT_EQ(view.selection(), (TextSelection{rope.lineStart(2), rope.lineStart(3)}));
    QTest::mouseMove(&view.ruler(), at(5));
    EXPECT_EQ(view.selection(), (TextSelection{rope.lineStart(2), rope.lineStart(5)}));
    QTest::mouseMove(&view.ruler(), at(1));
    EXPECT_EQ(view.selection(), (TextSelection{rope.lineStart(3), 0}));
    QTest::mouseRelease(&view.ruler(), Qt::LeftButton, {}, at(1));

    QTest::mouseClick(&view.ruler(), Qt::LeftButton, Qt::ShiftModifier, at(4));
    EXPECT_EQ(view.selection(), (TextSelection{rope.lineStart(2), rope.lineStart(4)})) << "from where the selection began";

    QTest::mousePress(&view.ruler(), Qt::LeftButton, {}, at(3));
    QTest::mouseMove(&view.ruler(), QPoint(5, view.ruler().height() + 20));
    pass(Scheduler::Milliseconds(1000));
    EXPECT_EQ(view.selection(), (TextSelection{rope.lineStart(2), rope.length()})) << "scrolls while the pointer rests outside";
    EXPECT_GT(view.scrollOffset(), 0);
    QTest::mouseRelease(&view.ruler(), Qt::LeftButton, {}, QPoint(5, view.ruler().height() + 20));

    QInputMethodEvent composing(u"´"_s, {});
    view.setSelection(TextSelection::at(0));
    QApplication::sendEvent(&view, &composing);
    QTest::mouseClick(&view.ruler(), Qt::LeftButton, {}, at(10));
    EXPECT_FALSE(view.isComposing()) << "what was composed stays where it is";
}

TEST_F(EditorTest, NoDropCaretStaysWhenADragIsOfFilesAgain)
{
    const auto editor = open(openFile("one two"));
    EditorTextView &view = editor->textView();
    view.setSelection(TextSelection::at(7));
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(path)});
    const auto drawn = [&] { return view.viewport()->grab().toImage(); };
    const auto drag = [&](Qt::KeyboardModifiers modifiers) {
        QDragMoveEvent move(QPoint(20, 15), Qt::CopyAction, &files, Qt::LeftButton, modifiers);
        QApplication::sendEvent(view.viewport(), &move);
    };
    QDragEnterEvent enter(QPoint(20, 15), Qt::CopyAction, &files, Qt::LeftButton, {});
    QApplication::sendEvent(view.viewport(), &enter);
    const QImage before = drawn();
    drag(Qt::AltModifier);
    EXPECT_NE(drawn(), before);
    drag({});
    EXPECT_EQ(drawn(), before);
    drag(Qt::AltModifier);
    QDropEvent drop(QPoint(20, 15), Qt::CopyAction, &files, Qt::LeftButton, {});
    QApplication::sendEvent(view.viewport(), &drop);
    EXPECT_EQ(drawn(), before);
    EXPECT_EQ(dropped, QStringList(path));
}

TEST_F(EditorTest, MarkedTextCanBeReadInEveryTheme)
{
    const auto contrast = [](quint32 one, quint32 other) {
        const auto luminance = [](quint32 color) {
            const auto linear = [](double part) { return part <= 0.04 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4); };
            const QColor rgb = QColor::fromRgb(color);
            return 0.2126 * linear(rgb.redF()) + 0.7152 * linear(rgb.greenF()) + 0.0722 * linear(rgb.blueF()) + 0.05;
        };
        const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
        return lighter / darker;
    };
    const auto editor = open(document(QString()));
    for (const Theme &theme : Theme::all()) {
        editor->textView().setTheme(theme, EditorTextView::CurrentLine::plain);
        const quint32 mark = editor->textView().colors().mark.rgb();
        EXPECT_GT(contrast(mark, theme.background), 1.2) << theme.name.toUtf8().data();
        for (const quint32 color : theme.colors) {
            if (color != 0) {
                EXPECT_GT(contrast(color, mark), 0.6 * contrast(color, theme.background))
                    << theme.name.toUtf8().data() << std::hex << color;
            }
        }
    }
}

TEST_F(EditorTest, ControlsBesideTheTextAreAsDarkAsIt)
{
    const auto editor = open(document(QString()));
    const auto *bar = editor->findChild<QScrollBar *>();
    const auto isDark = [&] { return bar->palette().color(QPalette::Button).lightness() < 128; };
    for (const Theme &theme : Theme::all()) {
        preferences.set(Settings::themeName, theme.name.toString());
        EXPECT_EQ(isDark(), theme.isDark) << theme.name.toUtf8().data();
    }
}

TEST_F(EditorTest, TypingPaintsOnlyWhatItChanges)
{
    class PaintCounter final : public QObject {
    public:
        int paints = 0;
        int height = 0;
        bool eventFilter(QObject * /*watched*/, QEvent *event) override
        {
            if (event->type() == QEvent::Paint) {
                ++paints;
                height = std::max(height, static_cast<QPaintEvent *>(event)->region().boundingRect().height());
            }
            return false;
        }
    } counter, textCounter;
    TextDocument &text = document(lines(100));
    preferences.set(Settings::wrapLines, false);
    const auto editor = open(text);
    editor->textView().ruler().installEventFilter(&counter);
    editor->textView().viewport()->installEventFilter(&textCounter);
    sendKeys(editor->textView(), u"abc"_s);
    pass(Scheduler::Milliseconds(10));
    EXPECT_EQ(counter.paints, 0);
    EXPECT_GT(textCounter.paints, 0);
    EXPECT_LE(textCounter.height, 2 * editor->textView().layoutManager().rowHeight()) << "a letter paints its row";
    sendKeys(editor->textView(), u"<CR>"_s);
    pass(Scheduler::Milliseconds(10));
    EXPECT_EQ(counter.paints, 1);
    EXPECT_GT(stateChanges, 0);
    EXPECT_GT(focusRequests, 0);
}

TEST_F(EditorTest, ChecksSpellingWhereThereIsAChecker)
{
    TextDocument &text = document(u"the wrod\n"_s);
    EXPECT_FALSE(open(text)->state(Actions::checkSpelling).isEnabled);

    SpellChecker checker(workers, {{QStringLiteral(QUILLET_TEST_DATA "/spelling")}, {u"en"_s}, {}});
    SpellingPanel panel(checker);
    services.spellChecker = &checker;
    services.spellingPanel = &panel;
    const auto one = open(text);
    const auto other = open(text);
    one->textView().perform(Actions::toggleContinuousSpellChecking);
    EXPECT_EQ(one->textView().state(Actions::toggleContinuousSpellChecking).checkMark, CheckMark::on);
    EXPECT_EQ(other->textView().state(Actions::toggleContinuousSpellChecking).checkMark, CheckMark::none);
    EXPECT_TRUE(other->textView().perform(Actions::checkSpelling));
    pass(Scheduler::Milliseconds(100));
    EXPECT_EQ(other->textView().selectedText(), u"wrod");
    QMenu menu;
    emit other->textView().contextMenuRequested(&menu, 5);
    EXPECT_FALSE(menu.isEmpty());
}
