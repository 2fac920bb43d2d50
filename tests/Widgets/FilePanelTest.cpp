// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/FilePath.h"
#include "SessionBus.h"
#include "TestFolder.h"
#include "Widgets/WidgetAlertPresenter.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QFileDialog>
#include <QTest>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;
using testing::ElementsAre;

namespace {

/// Keeps the questions; what is answered is up to the test.
class FakeChooser final : public QDBusVirtualObject {
public:
    std::vector<QDBusMessage> questions;
    QStringList closed;

    explicit FakeChooser(const QDBusConnection &bus) : m_bus(bus)
    {
        m_bus.registerVirtualObject(u"/org/freedesktop/portal/desktop"_s, this, QDBusConnection::SubPath);
        m_bus.registerService(u"org.freedesktop.portal.Desktop"_s);
    }
    QString introspect(const QString & /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage &question, const QDBusConnection & /*bus*/) override
    {
        if (question.member() == "Close"_L1) {
            closed << question.path();
            return true;
        }
        questions.push_back(question);
        return m_bus.send(question.createReply(QVariant::fromValue(QDBusObjectPath(handle()))));
    }
    [[nodiscard]] QVariantMap options() const { return qdbus_cast<QVariantMap>(questions.back().arguments().at(2)); }
    [[nodiscard]] QString handle() const
    {
        const QString sender = questions.back().service().mid(1).replace(u'.', u'_');
        return u"/org/freedesktop/portal/desktop/request/%1/%2"_s.arg(sender, options().value(u"handle_token"_s).toString());
    }
    void answer(uint response, const QStringList &addresses = {})
    {
        QDBusMessage signal = QDBusMessage::createSignal(handle(), u"org.freedesktop.portal.Request"_s, u"Response"_s);
        signal << response << QVariantMap{{u"uris"_s, addresses}};
        m_bus.send(signal);
    }

private:
    QDBusConnection m_bus;
};

QFileDialog *panelIn(const QWidget &window)
{
    return window.findChild<QFileDialog *>();
}

} // namespace

TEST(FilePanel, IsThePortalsWhereThereIsOne)
{
    const SessionBus session;
    const TestFolder folder;
    QWidget window;
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    const QDBusConnection own = session.connection(u"own"_s);
    WidgetAlertPresenter presenter([&own] { return std::make_unique<FileChooserPortal>(own); });
    std::vector<QStringList> answers;
    const auto note = [&answers](const QStringList &paths) { answers.push_back(paths); };
    const auto hasAnswers = [&answers](size_t count) { return QTest::qWaitFor([&] { return answers.size() == count; }); };

    // Nobody there: the toolkit's own comes on the screen.
    presenter.present(OpenPanel{.startFolder = folder.path({})}, &window, note);
    ASSERT_TRUE(QTest::qWaitFor([&] { return panelIn(window)->isVisible() && !panelIn(window)->testAttribute(Qt::WA_DontShowOnScreen); }));
    EXPECT_TRUE(answers.empty());
    panelIn(window)->reject();
    EXPECT_THAT(answers, ElementsAre(QStringList()));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    FakeChooser portal(session.connection(u"portal"_s));
    const auto asks = [&portal](size_t count) { return QTest::qWaitFor([&] { return portal.questions.size() == count; }); };
    presenter.present(OpenPanel{.choice = OpenPanel::Choice::files, .title = u"Open"_s, .startFolder = folder.path({}), .prompt = u"Add"_s},
                      &window, note);
    ASSERT_TRUE(asks(1));
    EXPECT_TRUE(panelIn(window)->testAttribute(Qt::WA_DontShowOnScreen));
    EXPECT_EQ(QApplication::activeModalWidget(), panelIn(window)) << "its window waits";
    EXPECT_EQ(portal.questions[0].member(), u"OpenFile"_s);
    EXPECT_EQ(portal.questions[0].arguments().at(1), u"Open"_s);
    EXPECT_EQ(portal.options().value(u"multiple"_s), true);
    EXPECT_EQ(portal.options().value(u"accept_label"_s), u"Add"_s);
    EXPECT_EQ(portal.options().value(u"current_folder"_s).toByteArray(), folder.path({}).toUtf8() + '\0');
    portal.answer(0, {u"file:///a%20b/%FF.txt"_s, u"sftp://elsewhere/c"_s, u"file:///d"_s});
    ASSERT_TRUE(hasAnswers(2));
    ASSERT_EQ(answers[1].size(), 2) << "what has no path is left out";
    EXPECT_EQ(encodedPath(answers[1][0]), "/a b/\xFF.txt") << "whatever its bytes";
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    std::optional<QString> saved = u"untouched"_s;
    folder.put(u"notes.txt"_s, "");
    presenter.present(SavePanel{.suggestedName = u"notes.txt"_s}, &window, [&](const std::optional<QString> &path) {
        saved = path;
        answers.emplace_back();
    });
    ASSERT_TRUE(asks(2));
    EXPECT_EQ(portal.questions[1].member(), u"SaveFile"_s);
    EXPECT_EQ(portal.options().value(u"current_name"_s), u"notes.txt"_s);
    portal.answer(0, {u"file://"_s + folder.path(u"notes.txt"_s)});
    ASSERT_TRUE(hasAnswers(3)) << "the portal has asked already";
    EXPECT_EQ(saved, folder.path(u"notes.txt"_s));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    presenter.present(OpenPanel{.choice = OpenPanel::Choice::folder}, &window, note);
    ASSERT_TRUE(asks(3));
    EXPECT_EQ(portal.options().value(u"directory"_s), true);
    portal.answer(1);
    ASSERT_TRUE(hasAnswers(4));
    EXPECT_TRUE(answers[3].isEmpty());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    presenter.present(OpenPanel{}, &window, note);
    ASSERT_TRUE(asks(4));
    delete panelIn(window);
    EXPECT_TRUE(QTest::qWaitFor([&] { return portal.closed == QStringList(portal.handle()); })) << "it goes with its window";
}
