// A host that loads the library at run time, in the ways in which it may let go of it:
//   released   stops the engine, then unloads; several times
//   plain      unloads without ever having started it
//   kept       unloads while the engine runs, whose thread keeps the code
//   exits      just ends, the engine running

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

namespace {

bool isLoaded() {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find("libkeladjust.so") != std::string::npos) return true;
    }
    return false;
}

void check(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "failed: %s\n", what);
    std::_Exit(EXIT_FAILURE);
}

struct Library {
    explicit Library(const char* path) : handle(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
        check(handle != nullptr, "load");
        start =
            reinterpret_cast<bool (*)(const char*, const char*)>(dlsym(handle, "initOgreRunTime"));
        stop = reinterpret_cast<void (*)()>(dlsym(handle, "releaseOgre"));
    }
    void* handle;
    bool (*start)(const char*, const char*);
    void (*stop)();
};

}  // namespace

int main(int count, char** arguments) {
    check(count == 4, "usage: unload_host <library> <prefix of the configuration> <way>");
    const char* const path = arguments[1];
    const char* const config = arguments[2];
    const std::string way = arguments[3];
    if (way == "released") {
        for (int i = 0; i < 3; ++i) {
            const Library library(path);
            check(library.start(config, config), "start");
            library.stop();
            dlclose(library.handle);
            check(!isLoaded(), "unloaded after release");
        }
    } else if (way == "plain") {
        const Library library(path);
        library.stop();
        dlclose(library.handle);
        check(!isLoaded(), "unloaded without an engine");
    } else if (way == "kept") {
        const Library library(path);
        check(library.start(config, config), "start");
        dlclose(library.handle);
        check(isLoaded(), "kept by its thread");
        const Library again(path);
        again.stop();
        dlclose(again.handle);
        check(!isLoaded(), "unloaded in the end");
    } else {
        const Library library(path);
        check(library.start(config, config), "start");
        return EXIT_SUCCESS;
    }
    return EXIT_SUCCESS;
}
