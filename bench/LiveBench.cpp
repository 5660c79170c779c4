// SPDX-License-Identifier: Apache-2.0
#include "bench/CpuClock.h"
#include "host/commands/ConsoleLog.h"
#include "host/feed/SystemValues.h"
#include "host/pipelines/LiveVideo.h"
#include "host/pipelines/VideoErrors.h"
#include "host/platform/Directories.h"
#include "host/platform/LogRouter.h"
#include "host/platform/TranslationStore.h"
#include "host/screens/LiveApplication.h"
#include "host/screens/LiveOverlay.h"
#include "host/screens/Messages.h"
#include "host/screens/VideoController.h"

#include <videooverlay/display/CVideoOverlayManager.h>
#include <videooverlay/elements/CVideoOverlayElement.h>
#include <videooverlay/models/VideoOverlayProfilesModel.h>

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QScreen>
#include <QTemporaryDir>
#include <QTimer>
#include <QVector>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>

#include <unistd.h>

using namespace Velmar;
using namespace Velmar::Host;
using VideoOverlay::CVideoOverlayElement;

namespace {

constexpr QSize PictureSize {1280, 720};
constexpr int FramesPerSecond = 25;
constexpr int Texts = 12;
constexpr int LatencyRounds = 100;
constexpr int SettleMs = 1000;
constexpr int GiveUpMs = 10000;

SourceSpec testPicture()
{
    SourceSpec source = SourceSpec::fromText(QStringLiteral("test"));
    source.size = PictureSize;
    source.framesPerSecond = FramesPerSecond;
    return source;
}

/// The first values that are numbers.
QStringList measuredValues()
{
    using Quantity = SystemValue::Quantity;
    QStringList names;
    for (const SystemValue &value : SystemValues::all()) {
        const bool isNumber = value.quantity == Quantity::Distance
            || value.quantity == Quantity::Speed || value.quantity == Quantity::Angle
            || value.quantity == Quantity::Temperature || value.quantity == Quantity::Pressure;
        if (isNumber && names.size() < Texts)
            names.append(value.name);
    }
    return names;
}

/// As many texts as there are to be: where there are fewer values, some are shown more than once.
bool writeProfile(const QString &path)
{
    const QStringList names = measuredValues();
    QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                     "<PROFILE readonly=\"false\" name=\"Bench\">\n";
    for (int i = 0; i < Texts; ++i) {
        xml += "<SYSTEMTEXT><COL>" + QByteArray::number(2 + i % 2 * 26) + "</COL><ROW>"
            + QByteArray::number(2 + i)
            + "</ROW><FGCOLOR>#ffffe066</FGCOLOR><BGCOLOR>#ff000000</BGCOLOR>"
              "<VISIBLE>true</VISIBLE><SHOWCAPTION>true</SHOWCAPTION><SOURCE>DB</SOURCE>"
              "<COL_Bound_Column>"
            + names.at(i % names.size()).toLatin1()
            + "</COL_Bound_Column><HEIGHT>1</HEIGHT><WIDTH>24</WIDTH><ALIGN>LEFT</ALIGN>"
              "</SYSTEMTEXT>\n";
    }
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(xml + "</PROFILE>\n") > 0;
}

/// Since this process was started, before main() and the loading of libraries [ms].
double sinceProcessStart()
{
    QFile stat(QStringLiteral("/proc/self/stat"));
    if (!stat.open(QIODevice::ReadOnly))
        return 0.0;
    const QByteArray line = stat.readAll();
    // The 22nd field, of which the second may hold blanks and ends with the last bracket.
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    const double started = fields.value(19).toDouble() / double(sysconf(_SC_CLK_TCK));
    timespec now {};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return (double(now.tv_sec) + double(now.tv_nsec) * 1e-9 - started) * 1000;
}

void runFor(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

bool waitFor(const std::function<bool()> &condition)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > GiveUpMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
    }
    return true;
}

/// Of one core, while the event loop runs for this long [%].
double cpuShare(int ms)
{
    runFor(SettleMs);
    QElapsedTimer clock;
    clock.start();
    const double before = cpuSeconds();
    runFor(ms);
    return (cpuSeconds() - before) * 1000.0 / double(clock.elapsed()) * 100.0;
}

struct Row
{
    const char *name;
    double share; ///< [%]
    double fps;
};

/// The screens with a profile of twelve values, and what is measured on them.
class LiveScreens
{
public:
    bool start(QString *error)
    {
        Directories::setSettingsDirectory(m_root.filePath(QStringLiteral("settings")));
        QDir().mkpath(m_root.filePath(QStringLiteral("settings/osd")));
        if (!writeProfile(m_root.filePath(QStringLiteral("settings/osd/Bench.xml")))) {
            *error = QStringLiteral("the profile cannot be written");
            return false;
        }
        LiveApplication::Setup setup;
        setup.source = testPicture();
        setup.projectDirectory = m_root.filePath(QStringLiteral("projects"));
        setup.recordingDirectory = m_root.filePath(QStringLiteral("recordings"));
        if (!m_live.start(setup, error))
            return false;
        QObject::connect(m_live.window(), &QQuickWindow::frameSwapped, m_live.window(),
                         [this] { ++m_swaps; });
        if (!waitFor([this] { return m_live.video().isRunning(); })) {
            *error = QStringLiteral("no picture comes");
            return false;
        }
        const int before = m_swaps;
        waitFor([this, before] { return m_swaps > before; });
        m_startMs = sinceProcessStart();
        m_live.overlay().profiles().setProfileByName(QStringLiteral("Bench"));
        changeAll();
        return true;
    }

    double startMs() const { return m_startMs; }

    Row measure(const char *name, int ms, bool moving, bool recording)
    {
        QObject context;
        if (moving)
            QObject::connect(&m_live.video(), &VideoController::frame, &context,
                             [this] { changeAll(); });
        if (recording)
            m_live.video().startRecording();
        const int before = m_swaps;
        QElapsedTimer clock;
        clock.start();
        const double share = cpuShare(ms);
        const double fps = (m_swaps - before) * 1000.0 / double(clock.elapsed());
        if (recording) {
            m_live.video().stopRecording();
            waitFor([this] { return m_live.video().recordState() == VideoController::Idle; });
            m_live.messages().dismiss(); // gives its room back to the picture
        }
        return {name, share, fps};
    }

    /// From setting a value to the first picture on the screen that differs where its text is: the
    /// number of pictures drawn meanwhile, that one included, and the time [ms]. Sorted.
    bool latencies(QVector<int> *pictures, QVector<double> *times)
    {
        runFor(SettleMs); // the screens have their final layout
        const QRect place = placeOf(*m_live.overlay().manager().getElement(0));
        int drawn = 0;
        bool changed = false;
        double ms = 0.0;
        QImage before;
        QElapsedTimer clock;
        QObject context;
        QObject::connect(m_live.window(), &QQuickWindow::frameSwapped, &context, [&] {
            if (changed || before.isNull())
                return;
            ++drawn;
            changed = grab(place) != before;
            ms = double(clock.nsecsElapsed()) * 1e-6;
        });
        for (int round = 0; round < LatencyRounds; ++round) {
            runFor(60 + round * 7 % 40); // at any moment of a frame
            drawn = 0;
            changed = false;
            before = grab(place);
            clock.start();
            changeAll();
            if (!waitFor([&changed] { return changed; }))
                return false;
            pictures->append(drawn);
            times->append(ms);
            before = QImage();
        }
        std::sort(pictures->begin(), pictures->end());
        std::sort(times->begin(), times->end());
        return true;
    }

private:
    void changeAll()
    {
        ++m_round;
        const QStringList names = measuredValues();
        for (int i = 0; i < names.size(); ++i)
            m_live.overlay().setValue(names.at(i), double(m_round % 1000) / 10 + i);
    }

    QRect placeOf(CVideoOverlayElement &element) const
    {
        const auto *stage = m_live.window()->findChild<QQuickItem *>(QStringLiteral("liveStage"));
        const QRectF picture = stage->property("pictureRect").toRectF();
        const double scale = picture.width() / PictureSize.width();
        const QRectF place(picture.x() + element.x() * scale, picture.y() + element.y() * scale,
                           element.width() * scale, element.height() * scale);
        return stage->mapRectToScene(place).toRect();
    }

    QImage grab(const QRect &place) const
    {
        QQuickWindow *window = m_live.window();
        return window->screen()
            ->grabWindow(window->winId(), place.x(), place.y(), place.width(), place.height())
            .toImage();
    }

    QTemporaryDir m_root;
    LiveApplication m_live;
    double m_startMs = 0.0;
    int m_swaps = 0;
    int m_round = 0;
};

double sourceAlone(int ms, QString *error)
{
    LiveVideo video(testPicture());
    if (!video.start(error))
        return -1.0;
    waitFor([&video] { return video.shownFrames() > 0; });
    return cpuShare(ms);
}

} // namespace

/// What the live screen costs beside the source of its picture. Not a benchmark of one operation
/// that is repeated, so it prints its own tables.
int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND"))
        qputenv("QT_QUICK_BACKEND", "software");
    QGuiApplication application(argc, argv);
    const int seconds = argc > 1 ? QByteArray(argv[1]).toInt() : 10;
    if (seconds <= 0) {
        std::fprintf(stderr, "usage: xq_live_bench [SECONDS]\n");
        return 2;
    }
    Directories::setReadonlyConfigDirectory(QStringLiteral(XQ_DATA_DIRECTORY));
    Translation::TranslationStore::instance().setLocale(QLocale(QLocale::English));

    Logging::LogRouter::instance().addSink(std::make_shared<ConsoleLog>());

    QString error;
    auto screens = std::make_unique<LiveScreens>();
    if (!screens->start(&error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    const QVector<Row> rows {
        screens->measure("values at rest", seconds * 1000, false, false),
        screens->measure("12 values with every frame", seconds * 1000, true, false),
        screens->measure("the same, recording", seconds * 1000, true, true),
    };
    QVector<int> pictures;
    QVector<double> times;
    if (!screens->latencies(&pictures, &times)) {
        std::fprintf(stderr, "a value did not reach the screen\n");
        return 1;
    }
    const double startMs = screens->startMs();
    screens.reset();
    const double source = sourceAlone(seconds * 1000, &error);
    if (source < 0) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    std::printf("CPU share of one core, %dx%d at %d frames per second, %s scene graph:\n\n",
                PictureSize.width(), PictureSize.height(), FramesPerSecond,
                qgetenv("QT_QUICK_BACKEND").constData());
    std::printf("| live screen | %% of a core | beside the source | pictures per second |\n"
                "|---|---|---|---|\n");
    for (const Row &row : rows)
        std::printf("| %s | %.1f | %.1f | %.1f |\n", row.name, row.share, row.share - source,
                    row.fps);
    std::printf("| source alone | %.1f | | |\n\n", source);
    std::printf("Start of the process to the first picture on the screen: %.0f ms\n\n", startMs);
    std::printf("Value to screen, %d times: %d picture(s) drawn (at most %d), %.1f ms (at most "
                "%.1f); a frame takes %d ms\n",
                LatencyRounds, pictures.at(LatencyRounds / 2), pictures.last(),
                times.at(LatencyRounds / 2), times.last(), 1000 / FramesPerSecond);
    return 0;
}
