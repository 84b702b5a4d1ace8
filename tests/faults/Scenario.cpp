#include "Scenario.h"

#include <ostream>

#include "codecs/Codec.h"
#include "files/AtomicFile.h"
#include "support/Pictures.h"

namespace keladjust::faults {

const std::vector<Scenario>& scenarios() {
    static const std::vector<Scenario> all = {
        {"Jpeg", {"a.jpg", "--exposure", "20", "-o", "old.jpg"}, {"old.jpg"}},
        {"Png", {"a.png", "--clarity", "20", "-o", "new.png"}, {"new.png"}},
        {"Tiff", {"a.tif", "--exposure", "20", "-o", "old.tif"}, {"old.tif"}},
        {"WebP", {"a.webp", "--dehaze", "20", "-o", "new.webp"}, {"new.webp"}},
        {"InPlace", {"a.jpg", "--sharpen", "20", "--in-place"}, {"a.jpg"}},
        {"Preset",
         {"a.png", "--preset", "warm.json", "--save-preset", "old.json", "-o", "new.png"},
         {"old.json", "new.png"}},
        {"Table", {"lut", "--preset", "warm.json", "--size", "4", "-o", "old.cube"}, {"old.cube"}},
        {"Sheet",
         {"a.png", "--sheet", "exposure", "--compare", "-o", "new.png"},
         {"new.png", "new-compare.png", "new-sheet-exposure.png"}},
        {"Batch",
         {"a.jpg", "bad.jpg", "a.png", "--exposure", "20", "--jobs", "2", "-o", "out/"},
         {"out/a.jpg", "out/a.png"},
         1},
    };
    return all;
}

void prepareFolder(const std::filesystem::path& folder) {
    const app::Photo photo = test::noise(24, 16, app::ChannelLayout::bgra);
    for (const app::Codec* codec : app::codecs()) {
        const auto path = folder / ("a." + std::string(codec->extensions().front()));
        app::writeFile(path, codec->encode(photo, {}));
        test::annotate(path, 6);
    }
    app::writeFile(folder / "bad.jpg", std::string_view("\xFF\xD8\xFF and no more"));
    app::writeFile(folder / "warm.json", std::string_view(R"({"temperature": 13000})"));
    for (const char* name : {"old.jpg", "old.tif", "old.json", "old.cube"}) {
        app::writeFile(folder / name, std::string_view("what was there before"));
    }
}

std::ostream& operator<<(std::ostream& out, const Scenario& scenario) {
    return out << scenario.name;
}

}  // namespace keladjust::faults
