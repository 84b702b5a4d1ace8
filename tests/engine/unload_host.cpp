// A host that loads the library at run time, in the ways in which it may let go of it:
//   released   stops the engine, whose module goes with it, then unloads; several times
//   plain      unloads without ever having started it
//   kept       unloads while the engine runs, which keeps the library and its module
//   handled    stops the engine, whose handler of broken connections somebody else has saved
//   exits      just ends, the engine running

#include <X11/Xlib.h>
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "support/LoadedLibraries.h"

namespace {

using keladjust::test::isLoaded;

constexpr const char* itself = "libkeladjust.so";
constexpr const char* module = "libkeladjust-engine.so";

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
            check(!isLoaded(module), "no module before the start");
            check(library.start(config, config), "start");
            check(isLoaded(module), "module loaded by the start");
            library.stop();
            check(!isLoaded(module), "module unloaded by the stop");
            dlclose(library.handle);
            check(!isLoaded(itself), "unloaded after release");
        }
    } else if (way == "plain") {
        const Library library(path);
        library.stop();
        dlclose(library.handle);
        check(!isLoaded(itself), "unloaded without an engine");
    } else if (way == "kept") {
        const Library library(path);
        check(library.start(config, config), "start");
        dlclose(library.handle);
        check(isLoaded(itself) && isLoaded(module), "kept by the engine");
        const Library again(path);
        again.stop();
        dlclose(again.handle);
        check(!isLoaded(itself) && !isLoaded(module), "unloaded in the end");
    } else if (way == "handled") {
        int connection = 0;
        auto* const someDisplay = reinterpret_cast<Display*>(&connection);
        XSetIOErrorHandler([](Display*) { return 7; });
        const Library library(path);
        check(library.start(config, config), "start");
        const XIOErrorHandler saved = XSetIOErrorHandler([](Display*) { return 8; });
        library.stop();
        dlclose(library.handle);
        check(saved(someDisplay) == 7, "the saved handler leads to the host's");
    } else {
        const Library library(path);
        check(library.start(config, config), "start");
        return EXIT_SUCCESS;
    }
    return EXIT_SUCCESS;
}
