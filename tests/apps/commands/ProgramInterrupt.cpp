#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>

#include "files/InputFile.h"
#include "support/Pictures.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace keladjust::test;
using keladjust::app::Bytes;

/// The program in the background, so that it can be interrupted.
class RunningProgram {
public:
    explicit RunningProgram(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), programPath().string());
        std::vector<char*> pointers;
        for (std::string& argument : arguments) pointers.push_back(argument.data());
        pointers.push_back(nullptr);
        process_ = fork();
        if (process_ == 0) {
            execv(pointers[0], pointers.data());
            _exit(127);
        }
    }
    ~RunningProgram() {
        if (process_ <= 0) return;
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }

    void interrupt() { kill(process_, SIGINT); }

    bool ended() {
        if (waitpid(process_, nullptr, WNOHANG) == 0) return false;
        process_ = 0;
        return true;
    }

    int exitCode() {
        int status = 0;
        waitpid(process_, &status, 0);
        process_ = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t process_;
};

// The second of three pictures comes through a pipe. The program waits there until it is fed, which
// holds it before that picture's adjustment for as long as the test needs.
TEST(ProgramInterrupt, DropsThePictureThatIsNotAdjustedYet) {
    const TemporaryFolder folder;
    const auto pipe = folder / "piped.jpg";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    RunningProgram program({photograph("nature/Aqua.jpg"), pipe.string(),
                            photograph("nature/Dune.jpg"), "--jobs", "1", "-q", "-o",
                            (folder / "out").string()});
    int feed = -1;
    while (feed < 0 && !program.ended()) {
        feed = open(pipe.c_str(), O_WRONLY | O_NONBLOCK);  // fails until the program reads
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    ASSERT_GE(feed, 0) << "the program ended before it came to the pipe";
    program.interrupt();
    fcntl(feed, F_SETFL, 0);
    const Bytes picture = keladjust::app::readFile(photograph("nature/FreshFlower.jpg"));
    ASSERT_EQ(write(feed, picture.data(), picture.size()), static_cast<ssize_t>(picture.size()));
    close(feed);

    EXPECT_EQ(program.exitCode(), 130);
    EXPECT_EQ(folder.files(), (std::vector<std::string>{"out/Aqua.jpg", "piped.jpg"}));
}

}  // namespace
