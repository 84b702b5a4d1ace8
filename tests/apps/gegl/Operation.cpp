// The operation in graphs of GEGL's.

#include <gegl-plugin.h>
#include <gegl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>
#include <random>
#include <vector>

#include "gegl/CountedCalls.h"
#include "settings/Record.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace keladjust::test;
using keladjust::app::allSettings;

using Pixels = std::vector<unsigned char>;  // red, green, blue, alpha
using Buffer = std::unique_ptr<GeglBuffer, decltype(&g_object_unref)>;
using Node = std::unique_ptr<GeglNode, decltype(&g_object_unref)>;

constexpr GeglRectangle area = {0, 0, 640, 480};

Pixels noise(bool opaque = true) {
    std::mt19937 numbers(1);
    Pixels pixels(std::size_t{4} * area.width * area.height);
    for (std::size_t at = 0; at < pixels.size(); ++at) {
        pixels[at] = static_cast<unsigned char>(opaque && at % 4 == 3 ? 255u : numbers());
    }
    return pixels;
}

Buffer bufferOf(const Pixels& pixels, const Babl* format) {
    Buffer buffer(gegl_buffer_new(&area, format), &g_object_unref);
    const Babl* bytes = babl_format_with_space("R'G'B'A u8", babl_format_get_space(format));
    gegl_buffer_set(buffer.get(), &area, 0, bytes, pixels.data(), GEGL_AUTO_ROWSTRIDE);
    return buffer;
}

/// The picture's own numbers, in the colour space that it has.
Pixels pixelsOf(GeglBuffer* buffer) {
    Pixels pixels(std::size_t{4} * area.width * area.height);
    const Babl* space = babl_format_get_space(gegl_buffer_get_format(buffer));
    gegl_buffer_get(buffer, &area, 1.0, babl_format_with_space("R'G'B'A u8", space), pixels.data(),
                    GEGL_AUTO_ROWSTRIDE, GEGL_ABYSS_NONE);
    return pixels;
}

/// What the library makes of them, in the order of bytes of the command line.
Pixels adjusted(Pixels pixels, const _AdjustParam& record) {
    const auto swapped = [&] {
        for (std::size_t at = 0; at < pixels.size(); at += 4) std::swap(pixels[at], pixels[at + 2]);
    };
    swapped();
    unsigned char* bits = pixels.data();
    CxImage* image = createCxImage(&bits, area.width, area.height, 32, IMAGE_FORMAT_BGRA);
    doAdjust(image, record);
    releaseCxImage(image);
    swapped();
    return pixels;
}

_AdjustParam recordWith(const std::function<void(_AdjustParam&)>& change) {
    _AdjustParam record = keladjust::app::usualRecord();
    change(record);
    return record;
}

/// A graph from a buffer through the operation into another.
class Graph {
public:
    explicit Graph(GeglBuffer* input)
        : graph_(gegl_node_new(), &g_object_unref),
          source_(gegl_node_new_child(graph_.get(), "operation", "gegl:buffer-source", "buffer",
                                      input, nullptr)),
          adjust_(gegl_node_new_child(graph_.get(), "operation", "keladjust:adjust", nullptr)) {
        gegl_node_link(source_, adjust_);
    }

    GeglNode* adjust() { return adjust_; }

    Buffer result(GeglNode* last = nullptr) {
        GeglBuffer* result = nullptr;
        GeglNode* sink = gegl_node_new_child(graph_.get(), "operation", "gegl:buffer-sink",
                                             "buffer", &result, nullptr);
        gegl_node_link(last != nullptr ? last : adjust_, sink);
        gegl_node_process(sink);
        return {result, &g_object_unref};
    }

    GeglNode* crop(int x, int y, int width, int height) {
        GeglNode* crop =
            gegl_node_new_child(graph_.get(), "operation", "gegl:crop", "x", static_cast<double>(x),
                                "y", static_cast<double>(y), "width", static_cast<double>(width),
                                "height", static_cast<double>(height), nullptr);
        gegl_node_link(adjust_, crop);
        return crop;
    }

private:
    Node graph_;
    GeglNode* source_;
    GeglNode* adjust_;
};

class Operation : public testing::Test {
protected:
    void SetUp() override { takeCalls(); }
    const Babl* srgb_ = babl_format("R'G'B'A u8");
};

TEST_F(Operation, HasAPresetAndEverySettingInTheOrderOfTheRecord) {
    guint count = 0;
    GParamSpec** properties = gegl_operation_list_properties("keladjust:adjust", &count);
    const auto settings = allSettings();
    ASSERT_EQ(count, 1 + settings.size());
    EXPECT_STREQ(g_param_spec_get_name(properties[0]), "preset");
    for (std::size_t index = 0; index < settings.size(); ++index) {
        const KeladjustSetting& setting = settings[index];
        GParamSpec* property = properties[1 + index];
        EXPECT_STREQ(g_param_spec_get_name(property), setting.name);
        EXPECT_STREQ(g_param_spec_get_nick(property), setting.label);
        EXPECT_STREQ(g_param_spec_get_blurb(property), setting.help);
        EXPECT_STREQ(gegl_param_spec_get_property_key(property, "group"), setting.group);
    }
    g_free(properties);
}

TEST_F(Operation, HasSlidersOverTheUsefulRangeAndTakesAnyValue) {
    guint count = 0;
    GParamSpec** properties = gegl_operation_list_properties("keladjust:adjust", &count);
    for (const KeladjustSetting& setting : allSettings()) {
        GParamSpec* property = properties[1 + setting.slot];
        if (setting.isInteger != 0) {
            const auto* spec = GEGL_PARAM_SPEC_INT(property);
            EXPECT_EQ(static_cast<float>(spec->ui_minimum), setting.lowest) << setting.name;
            EXPECT_EQ(static_cast<float>(spec->ui_maximum), setting.highest) << setting.name;
            EXPECT_EQ(spec->parent_instance.minimum, G_MININT32) << setting.name;
            EXPECT_EQ(static_cast<float>(spec->parent_instance.default_value), setting.usual);
        } else {
            const auto* spec = GEGL_PARAM_SPEC_DOUBLE(property);
            EXPECT_EQ(static_cast<float>(spec->ui_minimum), setting.lowest) << setting.name;
            EXPECT_EQ(static_cast<float>(spec->ui_maximum), setting.highest) << setting.name;
            EXPECT_EQ(spec->parent_instance.maximum, static_cast<double>(G_MAXFLOAT));
            EXPECT_EQ(static_cast<float>(spec->parent_instance.default_value), setting.usual);
        }
        const bool angle = std::strstr(setting.name, "-degree") != nullptr ||
                           std::strstr(setting.name, "-hue") != nullptr;
        const gchar* unit = gegl_param_spec_get_property_key(property, "unit");
        EXPECT_EQ(unit != nullptr && std::strcmp(unit, "degree") == 0, angle) << setting.name;
    }
    g_free(properties);
}

TEST_F(Operation, LeavesPicturesAloneToStartWith) {
    const Pixels pixels = noise(false);
    Graph graph(bufferOf(pixels, srgb_).get());
    EXPECT_EQ(pixelsOf(graph.result().get()), pixels);
}

TEST_F(Operation, PassesEverySettingOn) {
    for (const KeladjustSetting& setting : allSettings()) {
        const auto value = static_cast<double>(setting.usual) + 7;
        Graph graph(bufferOf(noise(), srgb_).get());
        if (setting.isInteger != 0) {
            gegl_node_set(graph.adjust(), setting.name, static_cast<int>(value), nullptr);
        } else {
            gegl_node_set(graph.adjust(), setting.name, value, nullptr);
        }
        graph.result();
        const auto calls = takeCalls();
        ASSERT_EQ(calls.size(), 1u);
        const _AdjustParam expected = recordWith(
            [&](_AdjustParam& record) { keladjust::app::setValue(record, setting, value); });
        EXPECT_EQ(std::memcmp(&calls[0].record, &expected, sizeof expected), 0) << setting.name;
    }
}

// Haze, vignette and neighbours are those of the whole picture.
TEST_F(Operation, IsCalledOnceForTheWholePictureWhateverThreadsAndChunks) {
    const Pixels pixels = noise();
    const Pixels expected = adjusted(pixels, recordWith([](_AdjustParam& record) {
                                         record.dehaze = 40;
                                         record.clarity = 30;
                                         record.vignetteAmount = -70;
                                     }));
    for (const int threads : {1, 2, 4}) {
        for (const int chunk : {1000, 100000, 1 << 24}) {
            g_object_set(gegl_config(), "threads", threads, "chunk-size", chunk, nullptr);
            Graph graph(bufferOf(pixels, srgb_).get());
            gegl_node_set(graph.adjust(), "dehaze", 40.0, "clarity", 30.0, "vignette-amount", -70.0,
                          nullptr);
            EXPECT_EQ(pixelsOf(graph.result().get()), expected) << threads << ' ' << chunk;
            const auto calls = takeCalls();
            ASSERT_EQ(calls.size(), 1u) << threads << ' ' << chunk;
            EXPECT_EQ(calls[0].width, static_cast<unsigned>(area.width));
            EXPECT_EQ(calls[0].height, static_cast<unsigned>(area.height));
        }
    }
}

TEST_F(Operation, IsCalledForTheWholePictureWhereOnlyAPartIsAskedFor) {
    const Pixels pixels = noise();
    Graph graph(bufferOf(pixels, srgb_).get());
    gegl_node_set(graph.adjust(), "dehaze", 40.0, "vignette-amount", -70.0, nullptr);
    const Buffer part = graph.result(graph.crop(100, 50, 30, 20));
    const auto calls = takeCalls();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].width, static_cast<unsigned>(area.width));
    const Pixels whole = adjusted(pixels, recordWith([](_AdjustParam& record) {
                                      record.dehaze = 40;
                                      record.vignetteAmount = -70;
                                  }));
    const GeglRectangle corner = {100, 50, 1, 1};
    unsigned char pixel[4];
    gegl_buffer_get(part.get(), &corner, 1.0, srgb_, pixel, GEGL_AUTO_ROWSTRIDE, GEGL_ABYSS_NONE);
    EXPECT_EQ(std::memcmp(pixel, &whole[4 * (50 * std::size_t{area.width} + 100)], 4), 0);
}

TEST_F(Operation, NeverAsksForTheGraphicsCard) {
    Graph graph(bufferOf(noise(), srgb_).get());
    gegl_node_set(graph.adjust(), "exposure", 20.0, nullptr);
    graph.result();
    for (const Call& call : takeCalls()) EXPECT_EQ(call.path, KELADJUST_CPU);
}

// The numbers in the picture are adjusted, as the command line adjusts those in a file.
TEST_F(Operation, KeepsTheColourSpaceOfThePicture) {
    const Pixels pixels = noise();
    const Babl* space = babl_space("ProPhoto");
    ASSERT_NE(space, nullptr);
    Graph graph(bufferOf(pixels, babl_format_with_space("R'G'B'A u8", space)).get());
    gegl_node_set(graph.adjust(), "temperature", 9000, "saturation", 30.0, nullptr);
    const Buffer result = graph.result();
    EXPECT_EQ(babl_format_get_space(gegl_buffer_get_format(result.get())), space);
    EXPECT_EQ(pixelsOf(result.get()), adjusted(pixels, recordWith([](_AdjustParam& record) {
                                                   record.temperature = 9000;
                                                   record.saturation = 30;
                                               })));
}

TEST_F(Operation, AddsNoAlphaToAPictureWithout) {
    const Pixels pixels = noise();
    Graph opaque(bufferOf(pixels, babl_format("R'G'B' u8")).get());
    gegl_node_set(opaque.adjust(), "exposure", 20.0, nullptr);
    const Buffer result = opaque.result();
    EXPECT_EQ(babl_format_has_alpha(gegl_buffer_get_format(result.get())), 0);
    EXPECT_EQ(pixelsOf(result.get()),
              adjusted(pixels, recordWith([](_AdjustParam& record) { record.exposure = 20; })));
    Graph transparent(bufferOf(pixels, srgb_).get());
    EXPECT_NE(babl_format_has_alpha(gegl_buffer_get_format(transparent.result().get())), 0);
}

TEST_F(Operation, HasBytesMovedInTheOrderOfTheCommandLine) {
    const Pixels pixels = noise(false);
    Graph graph(bufferOf(pixels, srgb_).get());
    gegl_node_set(graph.adjust(), "distortion", 30.0, nullptr);
    EXPECT_EQ(pixelsOf(graph.result().get()),
              adjusted(pixels, recordWith([](_AdjustParam& record) { record.distortion = 30; })));
}

TEST_F(Operation, PassesAPlaneWithoutEndOn) {
    const Node graph(gegl_node_new(), &g_object_unref);
    GeglColor* red = gegl_color_new("rgb(1, 0, 0)");
    GeglNode* plane =
        gegl_node_new_child(graph.get(), "operation", "gegl:color", "value", red, nullptr);
    GeglNode* adjust = gegl_node_new_child(graph.get(), "operation", "keladjust:adjust", "exposure",
                                           -50.0, nullptr);
    gegl_node_link(plane, adjust);
    const GeglRectangle pixel = {3, 4, 1, 1};
    unsigned char found[4] = {};
    gegl_node_blit(adjust, 1.0, &pixel, srgb_, found, GEGL_AUTO_ROWSTRIDE, GEGL_BLIT_DEFAULT);
    const unsigned char expected[4] = {255, 0, 0, 255};
    EXPECT_EQ(std::memcmp(found, expected, 4), 0);
    EXPECT_TRUE(takeCalls().empty());
    g_object_unref(red);
}

TEST_F(Operation, TakesAPresetOfWhichMovedSlidersReplaceTheirPart) {
    const TemporaryFolder folder;
    const auto preset = folder / "look.json";
    std::ofstream(preset) << R"({"exposure": 20, "red-hue": 15, "tint": 5})";
    Graph graph(bufferOf(noise(), srgb_).get());
    gegl_node_set(graph.adjust(), "tint", -30.0, "preset", preset.c_str(), nullptr);
    graph.result();
    const auto calls = takeCalls();
    ASSERT_EQ(calls.size(), 1u);
    const _AdjustParam expected = recordWith([](_AdjustParam& record) {
        record.exposure = 20;
        record.range[KELADJUST_RANGE_RED].hue = 15;
        record.tint = -30;
    });
    EXPECT_EQ(std::memcmp(&calls[0].record, &expected, sizeof expected), 0);
}

/// The warnings of one part of the program's while it lives.
class Warnings {
public:
    explicit Warnings(const char* domain)
        : domain_(domain), handler_(g_log_set_handler(domain, G_LOG_LEVEL_WARNING, note, this)) {}
    ~Warnings() { g_log_remove_handler(domain_, handler_); }
    Warnings(const Warnings&) = delete;
    Warnings& operator=(const Warnings&) = delete;
    std::string text;

private:
    static void note(const gchar*, GLogLevelFlags, const gchar* message, gpointer warnings) {
        static_cast<Warnings*>(warnings)->text += message;
    }
    const char* domain_;
    guint handler_;
};

TEST_F(Operation, KeepsItsPresetWhenAnotherIsWrong) {
    const TemporaryFolder folder;
    const auto preset = folder / "look.json";
    std::ofstream(preset) << R"({"exposure": 20})";
    Graph graph(bufferOf(noise(), srgb_).get());
    gegl_node_set(graph.adjust(), "preset", preset.c_str(), nullptr);
    const Warnings warnings("keladjust");
    gegl_node_set(graph.adjust(), "preset", "/nowhere.json", nullptr);
    EXPECT_NE(warnings.text.find("/nowhere.json: no such file"), std::string::npos)
        << warnings.text;
    gchar* kept = nullptr;
    gegl_node_get(graph.adjust(), "preset", &kept, nullptr);
    EXPECT_STREQ(kept, preset.c_str());
    g_free(kept);
    graph.result();
    EXPECT_EQ(takeCalls().at(0).record.exposure, 20.0f);
}

// GLib says so itself, with a warning.
TEST_F(Operation, KeepsASliderThatIsSetToNoNumberOrAnEndlessOne) {
    Graph graph(bufferOf(noise(), srgb_).get());
    gegl_node_set(graph.adjust(), "exposure", 20.0, nullptr);
    const Warnings warnings("GLib-GObject");
    for (const double wrong : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
        gegl_node_set(graph.adjust(), "exposure", wrong, nullptr);
        double kept = 0;
        gegl_node_get(graph.adjust(), "exposure", &kept, nullptr);
        EXPECT_EQ(kept, 20) << wrong;
    }
    EXPECT_NE(warnings.text.find("exposure"), std::string::npos) << warnings.text;
}

TEST_F(Operation, ReportsItsProgress) {
    Graph graph(bufferOf(noise(), srgb_).get());
    gegl_node_set(graph.adjust(), "dehaze", 20.0, nullptr);
    std::vector<double> shares;
    using Report = void (*)(GeglNode*, gdouble, std::vector<double>*);
    const Report report = [](GeglNode*, gdouble share, std::vector<double>* list) {
        list->push_back(share);
    };
    g_signal_connect(graph.adjust(), "progress", G_CALLBACK(report), &shares);
    graph.result();
    ASSERT_GE(shares.size(), 2u);
    EXPECT_EQ(shares.front(), 0);
    EXPECT_EQ(shares.back(), 1);
    EXPECT_TRUE(std::ranges::is_sorted(shares));
}

}  // namespace

int main(int argc, char** argv) {
    gegl_init(&argc, &argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
