// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/FileWatcher.h"

#include "Base/FilePath.h"
#include "Base/Workers.h"
#include "Files/FileWatchEngine.h"

#include <QDir>

using namespace Qt::StringLiterals;

FileWatcher::FileWatcher(FileWatcherQueue &queue, const QString &path, const std::optional<FileStamp> &known,
                         std::function<void(Event)> onEvent)
    : m_path(QDir::isAbsolutePath(path) ? path : QDir::currentPath() + u'/' + path), m_queue(queue.m_mailbox),
      m_link(std::make_shared<FileWatchLink>())
{
    m_link->onEvent = std::move(onEvent);
    m_queue->post([link = m_link, name = encodedPath(m_path), known](FileWatchEngine &engine) { engine.add(link, name, known); });
}

void FileWatcher::stop()
{
    if (m_link->onEvent) {
        m_link->onEvent = nullptr;
        m_queue->post([link = m_link](FileWatchEngine &engine) { engine.remove(link); });
    }
}

void FileWatcher::beginOwnWrite()
{
    ++m_link->begunWrites;
}

void FileWatcher::endOwnWrite(const std::optional<FileStamp> &written)
{
    m_queue->post([link = m_link, write = m_link->begunWrites.load(), written](FileWatchEngine &engine) {
        engine.endOwnWrite(link, write, written);
    });
}

FileWatcherQueue::FileWatcherQueue() : FileWatcherQueue(WatchCalls::system()) {}

FileWatcherQueue::FileWatcherQueue(WatchCalls &calls) : m_ownWorkers(std::make_unique<DetachedWorkers>())
{
    auto *const engine = new FileWatchEngine(m_mainThread, nullptr, calls, *m_ownWorkers);
    m_mailbox = engine->mailbox();
    engine->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::finished, engine, &QObject::deleteLater);
    m_thread.setObjectName(u"org.quillet.Quillet.filewatcher"_s);
    m_mailbox->post([](FileWatchEngine &started) { started.start(); });
    m_thread.start();
}

FileWatcherQueue::FileWatcherQueue(Scheduler &scheduler, WatchCalls &calls, Workers &workers)
{
    // Its own owner, like the one on a thread: both are deleted by their event loop or here.
    auto *const engine = new FileWatchEngine(m_mainThread, &scheduler, calls, workers);
    engine->setParent(&m_mainThread);
    m_mailbox = engine->mailbox();
    engine->start();
}

FileWatcherQueue::~FileWatcherQueue()
{
    m_thread.quit();
    m_thread.wait();
}
