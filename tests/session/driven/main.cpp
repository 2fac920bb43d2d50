// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// The program without a display: it does what the lines of its standard input say, and answers each with a line of JSON when it is done.
//
//     type TEXT        keys for the text in front, one by one; "\n" is a line break
//     keys CTRL+N      one chord, for the window in front
//     do SELECTOR      an action, as a menu sends it
//     open PATH
//     front NUMBER     that window comes to the front; from 0
//     answer WORDS     presses that button of the question that is asked, or gives the file panel this path
//     state            what there is to be seen
#include "App/AppDelegate.h"
#include "App/Program.h"
#include "Commands/Actions.h"
#include "Model/TextDocument.h"
#include "View/FirstResponder.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QMessageBox>
#include <QSocketNotifier>
#include <QTest>

#include <array>
#include <cstdio>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

class Driver final {
public:
    explicit Driver(Program &program) : m_program(program)
    {
        QObject::connect(&m_input, &QSocketNotifier::activated, &m_input, [this] { readLines(); });
    }

private:
    struct Command {
        QStringView name;
        void (Driver::*run)(const QString &rest);
    };

    void readLines()
    {
        QByteArray bytes(4096, Qt::Uninitialized);
        const ssize_t count = ::read(STDIN_FILENO, bytes.data(), size_t(bytes.size()));
        if (count <= 0) {
            m_input.setEnabled(false);
            QCoreApplication::exit(3);
            return;
        }
        m_unread += bytes.first(count);
        for (qsizetype end = m_unread.indexOf('\n'); end >= 0; end = m_unread.indexOf('\n')) {
            obey(QString::fromUtf8(m_unread.first(end)));
            m_unread = m_unread.sliced(end + 1);
        }
    }
    void obey(const QString &line)
    {
        static constexpr auto commands = std::to_array<Command>({
            {u"type", &Driver::type},
            {u"keys", &Driver::press},
            {u"do", &Driver::perform},
            {u"open", &Driver::open},
            {u"front", &Driver::bringToFront},
            {u"answer", &Driver::answerQuestion},
            {u"state", &Driver::reportState},
        });
        const QString name = line.section(u' ', 0, 0);
        const auto command = std::ranges::find(commands, QStringView(name), &Command::name);
        if (command == commands.end()) {
            qFatal("unknown command: %s", qPrintable(line));
        }
        (this->*command->run)(line.section(u' ', 1));
        handleEvents();
        const QByteArray answer = QJsonDocument(std::exchange(m_answer, {})).toJson(QJsonDocument::Compact) + '\n';
        std::fwrite(answer.constData(), 1, size_t(answer.size()), stdout);
        std::fflush(stdout);
    }
    /// Events are handled between commands, as between keys; more commands have to wait.
    static void handleEvents() { QCoreApplication::processEvents(QEventLoop::ExcludeSocketNotifiers); }

    void type(const QString &text)
    {
        QString keys = text;
        keys.replace("\\n"_L1, "\r"_L1);
        for (const QChar character : keys) {
            const int key = character == u'\r' ? int(Qt::Key_Return) : int(character.toUpper().unicode());
            QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, QString(character));
            QApplication::sendEvent(&window().workspace().currentEditor()->textView(), &event);
            handleEvents();
        }
    }
    void press(const QString &chord) { QTest::keySequence(window().windowHandle(), QKeySequence::fromString(chord)); }
    void perform(const QString &selector)
    {
        const QByteArray name = selector.toLatin1();
        const Action *action = Actions::named({name.constData(), size_t(name.size())});
        std::ignore = action && window().firstResponder().perform(*action);
    }
    void open(const QString &path) { window().workspace().open({path}); }
    void bringToFront(const QString &number) { m_program.delegate().windows().at(number.toUInt())->comeToFront(); }
    void answerQuestion(const QString &words)
    {
        QDialog *dialog = question();
        if (auto *panel = qobject_cast<QFileDialog *>(dialog)) {
            panel->findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(words);
            dialog->accept();
            return;
        }
        const auto buttons = dialog ? dialog->findChildren<QAbstractButton *>() : QList<QAbstractButton *>();
        const auto button = std::ranges::find_if(buttons, [&](const QAbstractButton *each) { return each->text().remove(u'&') == words; });
        if (button == buttons.end()) {
            qFatal("no such button: %s", qPrintable(words));
        }
        (*button)->click();
    }
    void reportState(const QString &)
    {
        QJsonArray windows;
        for (MainWindowController *each : m_program.delegate().windows()) {
            WorkspaceViewController &workspace = each->workspace();
            QJsonObject texts;
            for (const auto &document : workspace.paneLayout().documents()) {
                texts.insert(document->id().toString(QUuid::WithoutBraces), stateOf(*document));
            }
            EditorViewController &editor = *workspace.currentEditor();
            const TextRange selection = editor.textView().selection().range();
            if (each == &window()) {
                m_answer.insert("front"_L1, windows.size());
            }
            windows << QJsonObject{{"texts"_L1, texts},
                                   {"tabCount"_L1, workspace.paneLayout().tabCount()},
                                   {"current"_L1, editor.document().id().toString(QUuid::WithoutBraces)},
                                   {"range"_L1, QJsonArray{selection.location, selection.length}}};
        }
        m_answer.insert("windows"_L1, windows);
        if (const QDialog *dialog = question()) {
            const auto *box = qobject_cast<const QMessageBox *>(dialog);
            m_answer.insert("question"_L1, box ? box->text() : dialog->windowTitle());
        }
    }

    [[nodiscard]] MainWindowController &window() const { return *m_program.delegate().frontmostWindow(); }
    [[nodiscard]] static QDialog *question()
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *dialog = qobject_cast<QDialog *>(widget); dialog && dialog->isVisible()) {
                return dialog;
            }
        }
        return nullptr;
    }
    [[nodiscard]] static QJsonObject stateOf(const TextDocument &document)
    {
        return {{"path"_L1, document.path()},
                {"isDirty"_L1, document.isDirty()},
                {"isConflicted"_L1, document.externalState() == TextDocument::ExternalState::conflicted},
                {"isUnsaved"_L1, document.hasUnsavedText()},
                {"isOfInsertions"_L1, document.origin && document.origin->kind == TextOrigin::Kind::insertions},
                {"origin"_L1, document.origin ? document.origin->path : QString()},
                {"text"_L1, document.storage().string()}};
    }

    Program &m_program;
    QSocketNotifier m_input{STDIN_FILENO, QSocketNotifier::Read};
    QByteArray m_unread;
    QJsonObject m_answer;
};

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    Program program(*qApp, {});
    const Driver driver(program);
    CommandLine line;
    for (const QString &path : QApplication::arguments().mid(1)) {
        line.files.push_back({.path = path});
    }
    return program.run(line);
}
