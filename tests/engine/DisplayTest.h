#ifndef KELADJUST_TESTS_ENGINE_DISPLAYTEST_H
#define KELADJUST_TESTS_ENGINE_DISPLAYTEST_H

#include <gtest/gtest.h>
#include <keladjust/CxImage.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/HostPicture.h"
#include "support/StageSettings.h"

namespace keladjust::test {

/// The engine, whatever display it finds.
class Display : public testing::Test {
protected:
    Display() {
        prefix = (std::filesystem::temp_directory_path() /
                  ("keladjust-display-" + std::to_string(getpid())))
                     .string();
        setLogPath(prefix.c_str());
    }
    ~Display() override {
        releaseOgre();
        std::filesystem::remove(prefix + "Ogre.log");
    }
    static bool start() {
        return initOgreRunTime(KELADJUST_ENGINE_CONFIG, KELADJUST_ENGINE_CONFIG);
    }
    bool logHas(const std::string& text) const {
        std::ifstream file(prefix + "Ogre.log");
        const std::string log{std::istreambuf_iterator<char>(file), {}};
        return log.find(text) != std::string::npos;
    }
    static void expectAdjustments() {
        HostPicture picture(61, 47, 32, IMAGE_FORMAT_BGRA);
        const auto before = picture.fillRandom(1).bytes();
        EXPECT_EQ(doAdjust(picture.image(), someSettings()), picture.image());
        EXPECT_NE(picture.bytes(), before);
    }

    std::string prefix;
};

}  // namespace keladjust::test

#endif
