#ifndef BENCH_MEASUREMENT_H
#define BENCH_MEASUREMENT_H

#include <functional>
#include <vector>

/// Gives figures, the same ones in the same order each time.
using Measurement = std::function<std::vector<double>()>;

/**
 * Does a measurement in a process of its own: what earlier ones have left of the heap, of Qt's lists and of
 * the stores does not count. Ends the program when the measurement does not come to its end.
 */
std::vector<double> inFreshProcess(const Measurement& measurement);

/// Does a measurement so many times, and gives the median of each figure.
std::vector<double> mediansOf(int times, const Measurement& measurement);

#endif
