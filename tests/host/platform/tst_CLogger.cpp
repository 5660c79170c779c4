// SPDX-License-Identifier: Apache-2.0
#include "platform/logging/CLogger.h"

#include "host/platform/LogRouter.h"
#include "host/platform/LogSinks.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <thread>
#include <vector>

using namespace Velmar::Logging;

static_assert(int(LogLevel::Error) == 1);
static_assert(int(LogLevel::Warning) == 2);
static_assert(int(LogLevel::Info) == 3);
static_assert(int(LogLevel::Debug) == 4);

namespace {

QString text(const QVector<LogEntry> &entries)
{
    QStringList messages;
    for (const LogEntry &entry : entries)
        messages.append(entry.message);
    return messages.join(QLatin1Char(' '));
}

void logAllLevels(const QString &category)
{
    CLogger::logMessage(LogLevel::Error, category, QStringLiteral("error"));
    CLogger::logMessage(LogLevel::Warning, category, QStringLiteral("warning"));
    CLogger::logMessage(LogLevel::Info, category, QStringLiteral("info"));
    CLogger::logMessage(LogLevel::Debug, category, QStringLiteral("debug"));
}

QList<QByteArray> linesOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<QByteArray> lines = file.readAll().split('\n');
    lines.removeLast(); // after the last line end
    return lines;
}

} // namespace

class tst_CLogger : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_sink = std::make_shared<RecordingLogSink>();
        LogRouter::instance().addSink(m_sink);
    }

    void cleanup()
    {
        LogRouter &router = LogRouter::instance();
        router.removeSink(m_sink);
        router.setLevel(LogLevel::Debug);
        router.clearCategoryLevels();
    }

    void messageReachesTheSinkAsItIs()
    {
        CLogger::logMessage(LogLevel::Warning, QStringLiteral("Category"),
                            QStringLiteral(" trailing blank "));
        const QVector<LogEntry> expected {
            {LogLevel::Warning, QStringLiteral("Category"), QStringLiteral(" trailing blank ")}};
        QCOMPARE(m_sink->entries(), expected);
        QCOMPARE(m_sink->take(), expected);
        QVERIFY(m_sink->entries().isEmpty());
        QVERIFY(m_sink->take().isEmpty());
    }

    void level_data()
    {
        QTest::addColumn<int>("level");
        QTest::addColumn<QString>("passed");
        QTest::newRow("error") << 1 << "error";
        QTest::newRow("warning") << 2 << "error warning";
        QTest::newRow("info") << 3 << "error warning info";
        QTest::newRow("debug") << 4 << "error warning info debug";
    }

    void level()
    {
        QFETCH(int, level);
        QFETCH(QString, passed);
        LogRouter::instance().setLevel(LogLevel(level));
        logAllLevels(QStringLiteral("Any"));
        QCOMPARE(text(m_sink->take()), passed);
    }

    void categoryLevelOutranksTheGeneralOne()
    {
        LogRouter &router = LogRouter::instance();
        router.setLevel(LogLevel::Warning);
        router.setCategoryLevel(QStringLiteral("Chatty"), LogLevel::Debug);
        router.setCategoryLevel(QStringLiteral("Quiet"), LogLevel::Error);
        logAllLevels(QStringLiteral("Chatty"));
        QCOMPARE(text(m_sink->take()), QStringLiteral("error warning info debug"));
        logAllLevels(QStringLiteral("Quiet"));
        QCOMPARE(text(m_sink->take()), QStringLiteral("error"));
        logAllLevels(QStringLiteral("Other"));
        QCOMPARE(text(m_sink->take()), QStringLiteral("error warning"));

        router.clearCategoryLevels();
        logAllLevels(QStringLiteral("Quiet"));
        QCOMPARE(text(m_sink->take()), QStringLiteral("error warning"));
    }

    void everySinkGetsEveryLine()
    {
        const auto second = std::make_shared<RecordingLogSink>();
        LogRouter::instance().addSink(second);
        logAllLevels(QStringLiteral("Any"));
        LogRouter::instance().removeSink(second);
        QCOMPARE(second->entries(), m_sink->entries());
        logAllLevels(QStringLiteral("Any"));
        QCOMPARE(second->entries().size(), 4);
        QCOMPARE(m_sink->entries().size(), 8);
    }

    /// What a program tells people otherwise; the rest of the log stays complete.
    void heldFromPeople()
    {
        class Console : public RecordingLogSink
        {
        public:
            bool isForPeople() const override { return true; }
        };
        const auto console = std::make_shared<Console>();
        LogRouter::instance().addSink(console);
        {
            const HeldLog held;
            logAllLevels(QStringLiteral("Any"));
            std::thread([] { logAllLevels(QStringLiteral("Other")); }).join();
            QCOMPARE(held.errors(), QStringList(QStringLiteral("error")));
        }
        logAllLevels(QStringLiteral("Later"));
        LogRouter::instance().removeSink(console);

        QCOMPARE(m_sink->entries().size(), 12);
        const QVector<LogEntry> shown = console->entries();
        QCOMPARE(shown.size(), 8);
        for (const LogEntry &entry : shown)
            QVERIFY(entry.category != QLatin1String("Any"));
        QVERIFY(StderrLogSink().isForPeople());
        QVERIFY(!m_sink->isForPeople());
    }

    void levelNames()
    {
        QCOMPARE(levelName(LogLevel::Error), QStringLiteral("error"));
        QCOMPARE(levelName(LogLevel::Warning), QStringLiteral("warning"));
        QCOMPARE(levelName(LogLevel::Info), QStringLiteral("info"));
        QCOMPARE(levelName(LogLevel::Debug), QStringLiteral("debug"));
        QCOMPARE(levelName(LogLevel(9)), QStringLiteral("9"));
    }

    void fileSink()
    {
        const QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("a log.txt"));
        FileLogSink sink(path);
        QVERIFY(sink.isOpen());
        const QDateTime before = QDateTime::currentDateTimeUtc();
        sink.write({LogLevel::Warning, QStringLiteral("Overlay"), QStringLiteral("21 \u00b0C")});
        sink.write(
            {LogLevel::Debug, QStringLiteral("Overlay"), QStringLiteral("two\nlines\r\033[2J")});

        // while the sink is still open: every line is out before the call returns
        const QList<QByteArray> lines = linesOf(path);
        QCOMPARE(lines.size(), 2);
        const int blank = lines.at(0).indexOf(' ');
        const QDateTime time = QDateTime::fromString(QString::fromLatin1(lines.at(0).left(blank)),
                                                     Qt::ISODateWithMs);
        QCOMPARE(time.timeSpec(), Qt::UTC);
        QVERIFY(time >= before && time <= QDateTime::currentDateTimeUtc());
        QCOMPARE(lines.at(0).mid(blank),
                 QByteArray(" warning Overlay: 21 \xc2\xb0"
                            "C"));
        QVERIFY(lines.at(1).endsWith(" debug Overlay: two\\nlines\\x0d\\x1b[2J"));
    }

    void fileSinkAppends()
    {
        const QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("log"));
        for (int i = 0; i < 2; ++i)
            FileLogSink(path).write({LogLevel::Info, QStringLiteral("A"), QString::number(i)});
        QCOMPARE(linesOf(path).size(), 2);
        QVERIFY(linesOf(path).at(0).endsWith(" A: 0"));
    }

    void fileSinkWithoutFile()
    {
        const QTemporaryDir directory;
        FileLogSink sink(directory.filePath(QStringLiteral("missing/log")));
        QVERIFY(!sink.isOpen());
        sink.write({LogLevel::Error, QStringLiteral("A"), QStringLiteral("lost")});
        QVERIFY(!QFile::exists(directory.filePath(QStringLiteral("missing"))));
    }

    void manyThreads()
    {
        constexpr int perThread = 200;
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([i] {
                for (int n = 0; n < perThread; ++n) {
                    CLogger::logMessage(LogLevel::Info, QString::number(i), QString::number(n));
                }
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        const QVector<LogEntry> entries = m_sink->take();
        QCOMPARE(entries.size(), 4 * perThread);
        QHash<QString, int> next; // the lines of one thread stay in order
        for (const LogEntry &entry : entries)
            QCOMPARE(entry.message.toInt(), next[entry.category]++);
    }

private:
    std::shared_ptr<RecordingLogSink> m_sink;
};

QTEST_GUILESS_MAIN(tst_CLogger)
#include "tst_CLogger.moc"
