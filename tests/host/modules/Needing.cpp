// A module that cannot be loaded without another library.

#if defined(_WIN32)
#define EXPORTED __declspec(dllexport)
#else
#define EXPORTED __attribute__((visibility("default")))
#endif

int neededByAnEngine();

extern "C" EXPORTED int keladjustEngineModule() {
    return neededByAnEngine();
}
