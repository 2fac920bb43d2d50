// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Print/Printing.h"

#include "Base/AtomicFile.h"
#include "Base/FilePath.h"
#include "Base/Translation.h"
#include "Print/PagePainter.h"

#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>

#include <numeric>

using namespace Qt::StringLiterals;

namespace {

constexpr int allDone = 1000;
/// Of all the work, finding the pages; in thousandths.
constexpr int countingShare = 100;

/// Lets a painter write to an AtomicFile, and keeps what went wrong.
class AtomicFileDevice final : public QIODevice {
public:
    explicit AtomicFileDevice(AtomicFile &file) : m_file(file) { open(WriteOnly); }

    [[nodiscard]] bool isSequential() const override { return true; }
    [[nodiscard]] const Result<void> &result() const { return m_result; }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *bytes, qint64 count) override
    {
        if (m_result) {
            m_result = m_file.write(QByteArrayView(bytes, count));
        }
        return m_result ? count : -1;
    }

private:
    AtomicFile &m_file;
    Result<void> m_result;
};

QSizeF areaOf(const QPaintDevice &device)
{
    constexpr double dots = PageLayout::dotsPerInch;
    return {device.width() * dots / device.logicalDpiX(), device.height() * dots / device.logicalDpiY()};
}

/// False when the device refused a page, or there was no more to be done.
bool paintPages(QPagedPaintDevice &device, const PrintedText &text, const PrintStyle &style, const PageOrder &order,
                const std::stop_token &stop, PrintProgress &progress)
{
    PagePainter page(text, style, areaOf(device), PaperColors::Slab::wholeText);
    const auto starts = pageStarts(page.layout(), stop, progress, countingShare);
    if (!starts) {
        return false;
    }
    const int count = int(starts->size());
    const std::vector<int> numbers = order.pages(count);
    QPainter painter;
    if (!painter.begin(&device)) {
        return false;
    }
    constexpr double dots = PageLayout::dotsPerInch;
    for (size_t i = 0; i < numbers.size(); ++i) {
        if (stop.stop_requested() || (i > 0 && !device.newPage())) {
            return false;
        }
        painter.resetTransform();
        painter.scale(device.logicalDpiX() / dots, device.logicalDpiY() / dots);
        page.paint(painter, (*starts)[size_t(numbers[i] - 1)], numbers[i], count);
        progress.set(countingShare + int((allDone - countingShare) * (i + 1) / numbers.size()));
    }
    return painter.end();
}

} // namespace

PageOrder PageOrder::of(const QPrinter &printer)
{
    return {.first = printer.fromPage(),
            .last = printer.toPage(),
            .copies = printer.supportsMultipleCopies() ? 1 : printer.copyCount(),
            .isCollated = printer.collateCopies(),
            .isReversed = printer.pageOrder() == QPrinter::LastPageFirst};
}

std::vector<int> PageOrder::pages(int count) const
{
    const int from = first > 0 ? std::min(first, count) : 1;
    const int to = last > 0 ? std::clamp(last, from, count) : count;
    std::vector<int> once(size_t(to - from + 1));
    std::iota(once.begin(), once.end(), from);
    if (isReversed) {
        std::ranges::reverse(once);
    }
    std::vector<int> all;
    for (int copy = 0; isCollated && copy < copies; ++copy) {
        all.insert(all.end(), once.begin(), once.end());
    }
    for (size_t place = 0; !isCollated && place < once.size(); ++place) {
        all.insert(all.end(), size_t(copies), once[place]);
    }
    return all;
}

Result<void> writePdf(const PrintedText &text, const PrintStyle &style, const QPageLayout &paper, const PageOrder &order,
                      const QString &path, FileCalls &files, const std::stop_token &stop, PrintProgress &progress)
{
    auto file = AtomicFile::open(path, AtomicFile::NewFile::readableByOthers, files);
    if (!file) {
        return tl::make_unexpected(file.error());
    }
    AtomicFileDevice device(*file);
    bool isPainted = false;
    {
        QPdfWriter writer(&device);
        writer.setResolution(PageLayout::dotsPerInch);
        writer.setPageLayout(paper);
        writer.setTitle(text.title);
        writer.setCreator(u"Quillet"_s);
        isPainted = paintPages(writer, text, style, order, stop, progress);
    }
    if (!device.result()) {
        return device.result();
    }
    if (!isPainted || stop.stop_requested()) {
        return failure(formatted(localized(u"“%@” could not be written."), shownPath(path)));
    }
    return file->commit().map([](const AtomicFile::Written &) {});
}

Result<void> printText(const PrintedText &text, const PrintStyle &style, QPrinter &printer, const std::stop_token &stop,
                       PrintProgress &progress)
{
    const bool isPainted = paintPages(printer, text, style, PageOrder::of(printer), stop, progress);
    if (stop.stop_requested()) {
        printer.abort();
    }
    if (!isPainted || printer.printerState() == QPrinter::Error) {
        return failure(formatted(localized(u"“%@” could not be printed."), text.title));
    }
    return {};
}
