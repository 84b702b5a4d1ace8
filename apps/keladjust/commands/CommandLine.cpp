#include "commands/CommandLine.h"

#include <algorithm>
#include <iostream>

#include "commands/Licence.h"
#include "settings/PresetFile.h"
#include "settings/SettingsText.h"
#include "text/Failure.h"
#include "text/NearestName.h"
#include "text/PathText.h"

namespace keladjust::app {

namespace {

std::string helpOf(const KeladjustSetting& setting) {
    return rangeText(setting) + "; " + setting.help;
}

std::string footerOf(const std::vector<std::string>& examples, const std::string& footer) {
    std::string text = "Examples:";
    for (const std::string& example : examples) text += "\n  " + example;
    if (!footer.empty()) text += "\n" + footer;
    return text;
}

/// What the help puts for an option's value, without what it says of the values that are allowed.
std::string valueOf(const CLI::Option& option) {
    const std::string all = option.get_type_name();
    return all.substr(0, all.find(':'));
}

}  // namespace

CommandLine::CommandLine(const std::string& name, const std::string& description,
                         const std::vector<std::string>& examples, const std::string& footer)
    : app_(description, name), examples_(examples) {
    app_.footer(footerOf(examples, footer));
    app_.set_version_flag(
        "--version",
        std::string("keladjust ") + keladjustVersion() + "\nLicence: " + programLicence,
        "Print version and licence");
    app_.set_help_flag("-h,--help", "Print this help");
    app_.get_formatter()->column_width(40);
    app_.allow_windows_style_options(false);
    // Collected rather than refused by the parser, so that the nearest name can be suggested.
    app_.allow_extras();
    offer(app_.add_option("--preset", presets_,
                          "Take settings from a preset; several stack, later ones win")
              ->type_name("FILE")
              ->expected(1)
              ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
              ->group("Settings"),
          {Offer::Kind::presets});
    for (const KeladjustSetting& setting : allSettings()) {
        app_.add_option_function<std::string>(
                std::string("--") + setting.name,
                [this, &setting](const std::string& text) {
                    const std::string option = std::string("--") + setting.name;
                    explicit_.set(setting, settingValueFromText(setting, text, option));
                },
                helpOf(setting))
            ->type_name("N")
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)
            ->group(setting.group);
    }
}

CLI::Option* CommandLine::addPixelBound(PixelBound& bound) {
    constexpr std::uint64_t largest = std::uint64_t{1} << 32;  // no picture that fits in memory
    return app_
        .add_option_function<std::uint64_t>(
            "--max-pixels", [&bound](std::uint64_t pixels) { bound = PixelBound(pixels); },
            "Refuse pictures of more pixels, before memory is taken for them; usually " +
                std::to_string(PixelBound::usual) + ", and fewer of small files")
        ->check(CLI::Range(std::uint64_t{1}, largest))
        ->type_name("N");
}

bool CommandLine::parse(const std::vector<std::string>& arguments) {
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    try {
        app_.parse(reversed);
    } catch (const CLI::Success& asked) {
        app_.exit(asked, std::cout, std::cerr);
        return false;
    } catch (const CLI::ParseError& error) {
        refuseUnknown();
        throw UsageError(error.what());
    }
    refuseUnknown();
    return true;
}

Settings CommandLine::settings() const {
    Settings all;
    for (const std::string& preset : presets_) all.apply(settingsFromPresetFile(preset));
    all.apply(explicit_);
    return all;
}

std::vector<std::filesystem::path> CommandLine::presets() const {
    std::vector<std::filesystem::path> paths;
    for (const std::string& preset : presets_) paths.push_back(pathFromText(preset));
    return paths;
}

CommandDescription CommandLine::describe() const {
    CommandDescription description{app_.get_name(), app_.get_description(), examples_, {}};
    for (const CLI::Option* option : app_.get_options()) {
        OptionDescription about;
        for (const std::string& name : option->get_snames()) about.names.push_back("-" + name);
        for (const std::string& name : option->get_lnames()) about.names.push_back("--" + name);
        about.value = option->get_positional() ? option->get_name(true) : valueOf(*option);
        about.help = option->get_description();
        about.group = option->get_group();
        about.repeats = option->get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll ||
                        option->get_items_expected_max() > 1;
        about.required = option->get_required();
        if (const auto said = offers_.find(option); said != offers_.end()) {
            about.offer = said->second;
        }
        description.options.push_back(std::move(about));
    }
    return description;
}

void CommandLine::refuseUnknown() const {
    const auto left = app_.remaining();
    if (left.empty()) return;
    if (!left.front().starts_with('-')) {
        throw UsageError("\"" + left.front() + "\" was not expected here");
    }
    std::vector<std::string> known;
    for (const CLI::Option* option : app_.get_options()) {
        for (const std::string& name : option->get_lnames()) known.push_back("--" + name);
        for (const std::string& name : option->get_snames()) known.push_back("-" + name);
    }
    const std::string unknown = left.front().substr(0, left.front().find('='));
    throw UsageError("unknown option " + unknown + suggestion(unknown, known));
}

}  // namespace keladjust::app
