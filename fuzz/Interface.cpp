// The exported interface in any order of calls, from two threads of a host with a picture each;
// what belongs to one thread at a time, such as starting and stopping, the first of them does.

#include <dlfcn.h>
#include <keladjust/CxImage.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "filters/Stages.h"
#include "models/temperature/Temperature.h"
#include "support/Choices.h"
#include "support/Finding.h"
#include "support/GuardedBuffer.h"
#include "support/StageSettings.h"

namespace {

using namespace keladjust;
using namespace keladjust::fuzz;
using Bytes = std::vector<std::uint8_t>;

#ifdef KELADJUST_ENGINE_CONFIG
constexpr const char* engineConfig = KELADJUST_ENGINE_CONFIG;
#else
constexpr const char* engineConfig = nullptr;
#endif

struct Release {
    void operator()(CxImage* image) const { releaseCxImage(image); }
};
using Image = std::unique_ptr<CxImage, Release>;

_AdjustParam chooseRecord(FuzzedDataProvider& input) {
    _AdjustParam record = test::identity;
    for (int i = input.ConsumeIntegralInRange(0, 3); i > 0; --i) {
        chooseSettings(input, chooseStage(input), record);
    }
    return record;
}

/// What a host that runs an adjustment notes of its progress.
class Progress {
public:
    Progress(int cancelAt, bool throws) : left_(cancelAt), throws_(throws) {}

    static std::int32_t tell(void* user, float share) {
        return static_cast<Progress*>(user)->note(share);
    }
    float last() const { return last_; }
    bool hasCancelled() const { return hasCancelled_; }

private:
    std::int32_t note(float share) {
        if (!(share >= last_ && share <= 1.0f) || (last_ < 0 && share != 0.0f)) {
            finding("progress goes from %g to %g", static_cast<double>(last_),
                    static_cast<double>(share));
        }
        last_ = share;
        if (left_-- != 0) return 0;
        hasCancelled_ = share < 1.0f;
        if (throws_) throw std::runtime_error("cancelled");
        return 1;
    }

    float last_ = -1.0f;
    int left_;
    bool throws_;
    bool hasCancelled_ = false;
};

void tryConversions(_tagMyRGBQUAD colour) {
    const test::Bytes in{colour.red, colour.green, colour.blue};
    const _tagMyRGBQUAD hsl = CxImage::RGBtoHSL(colour);
    const _tagMyRGBQUAD rgb = CxImage::HSLtoRGB(colour);
    if (test::byteHslOf(in) != test::Bytes{hsl.red, hsl.green, hsl.blue} ||
        test::byteRgbOf(in) != test::Bytes{rgb.red, rgb.green, rgb.blue}) {
        finding("a conversion of %d, %d, %d", colour.red, colour.green, colour.blue);
    }
}

/// A thread of a host, with its picture.
class Host {
public:
    Host(Bytes input, bool isOwner)
        : bytes_(std::move(input)),
          input_(bytes_.data(), bytes_.size()),
          isOwner_(isOwner),
          picture_(choosePicture(input_)),
          buffer_(picture_.bytes, input_.ConsumeIntegral<std::uint8_t>()),
          bits_(buffer_.data()),
          image_(createCxImage(&bits_, picture_.width, picture_.height, picture_.bpp,
                               picture_.format)) {}

    void run() {
        constexpr int mostCalls = 12;
        for (int i = 0; i < mostCalls && input_.remaining_bytes() > 0; ++i) call();
        if (!buffer_.isIntact()) finding("a byte outside the picture changed");
    }

private:
    void call() {
        using Call = void (Host::*)();
        static constexpr Call forAnyThread[] = {
            &Host::adjust,          &Host::runAdjustment, &Host::bake,
            &Host::askForSettings,  &Host::setLimit,      &Host::changeImage,
            &Host::splitAndCombine, &Host::makeStrip};
        static constexpr Call forOwner[] = {&Host::start,        &Host::stop,       &Host::setLog,
                                            &Host::fetchTable,   &Host::writeTable, &Host::loadFile,
                                            &Host::loadAndUnload};
        const std::size_t calls = std::size(forAnyThread) + (isOwner_ ? std::size(forOwner) : 0);
        const auto choice = input_.ConsumeIntegralInRange<std::size_t>(0, calls - 1);
        const Call chosen = choice < std::size(forAnyThread)
                                ? forAnyThread[choice]
                                : forOwner[choice - std::size(forAnyThread)];
        (this->*chosen)();
    }

    Bytes pixels() { return {buffer_.data(), buffer_.data() + buffer_.size()}; }

    /// What the stages by themselves make of the picture.
    Bytes adjustedByStages(const _AdjustParam& record) {
        Bytes copy = pixels();
        std::uint8_t* bits = copy.data();
        CxImage image(&bits, picture_.width, picture_.height, picture_.bpp, picture_.format);
        for (const Stage& stage : stages) stage.run(&image, record);
        return copy;
    }

    void adjust() {
        const _AdjustParam record = chooseRecord(input_);
        const Bytes expected = adjustedByStages(record);
        if (doAdjust(image_.get(), record) != image_.get()) finding("another picture comes back");
        if (engineConfig == nullptr && pixels() != expected) finding("doAdjust() is another");
    }

    void runAdjustment() {
        const _AdjustParam record = chooseRecord(input_);
        // A host's record may be shorter or longer than the library's.
        const auto bytes = input_.ConsumeIntegralInRange<std::size_t>(0, sizeof record + 40);
        const bool isWhole = input_.ConsumeBool();
        const std::size_t recordBytes = isWhole ? sizeof record : bytes;
        const auto* const recordFirst = reinterpret_cast<const std::uint8_t*>(&record);
        Bytes given(recordFirst, recordFirst + std::min(recordBytes, sizeof record));
        given.resize(recordBytes);
        bool isKnown = true;
        for (std::size_t i = sizeof record; i < recordBytes; ++i) {
            given[i] = input_.ConsumeIntegral<std::uint8_t>() == 0xFF ? 1 : 0;
            isKnown = isKnown && given[i] == 0;
        }
        GuardedBuffer recordBuffer(given, 0);
        _AdjustParam effective = test::identity;
        std::memcpy(&effective, &record, std::min(recordBytes, sizeof record) / 4 * 4);

        Progress progress(input_.ConsumeIntegralInRange(-1, 3), input_.ConsumeBool());
        KeladjustRun wishes{};
        wishes.size = input_.ConsumeBool()
                          ? static_cast<std::uint32_t>(sizeof wishes)
                          : input_.ConsumeIntegralInRange<std::uint32_t>(0, sizeof wishes);
        wishes.path = input_.ConsumeIntegralInRange(-1, 3);
        wishes.maxThreads = input_.ConsumeIntegralInRange(-1, 4);
        wishes.progress = input_.ConsumeBool() ? Progress::tell : nullptr;
        wishes.user = &progress;
        wishes.pathTaken = -7;
        wishes.hardwareOnly = input_.ConsumeBool() ? 1 : 0;
        // The host's structure ends where its size says.
        const auto* const first = reinterpret_cast<const std::uint8_t*>(&wishes);
        GuardedBuffer runBuffer(
            {first, first + std::max<std::size_t>(wishes.size, sizeof wishes.size)}, 0);
        if (wishes.size < offsetof(KeladjustRun, user) + sizeof wishes.user) {
            // No host gives a callback without what it is called with.
            wishes.progress = nullptr;
            constexpr std::size_t begin = offsetof(KeladjustRun, progress);
            if (runBuffer.size() > begin) {
                std::memset(runBuffer.data() + begin, 0, runBuffer.size() - begin);
            }
        }

        const Bytes before = pixels();
        const Bytes expected = adjustedByStages(effective);
        const KeladjustResult result =
            keladjustRun(image_.get(), reinterpret_cast<const _AdjustParam*>(recordBuffer.data()),
                         recordBytes, reinterpret_cast<KeladjustRun*>(runBuffer.data()));

        KeladjustRun told = wishes;
        told.path = KELADJUST_AUTO;
        std::memcpy(&told, runBuffer.data(), std::min<std::size_t>(wishes.size, sizeof told));
        const bool isPath = told.path >= KELADJUST_AUTO && told.path <= KELADJUST_GPU;
        if (result == KELADJUST_REFUSED && pixels() != before) finding("refused, and changed");
        if (result == KELADJUST_REFUSED && isKnown && isPath && told.path != KELADJUST_GPU) {
            finding("refused for no reason: %s", told.reason);
        }
        if (result != KELADJUST_REFUSED && (!isKnown || !isPath)) finding("not refused");
        if (result == KELADJUST_CANCELLED && !progress.hasCancelled()) finding("nobody cancelled");
        if (result == KELADJUST_DONE) {
            if (progress.hasCancelled()) finding("not cancelled");
            const bool isTold = wishes.size > offsetof(KeladjustRun, progress) && wishes.progress;
            if (isTold && progress.last() != 1.0f) finding("done, and not told so");
            const bool isOnCpu = engineConfig == nullptr || told.path == KELADJUST_CPU;
            if (isOnCpu && pixels() != expected) finding("keladjustRun() is another");
        }
        if (!recordBuffer.isIntact()) finding("a byte outside the record changed");
        if (!runBuffer.isIntact()) finding("a byte behind the host's structure changed");
    }

    void bake() {
        const _AdjustParam record = chooseRecord(input_);
        const int edge = input_.ConsumeIntegralInRange(-1, 12);
        const auto count = static_cast<std::size_t>(std::max(edge, 0));
        GuardedBuffer points(Bytes(12 * count * count * count, 0xEE), 0);
        const bool isGiven = input_.ConsumeIntegral<std::uint8_t>() != 1;
        const bool isBaked =
            keladjustBake(&record, sizeof record, edge, input_.ConsumeBool(),
                          isGiven ? reinterpret_cast<float*>(points.data()) : nullptr);
        if (isBaked != (isGiven && edge >= 2)) finding("a bake of %d", edge);
        if (!points.isIntact()) finding("a byte outside the table changed");
    }

    void askForSettings() {
        int count = 0;
        const KeladjustSetting* const settings = keladjustSettings(&count);
        for (int i = 0; i < count; ++i) {
            if (settings[i].slot != i) finding("slot %d is said to be %d", i, settings[i].slot);
        }
        if (count != KELADJUST_SLOT_COUNT || keladjustSettings(nullptr) != settings) {
            finding("%d settings", count);
        }
        if (std::strlen(keladjustVersion()) < 5) finding("version %s", keladjustVersion());
    }

    void setLimit() { setMaxThreads(input_.ConsumeIntegralInRange(-1, 4)); }

    unsigned chooseSize() {
        constexpr unsigned sizes[] = {0, 1, 5, 33, 70, 0x10000, 0xFFFFFFFF};
        return input_.PickValueInArray(sizes);
    }

    void changeImage() {
        constexpr unsigned depths[] = {0, 8, 12, 16, 24, 32};
        CxImage own;
        for (int i = input_.ConsumeIntegralInRange(1, 6); i > 0; --i) {
            switch (input_.ConsumeIntegralInRange(0, 6)) {
                case 0: {
                    const unsigned width = chooseSize();
                    const unsigned height = chooseSize();
                    own.Create(width, height, input_.PickValueInArray(depths),
                               static_cast<_ImagePixelFormat>(input_.ConsumeIntegralInRange(0, 5)));
                    break;
                }
                case 1:
                    own.Copy(image_.get());
                    if (own.GetSize() != image_->GetSize()) finding("a copy of another size");
                    // The buffer of a copy in place is the host's like the source's.
                    own.ownsBits = true;
                    break;
                case 2:
                    own.Copy(own);
                    break;
                case 3:
                    own.Destroy();
                    break;
                case 4: {
                    // A host's buffer comes from malloc() where a copy may free it.
                    auto* bits = static_cast<unsigned char*>(std::calloc(4 * 3, 1));
                    unsigned char* const host = bits;
                    CxImage adopting(&bits, 3, 1, 32, IMAGE_FORMAT_RGBA);
                    adopting.Copy(image_.get());
                    const bool isKept = bits == host;
                    if (isKept) std::free(host);
                    if (adopting.getFormat() != image_->getFormat() ||
                        adopting.GetEffWidth() != image_->GetEffWidth()) {
                        finding("a copy of another kind");
                    }
                    break;
                }
                case 5: {
                    const int x = input_.ConsumeIntegralInRange(-1, 71);
                    const int y = input_.ConsumeIntegralInRange(-1, 71);
                    const _tagMyRGBQUAD colour = own.GetPixelColor(x, y, input_.ConsumeBool());
                    own.SetPixelColor(x, y, colour);
                    tryConversions(colour);
                    break;
                }
                default:
                    doAdjust(&own, chooseRecord(input_));
            }
        }
    }

    void splitAndCombine() {
        CxImage planes[4];
        const bool isHsl = input_.ConsumeBool();
        CxImage* const alpha = input_.ConsumeBool() ? &planes[3] : nullptr;
        const bool isSplit = isHsl ? image_->SplitHSLA(&planes[0], &planes[1], &planes[2], alpha)
                                   : image_->SplitRGBA(&planes[0], &planes[1], &planes[2], alpha);
        // Planes without pixels are not 8 bits deep, which is a host's error.
        if (!isSplit || planes[0].GetBits() == nullptr) return;
        CxImage joined(1, 1, picture_.bpp, picture_.format);
        joined.Combine(&planes[0], &planes[1], &planes[2], alpha, isHsl ? 1 : 0);
        if (input_.ConsumeBool()) {
            CxImage other(planes[0]);  // both name one buffer, which one of them gives up
            other.ownsBits = false;
            joined.Combine(&other, &planes[1], &planes[2], alpha, 0);
        }
    }

    void makeStrip() {
        const Image strip(createTemperateColor(input_.ConsumeIntegralInRange(-1, 400),
                                               input_.ConsumeIntegralInRange(-1, 3)));
        if (strip->GetBits() != nullptr && strip->GetBpp() != 24) finding("a strip of no colours");
    }

    void start() {
        const bool finds = input_.ConsumeBool();
        const bool isRunning =
            initOgreRunTime(finds ? engineConfig : "/nowhere/", finds ? engineConfig : "/nowhere/");
        if (engineConfig == nullptr && isRunning) finding("an engine that is not there starts");
        hasTable_ = true;
    }

    void stop() {
        releaseOgre();
        hasTable_ = false;
    }

    void setLog() {
        const std::string path = input_.ConsumeRandomLengthString(600);
        const std::string kept = setLogPath(path.c_str());
        if (kept != std::string(path.c_str()).substr(0, 511)) finding("another log path");
        setLogPath("/dev/null/");  // where no log is written
    }

    void fetchTable() {
        const float* const table = getLut3dData(chooseRecord(input_));
        if ((table != nullptr) != hasTable_) finding("a table before or behind its time");
    }

    void writeTable() {
        const char* const paths[] = {nullptr, "/nowhere/table.cube", "/dev/null"};
        const char* const path = input_.PickValueInArray(paths);
        const bool isWritten = writeLut3DFile(chooseRecord(input_), path);
        if (isWritten != (path == paths[2])) finding("a file that is written, or is not");
    }

    void loadFile() {
        const std::string name = input_.ConsumeRandomLengthString(20);
        file_.reset(createCxImageFromFile(input_.ConsumeBool() ? name.c_str() : nullptr));
        if (file_ == nullptr) finding("no image from a file");
        if (engineConfig == nullptr && file_->GetBits() != nullptr) finding("a file is read");
        doAdjust(file_.get(), chooseRecord(input_));
    }

    /// The library as a module of its own, with a life of its own.
    void loadAndUnload() {
        void* const module = dlopen(KELADJUST_FUZZ_MODULE, RTLD_NOW | RTLD_LOCAL);
        if (module == nullptr) finding("%s", dlerror());
        const auto find = [module](const char* name, auto* prototype) {
            const auto found = reinterpret_cast<decltype(prototype)>(dlsym(module, name));
            if (found == nullptr) finding("%s is not exported", name);
            return found;
        };
        const auto startIt = find("initOgreRunTime", &initOgreRunTime);
        const auto stopIt = find("releaseOgre", &releaseOgre);
        const auto adjustWithIt = find("doAdjust", &doAdjust);
        const auto tableOfIt = find("getLut3dData", &getLut3dData);
        for (int i = input_.ConsumeIntegralInRange(0, 4); i > 0; --i) {
            switch (input_.ConsumeIntegralInRange(0, 3)) {
                case 0:
                    startIt("/nowhere/", "/nowhere/");
                    break;
                case 1:
                    stopIt();
                    break;
                case 2:
                    adjustWithIt(image_.get(), chooseRecord(input_));
                    break;
                default:
                    tableOfIt(chooseRecord(input_));
            }
        }
        dlclose(module);
    }

    Bytes bytes_;
    FuzzedDataProvider input_;
    bool isOwner_;
    ChosenPicture picture_;
    GuardedBuffer buffer_;
    unsigned char* bits_;
    Image image_;
    Image file_;
    bool hasTable_ = false;
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // Where the library says that it cannot write a file.
    return std::freopen("/dev/null", "w", stdout) == nullptr ? 1 : 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::size_t half = size / 2;
    {
        Host owner({data, data + half}, true);
        Host other({data + half, data + size}, false);
        std::thread thread([&other] { other.run(); });
        owner.run();
        thread.join();
    }
    releaseOgre();
    return 0;
}
