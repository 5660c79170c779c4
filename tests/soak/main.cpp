// SPDX-License-Identifier: Apache-2.0
#include "host/platform/LogRouter.h"
#include "host/platform/LogSinks.h"
#include "tests/soak/LiveObjects.h"
#include "tests/soak/Vitals.h"
#include "tests/soak/WorkDay.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTextCodec>

#include <cstdio>

using namespace Velmar;
using namespace Velmar::Soak;

namespace {

/// A day: 2 million values, 1,000 profiles selected, 1,000 projects.
constexpr int DayRounds = 250;
constexpr int ReadingsPerProfile = 100;
/// What is made once and kept (fonts, prepared statements, hash tables) is there after these.
constexpr int WarmUpRounds = 3;
constexpr int Lines = 10;

/// Whatever is logged is part of the work, and read by nobody.
class NoLog : public Logging::LogSink
{
public:
    void write(const Logging::LogEntry &) override { }
};

void say(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

void sayClasses(const QMap<QByteArray, int> &before, const QMap<QByteArray, int> &after)
{
    for (auto it = after.cbegin(); it != after.cend(); ++it) {
        if (it.value() != before.value(it.key()))
            say(QStringLiteral("  %1 %2, before %3")
                    .arg(it.value())
                    .arg(QString::fromLatin1(it.key()))
                    .arg(before.value(it.key())));
    }
}

} // namespace

/// usage: xq_soak [ROUNDS]    250 rounds are a day's work
int main(int argc, char **argv)
{
    if (!LiveObjects::watch()) {
        std::fprintf(stderr, "xq_soak: this Qt does not tell of its objects\n");
        return 1;
    }
    QGuiApplication application(argc, argv);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    Logging::LogRouter::instance().addSink(std::make_shared<NoLog>());
    bool isNumber = false;
    const int rounds = argc > 1 ? QString::fromLocal8Bit(argv[1]).toInt(&isNumber) : DayRounds;
    if (argc > 2 || (argc > 1 && (!isNumber || rounds < 1))) {
        std::fprintf(stderr, "usage: xq_soak [ROUNDS]\n");
        return 2;
    }

    WorkDay day;
    for (int i = 0; i < WarmUpRounds; ++i)
        day.doRound(ReadingsPerProfile);
    Vitals before = Vitals::take(day.settingsDirectory());
    before.trim();
    const QMap<QByteArray, int> classesBefore = LiveObjects::byClass();
    say(QStringLiteral("round ") + Vitals::header());
    say(QStringLiteral("%1 ").arg(0, 5) + before.line());
    QElapsedTimer clock;
    clock.start();
    Vitals after = before;
    for (int i = 1; i <= rounds; ++i) {
        day.doRound(ReadingsPerProfile);
        if (i == rounds || i % qMax(1, rounds / Lines) == 0) {
            after = Vitals::take(day.settingsDirectory());
            if (i == rounds)
                after.trim();
            say(QStringLiteral("%1 ").arg(i, 5) + after.line());
        }
    }
    say(QStringLiteral(
            "%1 values, %2 profiles selected, %3 projects, %4 elements made and deleted, "
            "%5 displays, %6 frames in %7 s")
            .arg(day.values())
            .arg(day.switches())
            .arg(day.projects())
            .arg(day.elements())
            .arg(day.displays())
            .arg(day.frames())
            .arg(clock.elapsed() / 1000));
    const QStringList growth = after.growthSince(before);
    for (const QString &line : growth)
        say(QStringLiteral("grown: ") + line);
    if (after.objects != before.objects)
        sayClasses(classesBefore, LiveObjects::byClass());
    return growth.isEmpty() ? 0 : 1;
}
