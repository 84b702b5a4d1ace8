// Every result of the CPU path and of the colour table against the file of golden results, which is
// one for all systems. They were checked against the formulas first (tests/models); here they must
// only stay what they are.

#include <gtest/gtest.h>
#include <keladjust/keladjust.h>

#include <cfenv>
#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>

#include "golden/Results.h"
#include "support/InstructionSets.h"
#include "support/OddFloatingPoint.h"

namespace {

using keladjust::test::Result;
using keladjust::test::Results;

constexpr const char* file = KELADJUST_GOLDEN_FOLDER "/results.txt";
std::string rewriteCommand;

struct Section {
    const char* title;
    Results (*compute)();
};

void PrintTo(const Section& section, std::ostream* out) {
    *out << section.title;
}

constexpr Section sections[] = {
    {"stages", keladjust::test::stageResults},
    {"pipeline", keladjust::test::pipelineResults},
    {"building blocks", keladjust::test::buildingBlockResults},
    {"colour tables", keladjust::test::tableResults},
};

class GoldenResults : public testing::TestWithParam<Section> {
protected:
    ~GoldenResults() override {
        setMaxThreads(0);
        if (HasFailure()) {
            std::printf("If results are meant to change: %s\n", rewriteCommand.c_str());
        }
    }

    void expectGolden() {
        const Results computed = GetParam().compute();
        ASSERT_EQ(golden_.all().size(), computed.all().size()) << "lines in this section";
        for (std::size_t i = 0; i < golden_.all().size(); ++i) {
            const Result& expected = golden_.all()[i];
            const Result& got = computed.all()[i];
            ASSERT_EQ(expected.name, got.name);
            EXPECT_EQ(expected.digests, got.digests) << expected.name;
        }
    }

private:
    Results golden_ = Results::read(file, GetParam().title);
};

TEST_P(GoldenResults, OnEveryInstructionSet) {
    keladjust::test::forEachInstructionSet([this](const std::string& name) {
        SCOPED_TRACE(name);
        expectGolden();
    });
}

TEST_P(GoldenResults, OnAnyNumberOfThreads) {
    for (const int threads : {1, 2, 3, 16}) {
        SCOPED_TRACE(std::to_string(threads) + " threads");
        setMaxThreads(threads);
        expectGolden();
    }
}

#ifdef FE_UPWARD  // elsewhere numbers are computed in one way only
TEST_P(GoldenResults, InAnOddFloatingPointMode) {
    const keladjust::test::OddFloatingPoint odd(FE_UPWARD);
    expectGolden();
}
#endif

INSTANTIATE_TEST_SUITE_P(, GoldenResults, testing::ValuesIn(sections), [](const auto& instance) {
    std::string name = instance.param.title;
    std::erase(name, ' ');
    return name;
});

void rewrite() {
    std::ofstream stream(file, std::ios::binary);
    stream
        << "# Digests of what the library computes on the CPU, the same on every system, checked\n"
           "# by golden_test and written by golden_test --rewrite. The sources beside this file\n"
           "# say what stands in a line.\n";
    for (const auto& [title, compute] : sections) compute().write(stream, title);
    std::printf("%s %s\n", stream.flush() ? "written:" : "cannot be written:", file);
}

}  // namespace

int main(int count, char** arguments) {
    testing::InitGoogleTest(&count, arguments);
    rewriteCommand = std::string("\"") + arguments[0] + "\" --rewrite";
    if (count == 2 && std::string_view(arguments[1]) == "--rewrite") {
        rewrite();
        return 0;
    }
    return RUN_ALL_TESTS();
}
