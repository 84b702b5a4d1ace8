#ifndef KELADJUST_BENCH_SUPPORT_TABLEROWS_H
#define KELADJUST_BENCH_SUPPORT_TABLEROWS_H

#include <functional>
#include <string>

namespace keladjust::bench {

/// Adds the row "<task>/<side>" of a task that makes a colour table and may write it to `path`.
///
/// @return true, so that it can be called for a constant
bool addTableRow(const std::string& task, const std::string& side,
                 std::function<void(const char* path)> run);

}  // namespace keladjust::bench

#endif
