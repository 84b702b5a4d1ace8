#include "text/NearestName.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace keladjust::app {

namespace {

// Wagner and Fischer's table, one row at a time.
std::size_t editDistance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= from.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t replaced = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
        }
    }
    return row.back();
}

}  // namespace

std::optional<std::string> nearestName(std::string_view wrong, std::span<const std::string> names) {
    const std::string* best = nullptr;
    std::size_t bestDistance = std::max<std::size_t>(2, wrong.size() / 3) + 1;
    for (const std::string& name : names) {
        const std::size_t distance = editDistance(wrong, name);
        if (distance < bestDistance) {
            bestDistance = distance;
            best = &name;
        }
    }
    if (best == nullptr) return std::nullopt;
    return *best;
}

std::string suggestion(std::string_view wrong, std::span<const std::string> names) {
    const auto name = nearestName(wrong, names);
    return name ? "; did you mean " + *name + "?" : std::string();
}

}  // namespace keladjust::app
