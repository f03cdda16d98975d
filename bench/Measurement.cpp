#include "bench/Measurement.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include <sys/wait.h>
#include <unistd.h>

namespace {

[[noreturn]] void measure(const Measurement& measurement, int end)
{
    const std::vector<double> figures = measurement();
    const size_t size = figures.size() * sizeof(double);
    _exit(write(end, figures.data(), size) == static_cast<ssize_t>(size) ? 0 : 1);
}

double medianOf(std::vector<double> figures)
{
    const auto middle = figures.begin() + static_cast<long>(figures.size()) / 2;
    std::nth_element(figures.begin(), middle, figures.end());
    return *middle;
}

} // namespace

std::vector<double> inFreshProcess(const Measurement& measurement)
{
    int ends[2];
    const pid_t child = pipe(ends) == 0 ? fork() : -1;
    if (child == 0)
        measure(measurement, ends[1]);
    std::vector<double> figures;
    int status = 1;
    if (child > 0) {
        close(ends[1]);
        double figure = 0;
        while (read(ends[0], &figure, sizeof figure) == sizeof figure)
            figures.push_back(figure);
        close(ends[0]);
        waitpid(child, &status, 0);
    }
    if (status != 0) {
        std::fprintf(stderr, "a measurement ended early\n");
        std::exit(2);
    }
    return figures;
}

std::vector<double> mediansOf(int times, const Measurement& measurement)
{
    std::vector<std::vector<double>> all;
    for (int i = 0; i < times; ++i) {
        const std::vector<double> figures = measurement();
        all.resize(figures.size());
        for (size_t figure = 0; figure < figures.size(); ++figure)
            all[figure].push_back(figures[figure]);
    }
    std::vector<double> medians;
    medians.reserve(all.size());
    for (const std::vector<double>& figures : all)
        medians.push_back(medianOf(figures));
    return medians;
}
