// doAdjust on the CPU. The four digests of a line are for pictures of 8, 16, 24 and 32 bits.

#include <keladjust/keladjust.h>

#include <string>
#include <vector>

#include "golden/DigestByDepth.h"
#include "golden/Records.h"
#include "golden/Results.h"
#include "support/StageSettings.h"

namespace keladjust::test {

Results pipelineResults() {
    Results results;
    const auto add = [&results](const std::vector<NamedSettings>& records) {
        for (const auto& [name, settings] : records) {
            results.add(name, digestByDepth([&settings = settings](CxImage* image) {
                            return doAdjust(image, settings);
                        }));
        }
    };
    add(adjustmentStages());
    add(rangeStages());
    add(goldenRecords());
    return results;
}

}  // namespace keladjust::test
