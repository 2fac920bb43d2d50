// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Print/Printing.h"

#include "Base/FaultyCalls.h"
#include "Highlighting/LanguageRegistry.h"
#include "Print/PagePainter.h"
#include "TestFolder.h"
#include "Text/RandomText.h"

#include <QPainter>
#include <QPrinter>
#include <QProcess>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

PrintedText printed(const QString &text, const QString &language = u"c"_s)
{
    return {.text = Rope(text),
            .range = {0, text.size()},
            .language = LanguageRegistry::withID(language).value_or(Language::plainText()),
            .title = u"a <b> & c.cpp"_s,
            .font = QFont(u"DejaVu Sans Mono"_s),
            .date = u"26 November 2026"_s};
}

/// What a browser would show of a page that has nothing but spans in it.
QString textOfHtml(const QString &html)
{
    const auto start = html.indexOf(u"<pre>\n"_s) + 6;
    QString text = html.sliced(start, html.indexOf(u"</pre>"_s) - start);
    text.remove(QRegularExpression(u"<span [^<>]*>|</span>"_s));
    return text.replace(u"&lt;"_s, u"<"_s).replace(u"&gt;"_s, u">"_s).replace(u"&quot;"_s, u"\""_s).replace(u"&amp;"_s, u"&"_s);
}

class PrintingTest : public testing::Test, protected TestFolder {
protected:
    QString html(const PrintedText &text, const PrintStyle &style)
    {
        EXPECT_TRUE(writeHtml(text, style, path(u"page.html"_s), FileCalls::system(), stopping.get_token(), progress));
        EXPECT_EQ(progress.done(), 1000);
        return QString::fromUtf8(read(u"page.html"_s));
    }
    Result<void> pdf(const PrintedText &text, const PrintStyle &style, const PageOrder &order = {}, FileCalls &files = FileCalls::system())
    {
        const QPageLayout a4(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(40, 40, 40, 40));
        return writePdf(text, style, a4, order, path(u"text.pdf"_s), files, stopping.get_token(), progress);
    }
    /// What others find in the file, with a form feed behind each page.
    [[nodiscard]] QString textOfPdf() const
    {
        QProcess reader;
        reader.start(u"pdftotext"_s, {u"-layout"_s, u"-enc"_s, u"UTF-8"_s, path(u"text.pdf"_s), u"-"_s});
        EXPECT_TRUE(reader.waitForFinished() && reader.exitCode() == 0) << reader.readAllStandardError().toStdString();
        return QString::fromUtf8(reader.readAllStandardOutput());
    }

    std::stop_source stopping;
    PrintProgress progress;
};

} // namespace

TEST_F(PrintingTest, APdfHoldsTheText)
{
    QStringList lines;
    for (int i = 0; i < 150; ++i) {
        lines << u"int value%1 = \"Grüße, Ωμέγα & <b>\"; // ﬁn"_s.arg(i);
    }
    ASSERT_TRUE(pdf(printed(lines.join(u"\r\n"_s)), {.hasHeader = false}));
    EXPECT_EQ(progress.done(), 1000);
    QStringList found = textOfPdf().remove(u'\f').split(u'\n', Qt::SkipEmptyParts);
    EXPECT_EQ(found, lines);
    EXPECT_TRUE(read(u"text.pdf"_s).startsWith("%PDF-"));
    EXPECT_EQ(names(), QStringList{u"text.pdf"_s});
}

TEST_F(PrintingTest, PagesHaveHeadersNumbersAndTheOrderWanted)
{
    ASSERT_TRUE(pdf(printed(u"x\n"_s.repeated(200)), {.hasLineNumbers = true}, {.first = 2, .last = 3, .copies = 2, .isReversed = true}));
    const QStringList pages = textOfPdf().split(u'\f', Qt::SkipEmptyParts);
    ASSERT_EQ(pages.size(), 4);
    for (int i = 0; i < 4; ++i) {
        const int page = i % 2 == 0 ? 3 : 2;
        const QStringList lines = pages[i].split(u'\n', Qt::SkipEmptyParts);
        EXPECT_TRUE(lines[0].startsWith(u"a <b> & c.cpp"_s)) << lines[0].toStdString();
        EXPECT_TRUE(lines[0].contains(u"26 November 2026"_s)) << lines[0].toStdString();
        EXPECT_TRUE(lines[0].endsWith(u"Page %1 of 4"_s.arg(page))) << lines[0].toStdString();
        EXPECT_EQ(lines[1].simplified(), u"%1 x"_s.arg((lines.size() - 1) * (page - 1) + 1));
    }
}

TEST_F(PrintingTest, APrinterGetsThePagesChosenForIt)
{
    QPrinter printer;
    printer.setOutputFileName(path(u"text.pdf"_s));
    printer.setFromTo(2, 2);
    const PrintedText text = printed(u"x\n"_s.repeated(100) + u"end"_s);
    ASSERT_TRUE(printText(text, {}, printer, stopping.get_token(), progress));
    EXPECT_EQ(textOfPdf().count(u'\f'), 1);
    EXPECT_TRUE(textOfPdf().simplified().endsWith(u"x x end"_s)) << textOfPdf().toStdString();
    stopping.request_stop();
    EXPECT_FALSE(printText(text, {}, printer, stopping.get_token(), progress));
}

TEST_F(PrintingTest, PageOrders)
{
    using Pages = std::vector<int>;
    EXPECT_EQ((PageOrder{.copies = 2, .isCollated = false}).pages(2), (Pages{1, 1, 2, 2}));
    EXPECT_EQ((PageOrder{.first = 7, .last = 9}).pages(3), (Pages{3}));
    EXPECT_EQ((PageOrder{.last = 2}).pages(3), (Pages{1, 2}));
}

TEST_F(PrintingTest, ColorsAreThoseOfALightThemeOrNone)
{
    const auto colors = [](bool hasColors) {
        PagePainter page(printed(u"return \"text\"; // comment"_s), {.hasHeader = false, .hasColors = hasColors}, QSizeF(6000, 1200),
                         PaperColors::Slab::pages);
        QImage image(1500, 300, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::TextAntialiasing, false);
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.scale(0.25, 0.25);
        EXPECT_EQ(page.paint(painter, 0, 1, 1), page.layout().end());
        QSet<quint32> found;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                found << image.pixel(x, y);
            }
        }
        return found;
    };
    const QSet<quint32> uncolored = colors(false);
    EXPECT_TRUE(uncolored.contains(0xFF000000));
    EXPECT_TRUE(std::ranges::all_of(uncolored, [](quint32 color) { return qGray(color) == qRed(color) && qRed(color) == qBlue(color); }));
    const QSet<quint32> colored = colors(true);
    for (const Scope scope : {Scope::keyword, Scope::string, Scope::comment}) {
        EXPECT_TRUE(colored.contains(*Theme::light().color(scope) | 0xFF000000)) << rawValue(scope).toString().toStdString();
    }
}

TEST_F(PrintingTest, AWebPageHoldsTheText)
{
    Random random(3);
    for (int round = 0; round < 30; ++round) {
        QString text =
            QString::fromStdU16String(random.text(random.below(2000))).replace(u'z', random.of(std::vector{u"<b>"_s, u"&amp;"_s, u"/*"_s}));
        // What the editor shows stand-ins for is not text for others either.
        text.removeIf([](QChar unit) { return unit.isSurrogate() || unit == QChar(0x2028); });
        const PrintStyle style{.hasLineNumbers = random.oneIn(2), .hasColors = random.oneIn(2)};
        const QString page = html(printed(text, random.of(std::vector{u"c"_s, u"markdown"_s})), style);
        ASSERT_EQ(textOfHtml(page).toStdString(), QString(text).replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n').toStdString())
            << page.toStdString();
        ASSERT_EQ(page.contains(u"data-line=\"1\""_s), style.hasLineNumbers && !text.isEmpty());
    }
    const QString page = html(printed(u"\nreturn 1; /* a\nb */ \U0001F600\a"_s), {});
    EXPECT_TRUE(page.contains(u"<meta charset=\"utf-8\">"_s));
    EXPECT_TRUE(page.contains(u"<title>a &lt;b&gt; &amp; c.cpp</title>"_s));
    EXPECT_TRUE(page.contains(u"<pre>\n\n<span class=\"keyword\">return</span>"_s)) << page.toStdString();
    EXPECT_TRUE(page.contains(u"<span class=\"comment\">/* a</span>\n<span class=\"comment\">b */</span> \U0001F600\u2407"_s));
    EXPECT_FALSE(html(printed(u"return"_s), {.hasColors = false}).contains(u"class="_s));
    const QString longLine = QString(0xFFFF, u'x') + u"\U0001F600 end"_s;
    EXPECT_EQ(textOfHtml(html(printed(longLine), {})), longLine) << "no character is cut";
}

/// However far a text is from its start, its colours are those of the text as a whole.
TEST_F(PrintingTest, ColorsOfALongText)
{
    const QString line = u"return 1; // a comment that makes the line longer\n"_s;
    const QString page = html(printed(line.repeated(30'000)), {});
    EXPECT_EQ(page.count(u"<span class=\"keyword\">return</span>"_s), 30'000);
    EXPECT_EQ(page.count(u"<span class=\"comment\">"_s), 30'000);
}

TEST_F(PrintingTest, WhatFailsOrIsCancelledLeavesTheOldFile)
{
    put(u"text.pdf"_s, "old");
    put(u"page.html"_s, "old");
    const PrintedText text = printed(u"x\n"_s.repeated(10'000));
    FaultyCalls faulty;
    faulty.before = [](std::string_view call) { return call == "write" ? ENOSPC : 0; };
    EXPECT_FALSE(pdf(text, {}, {}, faulty));
    EXPECT_FALSE(writeHtml(text, {}, path(u"page.html"_s), faulty, {}, progress));
    stopping.request_stop();
    EXPECT_FALSE(pdf(text, {}));
    EXPECT_FALSE(writeHtml(text, {}, path(u"page.html"_s), FileCalls::system(), stopping.get_token(), progress));
    EXPECT_EQ(read(u"text.pdf"_s), "old");
    EXPECT_EQ(read(u"page.html"_s), "old");
    EXPECT_EQ(names().size(), 2);
}
