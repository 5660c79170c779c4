// SPDX-License-Identifier: Apache-2.0
#include "host/burn/BurnElement.h"

#include <benchmark/benchmark.h>

#include <gst/gst.h>

#include <QGuiApplication>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <map>
#include <string>

namespace {

/// Prints what the console reporter prints, and keeps the medians for the table at the end.
class MedianReporter : public benchmark::ConsoleReporter
{
public:
    MedianReporter()
        : benchmark::ConsoleReporter(OO_Tabular)
    {
    }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        benchmark::ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.aggregate_name != "median" || run.error_occurred)
                continue;
            // Where a benchmark takes its time itself, it is CPU time that it took.
            const bool manual = run.run_name.time_type == "manual_time";
            m_medians[run.run_name.function_name + '/' + run.run_name.args]
                = manual ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
        }
    }

    void Finalize() override
    {
        benchmark::ConsoleReporter::Finalize();
        std::printf("\nOne value to the finished picture of its text element, us of CPU time:\n\n"
                    "| box | element | bare QPainter | ratio |\n|---|---|---|---|\n");
        for (const int alpha : {255, 150}) {
            const std::string arguments = "box alpha:" + std::to_string(alpha);
            const double element = median("text/element/" + arguments);
            const double painter = median("text/painter/" + arguments);
            if (std::isnan(element / painter))
                continue;
            std::printf("| %s | %.1f | %.1f | %.1f |\n", alpha == 255 ? "opaque" : "translucent",
                        element, painter, element / painter);
        }
        printChain();
        printLoading();
        std::printf(
            "\nTwelve boxed texts burned into I420 frames, us of CPU time added per frame:\n\n"
            "| frame | changing | this overlay | textoverlay x 12 | drawtext x 12 | times "
            "less than the better |\n|---|---|---|---|---|---|\n");
        for (const int height : {720, 1080}) {
            for (const int changing : {0, 3, 12}) {
                const std::string arguments
                    = "height:" + std::to_string(height) + "/changing:" + std::to_string(changing);
                const double ours = median("burn/ours/" + arguments);
                const double textOverlay = median("burn/textoverlay/" + arguments);
                const double drawText = median("burn/drawtext/" + arguments);
                if (std::isnan(ours + textOverlay + drawText))
                    continue;
                std::printf("| %dp | %d | %.1f | %.0f | %.0f | %.1f |\n", height, changing, ours,
                            textOverlay, drawText, std::min(textOverlay, drawText) / ours);
            }
        }
    }

private:
    /// What one of many live values costs; it must not depend on how many there are.
    void printChain() const
    {
        std::printf(
            "\nOne value to the finished picture through the whole chain, us of CPU time:\n\n"
            "| elements | value to picture | element alone | chain beside it | without "
            "a display | times that of 1 element |\n|---|---|---|---|---|---|\n");
        const double element = median("chain/element/");
        for (const int elements : {1, 30, 300}) {
            const std::string arguments = "elements:" + std::to_string(elements);
            const double whole = median("chain/picture/" + arguments);
            // Without a picture, but the text is typeset all the same.
            const double display = median("chain/display/" + arguments);
            if (std::isnan(whole + display + element))
                continue;
            std::printf("| %d | %.1f | %.1f | %.1f | %.1f | %.2f |\n", elements, whole, element,
                        whole - element, display, whole / median("chain/picture/elements:1"));
        }
    }

    /// What one record costs, beside the smallest profile: a ratio that grows with the number of
    /// records says that loading does not grow linearly.
    void printLoading() const
    {
        std::printf("\nLoading a profile, us of CPU time per record, and times that of 100 "
                    "records:\n\n| records | file | overlay |\n|---|---|---|\n");
        for (const int records : {100, 1000, 10000}) {
            const double file = perRecord("load/file/", records);
            const double overlay = perRecord("load/overlay/", records);
            if (std::isnan(file + overlay))
                continue;
            std::printf("| %d | %.1f (%.1f) | %.1f (%.1f) |\n", records, file,
                        file / perRecord("load/file/", 100), overlay,
                        overlay / perRecord("load/overlay/", 100));
        }
    }

    double perRecord(const std::string &name, int records) const
    {
        return median(name + "records:" + std::to_string(records)) / records;
    }

    /// NaN where it was not measured; such rows are left out of the tables.
    double median(const std::string &name) const
    {
        const auto found = m_medians.find(name);
        return found == m_medians.end() ? std::numeric_limits<double>::quiet_NaN() : found->second;
    }

    std::map<std::string, double> m_medians;
};

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    gst_init(&argc, &argv);
    if (!Velmar::Host::registerBurnElement())
        return 1;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
