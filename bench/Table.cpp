#include "bench/Table.h"

#include "bench/Measurement.h"

#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <regex>

namespace {

const std::vector<std::string> COLUMNS{"bare", "tlvlib", "QDom", "pugixml", "SQLite"};
enum { BARE, TLVLIB };

const double NOBODY = std::nan(""); ///< does a row's work

/// A row's ratios are those of the columns.
using Ratios = std::vector<double>;

/// Rows that are measured together.
struct Rows
{
    std::vector<std::string> names;
    double target;
    std::function<std::vector<Ratios>()> measure;
    std::vector<Ratios> ratios; ///< none of rows that are not wanted
};

std::vector<Rows> table;

/// Collects the medians instead of printing every figure.
class MedianReporter : public benchmark::BenchmarkReporter
{
public:
    explicit MedianReporter(std::vector<double>& medians) : medians_(medians) {}

    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.aggregate_name == "median")
                medians_[columnOf(run.run_name.function_name)] = run.GetAdjustedRealTime();
        }
    }

private:
    static size_t columnOf(const std::string& name)
    {
        return static_cast<size_t>(std::find(COLUMNS.begin(), COLUMNS.end(), name) - COLUMNS.begin());
    }

    std::vector<double>& medians_;
};

void addBenchmark(const char* column, const Work& work)
{
    benchmark::RegisterBenchmark(column,
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
        ->Repetitions(5);
}

Ratios ratiosOf(const Works& works)
{
    char program[] = "tlvlib_bench";
    char takeTurns[] = "--benchmark_enable_random_interleaving=true";
    char* arguments[] = {program, takeTurns, nullptr};
    int count = 2;
    benchmark::Initialize(&count, arguments);
    for (const auto& [column, work] : works)
        addBenchmark(column, work);
    Ratios ratios(COLUMNS.size(), NOBODY);
    MedianReporter reporter(ratios);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const double bare = ratios[BARE];
    for (double& ratio : ratios)
        ratio /= bare;
    return ratios;
}

void printRatio(double ratio)
{
    if (std::isnan(ratio))
        std::printf("%9s", "");
    else
        std::printf(ratio < 0.1 ? "%9.4f" : "%9.2f", ratio);
}

/// Whether the target is reached.
bool printRow(const std::string& name, double target, const Ratios& ratios)
{
    std::printf("%-46s", name.c_str());
    for (const double ratio : ratios)
        printRatio(ratio);
    const bool isReached = target == NO_TARGET || ratios[TLVLIB] <= target;
    if (target != NO_TARGET)
        printRatio(target);
    std::printf("%s\n", isReached ? "" : "  missed");
    return isReached;
}

bool printTable()
{
    std::printf("\n%-46s", "");
    for (const std::string& column : COLUMNS)
        std::printf("%9s", column.c_str());
    std::printf("%9s\n", "target");
    bool isReached = true;
    for (const Rows& rows : table) {
        for (size_t row = 0; row < rows.ratios.size(); ++row)
            isReached = printRow(rows.names[row], rows.target, rows.ratios[row]) && isReached;
    }
    return isReached;
}

void writeJson(const QString& path)
{
    QJsonObject all;
    for (const Rows& rows : table) {
        for (size_t row = 0; row < rows.ratios.size(); ++row) {
            QJsonObject told;
            for (size_t column = 0; column < COLUMNS.size(); ++column) {
                if (!std::isnan(rows.ratios[row][column]))
                    told[QString::fromStdString(COLUMNS[column])] = rows.ratios[row][column];
            }
            if (rows.target != NO_TARGET)
                told["target"] = rows.target;
            all[QString::fromStdString(rows.names[row])] = told;
        }
    }
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(all).toJson()) < 0)
        std::fprintf(stderr, "%s: cannot be written\n", qPrintable(path));
}

} // namespace

void addRow(const std::string& row, double target, std::function<Works()> prepare)
{
    const Measurement inProcess = [prepare] { return inFreshProcess([&] { return ratiosOf(prepare()); }); };
    const auto measure = [inProcess] { return std::vector<Ratios>{mediansOf(5, inProcess)}; };
    table.push_back({{row}, target, measure, {}});
}

void addRatios(const std::vector<std::string>& rows, double target, const Measurement& measure)
{
    const auto besideBare = [measure] {
        std::vector<Ratios> all;
        for (const double ratio : inFreshProcess(measure)) {
            all.emplace_back(COLUMNS.size(), NOBODY);
            all.back()[BARE] = 1;
            all.back()[TLVLIB] = ratio;
        }
        return all;
    };
    table.push_back({rows, target, besideBare, {}});
}

int runTable(const std::string& pattern, const QString& jsonPath)
{
    const std::regex wanted(pattern);
    const auto isWanted = [&wanted](const std::string& name) { return std::regex_search(name, wanted); };
    for (Rows& rows : table) {
        if (std::any_of(rows.names.begin(), rows.names.end(), isWanted))
            rows.ratios = rows.measure();
        std::fprintf(stderr, "."); // how far it is
    }
    const bool isReached = printTable();
    writeJson(jsonPath);
    return isReached ? 0 : 1;
}
