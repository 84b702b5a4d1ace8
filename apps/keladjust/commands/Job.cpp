#include "commands/Job.h"

#include <new>
#include <optional>

#include "codecs/Metadata.h"
#include "codecs/PictureFile.h"
#include "commands/OverlappedEncoding.h"
#include "files/AtomicFile.h"
#include "pictures/Comparison.h"
#include "pictures/ContactSheet.h"
#include "pictures/Orientation.h"
#include "text/PathText.h"

namespace keladjust::app {

namespace {

void append(std::vector<std::string>& target, const std::vector<std::string>& lines) {
    target.insert(target.end(), lines.begin(), lines.end());
}

std::string described(const Adjustment& adjustment) {
    if (adjustment.onGpuPath) return "adjusted on the GPU path";
    const std::string text = "adjusted on the CPU path";
    return adjustment.obstacle.empty() ? text : text + " (" + adjustment.obstacle + ")";
}

class PictureJob {
public:
    PictureJob(const PicturePlan& plan, const JobSettings& settings, Adjuster& adjuster,
               JobReport& report)
        : plan_(plan), settings_(settings), adjuster_(adjuster), report_(report) {}

    void run() {
        const PictureFile file(plan_.input, settings_.bound);
        const Codec& reader = file.codec;
        const Codec& writer = plan_.codec != nullptr ? *plan_.codec : reader;
        // The picture first: metadata is not read of what is refused.
        std::optional<Metadata> read;
        OverlappedEncoding overlapped(writer, settings_.encoding, adjuster_, settings_.record,
                                      [&](const Photo&) {
                                          read.emplace(file.bytes);
                                          return read->orientation() == 1;
                                      });
        const bool isOnlyOutput = !plan_.comparison && !plan_.sheet;
        Photo stored =
            reader.decode(file.bytes, settings_.bound, isOnlyOutput ? &overlapped : nullptr);
        if (!read) read.emplace(file.bytes);
        Metadata& metadata = *read;
        Photo photo = upright(std::move(stored), metadata.orientation());
        metadata.describe(photo);
        append(report_.notices, photo.notices);
        append(report_.notices, metadata.notices());
        if (photo.hasAlpha && !writer.keepsAlpha()) {
            report_.notices.push_back("transparency is dropped: " + std::string(writer.name()) +
                                      " has none");
        }
        report_.details = std::string(reader.name()) + ", " + std::to_string(photo.width()) +
                          " x " + std::to_string(photo.height());

        if (overlapped.isDone()) {
            report_.details += ", " + described({});
            write(overlapped.takeResult(), metadata, plan_.output);
            return;
        }
        const std::optional<Photo> before =
            plan_.comparison || plan_.sheet ? std::optional(photo) : std::nullopt;
        report_.details += ", " + described(adjuster_.adjust(photo, settings_.record));
        write(photo, writer, metadata, plan_.output);
        if (plan_.comparison) {
            write(sideBySide(*before, photo), writer, metadata.colourOnly(), *plan_.comparison);
        }
        if (plan_.sheet) {
            write(contactSheet(*before, *settings_.sheet, settings_.record, adjuster_), writer,
                  metadata.colourOnly(), *plan_.sheet);
        }
    }

private:
    void write(const Photo& photo, const Codec& codec, const Metadata& metadata,
               const std::filesystem::path& target) {
        write(codec.encode(photo, settings_.encoding), metadata, target);
    }

    void write(Bytes encoded, const Metadata& metadata, const std::filesystem::path& target) {
        writeFile(target, metadata.addTo(std::move(encoded), report_.notices));
        report_.written.push_back(target);
    }

    const PicturePlan& plan_;
    const JobSettings& settings_;
    Adjuster& adjuster_;
    JobReport& report_;
};

}  // namespace

JobReport runJob(const PicturePlan& plan, const JobSettings& settings,
                 Adjuster& adjuster) noexcept {
    JobReport report;
    report.plan = &plan;
    try {
        try {
            PictureJob(plan, settings, adjuster, report).run();
        } catch (const Cancelled&) {
            report.cancelled = true;
        } catch (const std::bad_alloc&) {
            report.shortOfMemory = true;
        } catch (const std::exception& error) {
            report.failure = error.what();
        }
    } catch (const std::bad_alloc&) {
        report.shortOfMemory = true;
    }
    return report;
}

}  // namespace keladjust::app
