// Presets, numbers, names and texts of any bytes: a preset that is read comes back from what is
// written of it, a number from its digits, and a cube file has every value to eight decimals.

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/Preset.h"
#include "settings/Record.h"
#include "support/Finding.h"
#include "text/BarChart.h"
#include "text/CubeText.h"
#include "text/Failure.h"
#include "text/NearestName.h"
#include "text/NumberText.h"
#include "text/PathText.h"
#include "text/XmlText.h"

namespace {

using namespace keladjust::app;
using keladjust::fuzz::finding;

void tryPreset(const std::string& json) {
    std::optional<Settings> settings;
    try {
        settings = settingsFromPreset(json, "preset");
    } catch (const UsageError& error) {
        if (std::string_view(error.what()).find("preset: ") != 0) {
            finding("a message without its head: %s", error.what());
        }
        return;
    }
    const std::string text = presetFromSettings(*settings);
    const Settings again = settingsFromPreset(text, "preset");
    const _AdjustParam record = settings->record();
    const _AdjustParam usual = usualRecord();
    for (const KeladjustSetting& setting : allSettings()) {
        const std::optional<double> value = settings->get(setting);
        if (again.get(setting) != value) finding("%s does not come back", setting.name);
        const double wanted = value ? *value : valueIn(usual, setting);
        const double stored =
            setting.isInteger != 0 ? wanted : static_cast<double>(static_cast<float>(wanted));
        if (valueIn(record, setting) != stored) finding("%s is not in the record", setting.name);
    }
    if (presetFromSettings(again) != text) finding("a preset has two texts");
}

void tryNumber(FuzzedDataProvider& input) {
    const auto value = std::bit_cast<double>(input.ConsumeIntegral<std::uint64_t>());
    const int decimals = input.ConsumeIntegralInRange(0, 20);
    const std::optional<double> again = numberFromText(numberText(value));
    if (!again || (*again != value && !(std::isnan(value) && std::isnan(*again)))) {
        finding("%a does not come back from its text", value);
    }
    if (std::isfinite(value)) {
        const std::optional<double> rounded = numberFromText(numberText(value, decimals));
        // Half of the last decimal, and the distance to the next number.
        const double bound = std::pow(10.0, -decimals) * 0.5 +
                             std::fabs(value) * std::numeric_limits<double>::epsilon();
        if (!rounded || !(std::fabs(*rounded - value) <= bound)) {
            finding("%a with %d decimals is another number", value, decimals);
        }
    }
    const std::string text = input.ConsumeRemainingBytesAsString();
    if (const std::optional<double> read = numberFromText(text)) {
        if (!text.empty() && text.find_first_of(" \t\n") != std::string::npos) {
            finding("\"%s\" counts as a number", text.c_str());
        }
        if (numberFromText(numberText(*read)) != *read && !std::isnan(*read)) {
            finding("\"%s\" does not come back", text.c_str());
        }
    }
}

// Wagner and Fischer's table, written out.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::vector<std::size_t>> table(a.size() + 1,
                                                std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                table[i][j] = i + j;
            } else {
                table[i][j] = std::min({table[i - 1][j] + 1, table[i][j - 1] + 1,
                                        table[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
            }
        }
    }
    return table[a.size()][b.size()];
}

void tryName(const std::string& wrong) {
    const std::vector<std::string> names = settingNames();
    std::size_t least = std::max<std::size_t>(2, wrong.size() / 3) + 1;
    const std::string* nearest = nullptr;
    for (const std::string& name : names) {
        const std::size_t far = distance(wrong, name);
        if (far >= least) continue;
        least = far;
        nearest = &name;
    }
    const std::optional<std::string> found = nearestName(wrong, names);
    if (found.has_value() != (nearest != nullptr) || (nearest != nullptr && *found != *nearest)) {
        finding("the name nearest to \"%s\" is another", wrong.c_str());
    }
}

/// True for UTF-8 of characters that XML 1.0 holds, with markup as entities only.
bool isXmlText(const std::string& text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto byte = [&](std::size_t at) -> std::uint32_t {
            return at < text.size() ? static_cast<unsigned char>(text[at]) : 0u;
        };
        const std::uint32_t first = byte(i);
        const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
        std::uint32_t code = length == 1 ? first : first & (0x7Fu >> length);
        for (std::size_t k = 1; k < length; ++k) {
            if (byte(i + k) >> 6 != 2) return false;
            code = code << 6 | (byte(i + k) & 0x3F);
        }
        constexpr std::uint32_t least[] = {0, 0x80, 0x800, 0x10000};
        if (code < least[length - 1] || code > 0x10FFFF) return false;
        if (code < 0x20 && code != '\t' && code != '\n') return false;
        if ((code >= 0xD800 && code < 0xE000) || code == 0xFFFE || code == 0xFFFF) return false;
        if (code == '<' || code == '>' || code == '"') return false;
        if (code == '&' && text.find(';', i) > i + 5) return false;
        i += length;
    }
    return true;
}

void tryText(const std::string& text) {
    if (!isXmlText(xmlText(text))) finding("\"%s\" is no text for XML", text.c_str());
    if (textOf(pathFromText(text)) != text) finding("\"%s\" is another path", text.c_str());
    for (const char letter : extensionOf(pathFromText(text))) {
        if (letter >= 'A' && letter <= 'Z') finding("\"%s\": no lower case", text.c_str());
    }
    const Bar bars[] = {{text, 1.0, text}, {"second", 0.0, ""}};
    const std::string chart = barChart(text, bars);
    if (chart.rfind("</svg>") == std::string::npos) finding("an unfinished chart");
}

void tryCube(FuzzedDataProvider& input) {
    const bool redFastest = input.ConsumeBool();
    std::vector<float> points;
    while (points.size() < 81) {
        points.push_back(std::bit_cast<float>(input.ConsumeIntegral<std::uint32_t>()));
    }
    std::string expected =
        redFastest ? "LUT_3D_SIZE 3\nDOMAIN_MIN 0.0 0.0 0.0\nDOMAIN_MAX 1.0 1.0 1.0\n"
                   : "#LUT size\nLUT_3D_SIZE 3\n\n#data domain\nDOMAIN_MIN 0.0 0.0 0.0\n"
                     "DOMAIN_MAX 1.0 1.0 1.0\n\n#LUT data points\n";
    for (std::size_t i = 0; i < points.size(); ++i) {
        const float value = redFastest ? points[i] : points[i] * 255.0f / 255.0f;
        char digits[64] = "nan";
        char* end = digits + 3;
        if (!std::isnan(value)) {
            end = std::to_chars(digits, digits + sizeof digits, static_cast<double>(value),
                                std::chars_format::fixed, 8)
                      .ptr;
        }
        expected.append(digits, end);
        expected += i % 3 < 2 ? ' ' : '\n';
    }
    const CubeOrder order = redFastest ? CubeOrder::redFastest : CubeOrder::blueFastest;
    if (cubeText(points, 3, order) != expected) finding("another cube file");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    // From the end of the input, so that seeds begin as their texts do.
    switch (input.ConsumeIntegral<std::uint8_t>() % 8) {
        case 0:
            tryNumber(input);
            break;
        case 1:
            tryName(input.ConsumeRandomLengthString(100));
            break;
        case 2:
            tryText(input.ConsumeRemainingBytesAsString());
            break;
        case 3:
            tryCube(input);
            break;
        default:
            tryPreset(input.ConsumeRemainingBytesAsString());
    }
    return 0;
}
