#include "commands/OutputPlan.h"

#include <map>
#include <set>

#include "files/InputFile.h"
#include "platform/FileNames.h"
#include "text/Failure.h"
#include "text/PathText.h"

namespace keladjust::app {

namespace {

namespace fs = std::filesystem;

/// The full name, through symbolic links, of a file that may not exist yet.
fs::path canonicalPath(const fs::path& path) {
    std::error_code error;
    const fs::path canonical = fs::weakly_canonical(fs::absolute(path), error);
    return error ? fs::absolute(path).lexically_normal() : canonical;
}

/// One spelling per file, however it was named.
fs::path identityOf(const fs::path& path) {
    return platform::comparable(canonicalPath(path));
}

bool isFolder(const fs::path& output, std::size_t pictures) {
    std::error_code error;
    if (!output.has_filename() || fs::is_directory(output, error)) return true;
    if (pictures > 1 && fs::exists(output, error)) {
        throw UsageError(textOf(output) + " is a file; several pictures need a folder");
    }
    return pictures > 1;
}

/// The input's name; its extension changes only if it would not fit the format.
fs::path nameInFolder(const fs::path& input, const Codec* codec) {
    fs::path name = input.filename();
    if (codec != nullptr && !codec->hasExtension(extensionOf(name))) {
        name.replace_extension(pathFromText(std::string(codec->extensions().front())));
    }
    return name;
}

const Codec* codecForOutput(const fs::path& output) {
    const Codec* codec = codecForExtension(extensionOf(output));
    if (codec == nullptr) {
        throw UsageError("cannot tell the format of " + textOf(output) +
                         "; end it in .jpg, .png, .tif or .webp, or add --format");
    }
    return codec;
}

fs::path withSuffix(const fs::path& output, const std::string& suffix) {
    fs::path name = output.stem();
    name += pathFromText(suffix);
    name += output.extension();
    return output.parent_path() / name;
}

PicturePlan planPicture(const Options& options, const fs::path& input, bool intoFolder) {
    PicturePlan plan;
    plan.input = input;
    plan.codec = options.format;
    if (options.inPlace) {
        // Through symbolic links, so that the picture is replaced and not the link to it.
        plan.output = canonicalPath(input);
    } else if (intoFolder) {
        const Codec* codec = options.format;
        if (codec == nullptr) codec = codecForContent(readStart(input, signatureSize));
        plan.output = *options.output / nameInFolder(input, codec);
    } else {
        plan.output = *options.output;
        if (plan.codec == nullptr) plan.codec = codecForOutput(plan.output);
    }
    if (options.compare) plan.comparison = withSuffix(plan.output, "-compare");
    if (options.sheet != nullptr)
        plan.sheet = withSuffix(plan.output, std::string("-sheet-") + options.sheet->name);
    return plan;
}

/// Every file that is to be written, with what it is made from.
class Claims {
public:
    explicit Claims(const std::vector<fs::path>& inputs) {
        for (const fs::path& input : inputs) {
            identities_.insert(identityOf(input));
            if (const auto file = platform::fileIdentity(input)) files_.insert(*file);
        }
    }

    void add(const fs::path& output, const std::string& maker, bool mayReplaceInput) {
        if (!mayReplaceInput && isInput(output)) {
            throw UsageError(textOf(output) + " is an input and would be overwritten; choose " +
                             "another name, or --in-place if that is what you want");
        }
        const auto [claim, isNew] = makers_.emplace(identityOf(output), maker);
        if (!isNew) {
            throw UsageError(claim->second + " and " + maker + " would both be written to " +
                             textOf(output) + "; adjust them in separate runs");
        }
    }

private:
    bool isInput(const fs::path& output) const {
        if (identities_.contains(identityOf(output))) return true;
        // Names can differ and still mean one file: hard links, file systems that ignore case.
        const auto file = platform::fileIdentity(output);
        return file && files_.contains(*file);
    }

    std::set<fs::path> identities_;
    std::set<std::pair<std::uint64_t, std::uint64_t>> files_;
    std::map<fs::path, std::string> makers_;
};

}  // namespace

OutputPlan planOutputs(const Options& options) {
    OutputPlan plan;
    Claims claims(options.inputs);
    if (options.savePreset) claims.add(*options.savePreset, "the preset", false);
    if (options.inputs.empty()) return plan;

    const bool intoFolder = options.output && isFolder(*options.output, options.inputs.size());
    if (intoFolder) plan.folder = *options.output;
    for (const fs::path& input : options.inputs) {
        PicturePlan picture = planPicture(options, input, intoFolder);
        const std::string maker = textOf(input);
        claims.add(picture.output, maker, options.inPlace);
        if (picture.comparison)
            claims.add(*picture.comparison, "the comparison of " + maker, false);
        if (picture.sheet) claims.add(*picture.sheet, "the sheet of " + maker, false);
        plan.pictures.push_back(std::move(picture));
    }
    return plan;
}

}  // namespace keladjust::app
