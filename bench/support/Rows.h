#ifndef KELADJUST_BENCH_SUPPORT_ROWS_H
#define KELADJUST_BENCH_SUPPORT_ROWS_H

#include <keladjust/CxImage.h>

#include <functional>
#include <string>
#include <vector>

namespace keladjust::bench {

/// What one side of a comparison does to a picture.
struct Work {
    std::function<void(CxImage&)> run;
    /// What is not measured: called before every run, with a fresh picture.
    std::function<void(CxImage&)> prepare = [](CxImage&) {};
};

/// One stage as one library, or plain code, does it.
struct Row {
    std::string stage;
    /// Makes the work for pictures like the one given, with maps and buffers of its own.
    std::function<Work(CxImage&)> makeWork;
    /// Adds rows named "<stage>, photograph" for a side whose time depends on the colours.
    bool onPhotographToo = false;
};

/// Work that is nothing but a call.
template <class Run>
auto plainly(Run run) {
    return [run](CxImage&) { return Work{run}; };
}

/// Adds the rows "<stage>/<side>/<width>/<height>" for a preview and for 12 megapixels. Each run
/// finds the same BGRA picture; one run before the first makes what a side keeps between runs. CPU
/// time is that of all threads.
///
/// @return true, so that it can be called for a constant
bool addRows(const std::string& side, const std::vector<Row>& rows);

}  // namespace keladjust::bench

#endif
