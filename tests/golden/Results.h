#ifndef KELADJUST_TESTS_GOLDEN_RESULTS_H
#define KELADJUST_TESTS_GOLDEN_RESULTS_H

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace keladjust::test {

/// A 64-bit hash (FNV-1a) of results, taken piece by piece. It tells results apart; nothing rests
/// on it being hard to forge.
class Digest {
public:
    Digest& add(std::span<const std::uint8_t> bytes);
    /// Bit by bit, but for NaN: which of its many patterns an operation gives is the compiler's
    /// choice.
    Digest& add(std::span<const float> values);
    std::uint64_t value() const { return value_; }

private:
    std::uint64_t value_ = 0xcbf29ce484222325;
};

/// One line of the file of golden results: what was called and the digests of what came of it.
struct Result {
    std::string name;
    std::string digests;
    bool operator==(const Result&) const = default;
};

/// One section of that file.
class Results {
public:
    void add(std::string name, std::span<const std::uint64_t> digests);
    void add(std::string name, std::uint64_t digest) { add(std::move(name), {&digest, 1}); }
    const std::vector<Result>& all() const { return results_; }

    /// The section `title` of `file`; empty if there is none.
    static Results read(const std::filesystem::path& file, const std::string& title);
    void write(std::ostream& file, const std::string& title) const;

private:
    std::vector<Result> results_;
};

/// A call as one writes it: `clarity(40)`.
std::string callText(const std::string& name, const std::vector<std::string>& settings);

/// The shortest text that reads back as the number, in fixed notation or, if that is shorter, in
/// scientific notation: the same on every platform and in every floating-point mode.
std::string numberText(int number);
std::string numberText(unsigned number);
std::string numberText(float number);
std::string numberText(double number);

template <class... Settings>
std::string callText(const std::string& name, Settings... settings) {
    return callText(name, std::vector<std::string>{numberText(settings)...});
}

// The sections.
Results stageResults();
Results pipelineResults();
Results buildingBlockResults();
Results tableResults();

}  // namespace keladjust::test

#endif
