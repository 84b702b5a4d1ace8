// One run of the program over very many pictures, with faulty ones of all kinds among them: each
// good one comes out as it does alone, each bad one is told as it is alone, and the program's
// memory does not grow with their number.
//
// KELADJUST_SOAK_FILES in the environment says how many there are; scripts/soak sets it.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "codecs/Codec.h"
#include "files/AtomicFile.h"
#include "files/InputFile.h"
#include "support/HostilePictures.h"
#include "support/Pictures.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace keladjust::app;
using namespace keladjust::test;
namespace fs = std::filesystem;

constexpr std::size_t usualFiles = 500;

/// What becomes of a file when it is the only one.
struct Sample {
    std::string extension;
    fs::path file;
    Bytes result;           ///< empty: it is refused
    std::string complaint;  ///< what is said of it, on one line; may be empty
};

std::vector<std::string> optionsOf(const std::string& target) {
    return {"--exposure", "20", "--clarity", "10", "-o", target};
}

/// The heap of every thread grows until it has had the largest picture, which may take thousands of
/// them: a short run has one.
std::string jobsFor(std::size_t files) {
    return files < 5000 ? "1" : "4";
}

/// What the program says of a file, without its name.
std::string complaintIn(const std::string& line) {
    const std::string start = "keladjust: ";
    const auto name = line.find(": ", start.size());
    return name == std::string::npos ? std::string() : line.substr(name + 2);
}

class Samples {
public:
    Samples() {
        for (const Codec* codec : codecs()) {
            const std::string extension(codec->extensions().front());
            for (const ChannelLayout layout : {ChannelLayout::grey, ChannelLayout::bgra}) {
                const Bytes whole = codec->encode(noise(24, 16, layout), {});
                add(extension, whole);
                add(extension, Bytes(whole.begin(), whole.begin() + 40));
                add(extension, Bytes(whole.begin(), whole.end() - 20));
            }
        }
        const fs::path annotated =
            add("jpg", jpegCodec().encode(noise(24, 16, ChannelLayout::bgra), {}));
        annotate(annotated, 6);
        add("png", {});
        add("png", {'t', 'e', 'x', 't'});
        for (const HostilePicture& picture : hostilePictures()) {
            add(fs::path(picture.name).extension().string().substr(1), picture.bytes);
        }
        for (Sample& sample : all_) runAlone(sample);
    }

    const std::vector<Sample>& all() const { return all_; }

private:
    fs::path add(const std::string& extension, const Bytes& bytes) {
        const fs::path file = folder_ / (std::to_string(all_.size()) + '.' + extension);
        writeFile(file, std::span<const unsigned char>(bytes));
        all_.push_back({extension, file, {}, {}});
        return file;
    }

    void runAlone(Sample& sample) {
        std::vector<std::string> arguments = optionsOf((folder_ / "alone/").string());
        arguments.insert(arguments.begin(), sample.file.string());
        const Outcome outcome = runProgram(arguments);
        sample.complaint = complaintIn(outcome.errors.substr(0, outcome.errors.find('\n')));
        const fs::path result = folder_ / "alone" / sample.file.filename();
        if (fs::exists(result)) sample.result = readFile(result);
        EXPECT_EQ(outcome.code, sample.result.empty() ? 1 : 0) << sample.file;
        EXPECT_FALSE(sample.result.empty() && sample.complaint.empty()) << sample.file;
    }

    TemporaryFolder folder_;
    std::vector<Sample> all_;
};

/// A program that prints into a pipe.
class PrintingProgram {
public:
    PrintingProgram(const fs::path& folder, std::vector<std::string> arguments) {
        int ends[2] = {-1, -1};
        if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
        process_ = ::fork();
        if (process_ == 0) {
            ::dup2(ends[1], STDOUT_FILENO);
            ::dup2(ends[1], STDERR_FILENO);
            ::close(ends[0]);
            ::close(ends[1]);
            become(folder, std::move(arguments));
        }
        ::close(ends[1]);
        pipe_ = ::fdopen(ends[0], "r");
    }
    ~PrintingProgram() { std::fclose(pipe_); }
    PrintingProgram(const PrintingProgram&) = delete;
    PrintingProgram& operator=(const PrintingProgram&) = delete;

    /// @return false at the end
    bool readLine(std::string& line) {
        line.clear();
        for (int letter = std::fgetc(pipe_); letter != EOF; letter = std::fgetc(pipe_)) {
            if (letter == '\n') return true;
            line += static_cast<char>(letter);
        }
        return !line.empty();
    }

    /// 0 when it has ended.
    double residentBytes() const {
        std::ifstream file("/proc/" + std::to_string(process_) + "/statm");
        long all = 0, resident = 0;
        file >> all >> resident;
        return static_cast<double>(resident) * static_cast<double>(::sysconf(_SC_PAGESIZE));
    }

    int exitCode() {
        int status = 0;
        ::waitpid(process_, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    [[noreturn]] static void become(const fs::path& folder, std::vector<std::string> arguments) {
        // The names of very many files need room, of which there is a quarter of the stack's.
        rlimit stack{};
        ::getrlimit(RLIMIT_STACK, &stack);
        stack.rlim_cur = std::min<rlim_t>(stack.rlim_max, rlim_t{1} << 26);
        ::setrlimit(RLIMIT_STACK, &stack);
        arguments.insert(arguments.begin(), programPath().string());
        std::vector<char*> pointers;
        for (std::string& argument : arguments) pointers.push_back(argument.data());
        pointers.push_back(nullptr);
        if (::chdir(folder.c_str()) == 0) ::execv(pointers[0], pointers.data());
        ::_exit(127);
    }

    pid_t process_ = -1;
    std::FILE* pipe_ = nullptr;
};

struct Measurement {
    double files;
    double bytes;
};

/// By how much the line of best fit rises from the first measurement to the last.
double fittedGrowth(const std::vector<Measurement>& measurements) {
    double files = 0, bytes = 0;
    for (const Measurement& each : measurements) {
        files += each.files;
        bytes += each.bytes;
    }
    files /= static_cast<double>(measurements.size());
    bytes /= static_cast<double>(measurements.size());
    double together = 0, squares = 0;
    for (const Measurement& each : measurements) {
        together += (each.files - files) * (each.bytes - bytes);
        squares += (each.files - files) * (each.files - files);
    }
    return together / squares * (measurements.back().files - measurements.front().files);
}

class ManyPictures : public testing::Test {
protected:
    ManyPictures() {
        if (const char* text = std::getenv("KELADJUST_SOAK_FILES")) {
            count = static_cast<std::size_t>(std::stoul(text));
        }
        for (std::size_t index = 0; index < count; ++index) {
            const Sample& sample = sampleOf(index);
            const std::string name = std::to_string(index) + '.' + sample.extension;
            fs::create_hard_link(sample.file, folder / name);
            names.push_back(name);
            indices[name] = index;
        }
    }

    const Sample& sampleOf(std::size_t index) const {
        return samples.all()[index % samples.all().size()];
    }

    /// "a.jpg -> out/a.jpg": it is compared at once, and removed to save room.
    void takeResult(const std::string& line) {
        const std::string name = line.substr(0, line.find(" -> "));
        ASSERT_TRUE(indices.contains(name)) << line;
        ASSERT_TRUE(done.insert(name).second) << line;
        const Sample& sample = sampleOf(indices[name]);
        EXPECT_FALSE(sample.result.empty()) << line;
        EXPECT_EQ(readFile(folder / "out" / name), sample.result) << line;
        fs::remove(folder / "out" / name);
    }

    /// "keladjust: a.jpg: what is wrong", which may be a notice.
    void takeComplaint(const std::string& line) {
        const std::string start = "keladjust: ";
        const std::string name =
            line.substr(start.size(), line.find(": ", start.size()) - start.size());
        ASSERT_TRUE(indices.contains(name)) << line;
        const Sample& sample = sampleOf(indices[name]);
        EXPECT_EQ(complaintIn(line), sample.complaint);
        if (sample.result.empty()) {
            EXPECT_TRUE(done.insert(name).second) << line;
        }
    }

    const Samples samples;
    const TemporaryFolder folder;
    std::size_t count = usualFiles;
    std::vector<std::string> names;
    std::map<std::string, std::size_t> indices;
    std::set<std::string> done;
};

TEST_F(ManyPictures, OfOneRunTakeNoMoreMemoryThanAFew) {
    std::vector<std::string> arguments = names;
    for (const std::string& option : optionsOf("out/")) arguments.push_back(option);
    arguments.insert(arguments.end(), {"--jobs", jobsFor(count)});
    PrintingProgram program(folder.path(), arguments);

    // A hundred measurements. The first fifth of the files fills the memory that is used again.
    const std::size_t step = std::max<std::size_t>(1, count / 100);
    std::vector<Measurement> measurements;
    std::string line;
    std::string last;
    std::size_t measured = count / 5;
    while (program.readLine(line)) {
        if (line.find(" pictures failed") != std::string::npos) {
            last = line;
        } else if (line.starts_with("keladjust: ")) {
            takeComplaint(line);
        } else {
            takeResult(line);
        }
        if (done.size() < measured + step) continue;
        measured = done.size();
        const double bytes = program.residentBytes();
        if (bytes > 0) measurements.push_back({static_cast<double>(measured), bytes});
    }
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_EQ(done.size(), count);
    const auto bad = std::ranges::count_if(
        names, [this](const std::string& name) { return sampleOf(indices[name]).result.empty(); });
    EXPECT_EQ(last, "keladjust: " + std::to_string(bad) + " of " + std::to_string(count) +
                        " pictures failed");
    EXPECT_TRUE(fs::is_empty(folder / "out"));

    // There is none but what a heap gives and takes in pages; what pictures leave behind adds up to
    // more, be it ten bytes for each of 100000.
    constexpr double largestGrowth = 1024 * 1024;
    ASSERT_GT(measurements.size(), 10u);
    const double growth = fittedGrowth(measurements);
    std::printf("%zu files, %.1f MiB resident, fitted growth %.1f KiB\n", count,
                measurements.back().bytes / 1048576, growth / 1024);
    EXPECT_LT(growth, largestGrowth);
}

}  // namespace
