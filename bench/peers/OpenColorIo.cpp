// The colour table with OpenColorIO: its transforms for the same settings, applied to the grid on
// every core, and its own baker for the cube file.

#include <OpenColorIO/OpenColorIO.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <thread>
#include <vector>

#include "support/TableRows.h"

namespace {

namespace ocio = OCIO_NAMESPACE;
using keladjust::bench::addTableRow;

ocio::TransformRcPtr channelFactors(double red, double green, double blue) {
    const double matrix[16] = {red, 0, 0, 0, 0, green, 0, 0, 0, 0, blue, 0, 0, 0, 0, 1};
    const auto transform = ocio::MatrixTransform::Create();
    transform->setMatrix(matrix);
    return transform;
}

ocio::TransformRcPtr exposureAndContrast() {
    const auto transform = ocio::ExposureContrastTransform::Create();
    transform->setStyle(ocio::EXPOSURE_CONTRAST_VIDEO);
    transform->setExposure(0.12);
    transform->setContrast(1.2);
    return transform;
}

ocio::TransformRcPtr saturation(double factor) {
    const auto transform = ocio::CDLTransform::Create();
    transform->setSat(factor);
    return transform;
}

ocio::TransformRcPtr tones() {
    const auto transform = ocio::GradingToneTransform::Create(ocio::GRADING_VIDEO);
    ocio::GradingTone tone(ocio::GRADING_VIDEO);
    tone.m_highlights.m_master = 0.8;
    tone.m_shadows.m_master = 1.2;
    tone.m_whites.m_master = 1.1;
    tone.m_blacks.m_master = 0.9;
    transform->setValue(tone);
    return transform;
}

/// Temperature, tint, exposure, brightness, contrast, vibrance, saturation, highlights, shadows,
/// whites, blacks, each as near as OpenColorIO has it.
ocio::GroupTransformRcPtr elevenSettings() {
    const auto group = ocio::GroupTransform::Create();
    group->appendTransform(channelFactors(0.9, 1, 1.1));
    group->appendTransform(channelFactors(1.05, 0.95, 1.05));
    group->appendTransform(exposureAndContrast());
    group->appendTransform(channelFactors(1.1, 1.1, 1.1));
    group->appendTransform(saturation(1.2));
    group->appendTransform(saturation(1.1));
    group->appendTransform(tones());
    return group;
}

/// And eight trips through HSV with a change of saturation and value between there and back.
ocio::GroupTransformRcPtr everySetting() {
    const auto group = elevenSettings();
    for (int range = 0; range < 8; ++range) {
        group->appendTransform(
            ocio::FixedFunctionTransform::Create(ocio::FIXED_FUNCTION_RGB_TO_HSV));
        group->appendTransform(channelFactors(1, 1.02, 0.98));
        const auto back = ocio::FixedFunctionTransform::Create(ocio::FIXED_FUNCTION_RGB_TO_HSV);
        back->setDirection(ocio::TRANSFORM_DIR_INVERSE);
        group->appendTransform(back);
    }
    return group;
}

constexpr long entries = 32L * 32 * 32;

std::vector<float> grid() {
    std::vector<float> table;
    table.reserve(3 * entries);
    for (long i = 0; i < entries; ++i) {
        for (const long level : {i % 32, i / 32 % 32, i / 1024}) {
            table.push_back(static_cast<float>(level) / 31);
        }
    }
    return table;
}

/// A configuration that keeps no processors: each bake is one for new settings.
ocio::ConfigRcPtr newConfiguration() {
    const auto config = ocio::Config::CreateRaw()->createEditableCopy();
    config->setProcessorCacheFlags(ocio::PROCESSOR_CACHE_OFF);
    return config;
}

template <auto settings>
void bake(const char*) {
    static const ocio::ConfigRcPtr config = newConfiguration();
    const auto processor = config->getProcessor(settings())->getDefaultCPUProcessor();
    std::vector<float> table = grid();
    const auto apply = [&](long begin, long end) {
        ocio::PackedImageDesc part(table.data() + 3 * begin, end - begin, 1, 3);
        processor->apply(part);
    };
    const auto cores = static_cast<long>(std::max(1u, std::thread::hardware_concurrency()));
    std::vector<std::jthread> workers;
    for (long i = 1; i < cores; ++i) {
        workers.emplace_back(apply, entries * i / cores, entries * (i + 1) / cores);
    }
    apply(0, entries / cores);
}

template <auto settings>
void bakeAndWrite(const char* path) {
    const ocio::ConfigRcPtr config = newConfiguration();
    const auto adjusted = ocio::ColorSpace::Create();
    adjusted->setName("adjusted");
    adjusted->setTransform(settings(), ocio::COLORSPACE_DIR_FROM_REFERENCE);
    config->addColorSpace(adjusted);
    const auto baker = ocio::Baker::Create();
    baker->setConfig(config);
    baker->setFormat("iridas_cube");
    baker->setInputSpace("raw");
    baker->setTargetSpace("adjusted");
    baker->setCubeSize(32);
    std::ofstream file(path);
    baker->bake(file);
}

const bool added =
    addTableRow("colour table, eleven settings", "OpenColorIO", bake<elevenSettings>) &&
    addTableRow("colour table, every setting", "OpenColorIO", bake<everySetting>) &&
    addTableRow("cube file, eleven settings", "OpenColorIO", bakeAndWrite<elevenSettings>) &&
    addTableRow("cube file, every setting", "OpenColorIO", bakeAndWrite<everySetting>);

}  // namespace
