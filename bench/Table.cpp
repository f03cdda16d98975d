#include "bench/Table.h"

#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <vector>

namespace {

const std::vector<std::string> COLUMNS{"bare", "tlvlib", "QDom", "pugixml", "SQLite"};
const char MEDIAN[] = "median";

struct Row
{
    std::map<std::string, double> figures; ///< seconds, or ratios where "bare" is 1
    double target = 0;                     ///< none
};

std::vector<std::string> rowOrder;
std::map<std::string, Row> rows;

Row& rowOf(const std::string& name)
{
    if (rows.find(name) == rows.end())
        rowOrder.push_back(name);
    return rows[name];
}

/// Collects the medians instead of printing every figure.
class MedianReporter : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.error_occurred)
                std::fprintf(stderr, "%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
            if (run.aggregate_name != MEDIAN)
                continue;
            // ROW/COLUMN/manual_time, or with what a repetition adds
            const std::string& name = run.run_name.function_name;
            const size_t slash = name.rfind('/');
            rows[name.substr(0, slash)].figures[name.substr(slash + 1)] = run.GetAdjustedRealTime();
            std::fprintf(stderr, ".");
        }
    }
};

/// A row's ratio; negative when it has none.
double ratioOf(const Row& row, const std::string& column)
{
    const auto bare = row.figures.find("bare");
    const auto figure = row.figures.find(column);
    return bare == row.figures.end() || figure == row.figures.end() ? -1 : figure->second / bare->second;
}

bool printTable()
{
    std::printf("\n%-44s", "");
    for (const std::string& column : COLUMNS)
        std::printf("%9s", column.c_str());
    std::printf("%9s\n", "target");
    bool isReached = true;
    for (const std::string& name : rowOrder) {
        const Row& row = rows[name];
        std::printf("%-44s", name.c_str());
        for (const std::string& column : COLUMNS) {
            const double ratio = ratioOf(row, column);
            if (ratio < 0)
                std::printf("%9s", "");
            else
                std::printf(ratio < 0.1 ? "%9.4f" : "%9.2f", ratio);
        }
        if (row.target > 0) {
            const bool isFine = ratioOf(row, "tlvlib") <= row.target;
            std::printf(row.target < 0.1 ? "%9.4f%s" : "%9.2f%s", row.target, isFine ? "" : "  missed");
            isReached = isReached && isFine;
        }
        std::printf("\n");
    }
    return isReached;
}

void writeJson(const QString& path)
{
    QJsonObject table;
    for (const std::string& name : rowOrder) {
        QJsonObject ratios;
        for (const std::string& column : COLUMNS) {
            const double ratio = ratioOf(rows[name], column);
            if (ratio >= 0)
                ratios[QString::fromStdString(column)] = ratio;
        }
        if (rows[name].target > 0)
            ratios["target"] = rows[name].target;
        table[QString::fromStdString(name)] = ratios;
    }
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(table).toJson()) < 0)
        std::fprintf(stderr, "%s: cannot be written\n", qPrintable(path));
}

} // namespace

void addWork(const std::string& row, const char* column, Work work)
{
    rowOf(row);
    benchmark::RegisterBenchmark((row + '/' + column).c_str(),
                                 [work](benchmark::State& state) {
                                     for (auto iteration : state) {
                                         if (work.before)
                                             work.before();
                                         const auto start = std::chrono::steady_clock::now();
                                         work.run();
                                         const std::chrono::duration<double> time =
                                             std::chrono::steady_clock::now() - start;
                                         state.SetIterationTime(time.count());
                                         benchmark::DoNotOptimize(iteration);
                                     }
                                 })
        ->UseManualTime()
        ->MinTime(0.02)
        ->Repetitions(11);
}

void addTarget(const std::string& row, double ratio)
{
    rowOf(row).target = ratio;
}

void addRatio(const std::string& row, const char* column, double ratio)
{
    rowOf(row).figures[column] = ratio;
    rowOf(row).figures["bare"] = 1;
}

int runTable(int argc, char** argv, const QString& jsonPath)
{
    std::vector<char*> arguments(argv, argv + argc);
    std::string interleave = "--benchmark_enable_random_interleaving=true";
    arguments.push_back(&interleave[0]);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;
    MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const bool isReached = printTable();
    writeJson(jsonPath);
    return isReached ? 0 : 1;
}
