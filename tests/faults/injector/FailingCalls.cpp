// Loaded before the C library, whose functions for files it stands in for.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "Arming.h"

namespace {

using namespace keladjust::faults;

template <class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// Whether a call is refused; who was killed is asked no more.
bool refused(Effect effect) {
    if (effect == Effect::kill) killThisProcess();
    if (effect != Effect::error && effect != Effect::interrupt) return false;
    errno = effect == Effect::interrupt ? EINTR : plannedError();
    return true;
}

void truncateFile(int descriptor) {
    char name[64];
    std::snprintf(name, sizeof name, "/proc/self/fd/%d", descriptor);
    if (::truncate(name, 0) != 0) killThisProcess();  // never, in these tests
}

int openAs(const char* function, int folder, const char* path, int flags, mode_t mode) {
    const Effect effect = nextEffect(Call::open);
    if (refused(effect)) return -1;
    if (effect == Effect::vanish) next<int(const char*)>("unlink")(path);
    return next<int(int, const char*, int, ...)>(function)(folder, path, flags, mode);
}

/// The mode that stands behind the flags, where it counts.
mode_t modeIn(va_list arguments, int flags) {
    return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
}

template <class Real, class... Arguments>
int callUnlessRefused(Call call, const char* function, Arguments... arguments) {
    return refused(nextEffect(call)) ? -1 : next<Real>(function)(arguments...);
}

// A stream of the C library reads and writes by functions of its own, which nobody can stand in
// for. So streams are made that come to the ones here.

ssize_t readStream(void* file, char* room, size_t size) {
    return ::read(*static_cast<int*>(file), room, size);
}

// As the library's own streams, it goes on after a part of the bytes, and not after an error.
ssize_t writeStream(void* file, const char* bytes, size_t size) {
    size_t done = 0;
    while (done < size) {
        const ssize_t written = ::write(*static_cast<int*>(file), bytes + done, size - done);
        if (written < 0) return static_cast<ssize_t>(done);
        done += static_cast<size_t>(written);
    }
    return static_cast<ssize_t>(done);
}

int seekStream(void* file, off64_t* place, int origin) {
    *place = lseek64(*static_cast<int*>(file), *place, origin);
    return *place < 0 ? -1 : 0;
}

int closeStream(void* file) {
    const int result = ::close(*static_cast<int*>(file));
    delete static_cast<int*>(file);
    return result;
}

int flagsOf(const char* mode) {
    const std::string text = mode;
    const bool both = text.find('+') != std::string::npos;
    if (text.starts_with('r')) return both ? O_RDWR : O_RDONLY;
    return (both ? O_RDWR : O_WRONLY) | O_CREAT | (text.starts_with('a') ? O_APPEND : O_TRUNC);
}

}  // namespace

extern "C" {

int openat(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(arguments, flags);
    va_end(arguments);
    return openAs("openat", folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(arguments, flags);
    va_end(arguments);
    return openAs("openat64", folder, path, flags, mode);
}

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(arguments, flags);
    va_end(arguments);
    return openAs("openat", AT_FDCWD, path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(arguments, flags);
    va_end(arguments);
    return openAs("openat64", AT_FDCWD, path, flags, mode);
}

FILE* fopen(const char* path, const char* mode) {
    const int file = ::open(path, flagsOf(mode), 0666);
    if (file < 0) return nullptr;
    return fopencookie(new int(file), mode, {readStream, writeStream, seekStream, closeStream});
}

FILE* fopen64(const char* path, const char* mode) {
    return fopen(path, mode);
}

ssize_t read(int file, void* room, size_t size) {
    const Effect effect = nextEffect(Call::read);
    if (refused(effect)) return -1;
    if (effect == Effect::truncate) truncateFile(file);
    if (effect == Effect::half) size = (size + 1) / 2;
    return next<ssize_t(int, void*, size_t)>("read")(file, room, size);
}

ssize_t write(int file, const void* bytes, size_t size) {
    const auto really = next<ssize_t(int, const void*, size_t)>("write");
    const Effect effect = nextEffect(Call::write);
    if (refused(effect)) return -1;
    const bool halfway = effect == Effect::half || effect == Effect::killHalfway;
    const ssize_t written = really(file, bytes, halfway ? (size + 1) / 2 : size);
    if (effect == Effect::killHalfway) killThisProcess();
    return written;
}

int fsync(int file) {
    return callUnlessRefused<int(int)>(Call::sync, "fsync", file);
}

int close(int file) {
    const Effect effect = nextEffect(Call::close);
    if (effect == Effect::kill) killThisProcess();
    const int result = next<int(int)>("close")(file);
    return refused(effect) ? -1 : result;  // what is refused is closed nevertheless
}

int rename(const char* from, const char* to) {
    return callUnlessRefused<int(const char*, const char*)>(Call::rename, "rename", from, to);
}

int stat(const char* path, struct stat* status) {
    return callUnlessRefused<int(const char*, struct stat*)>(Call::status, "stat", path, status);
}

int lstat(const char* path, struct stat* status) {
    return callUnlessRefused<int(const char*, struct stat*)>(Call::status, "lstat", path, status);
}

int fchmodat(int folder, const char* path, mode_t mode, int flags) {
    return callUnlessRefused<int(int, const char*, mode_t, int)>(Call::permissions, "fchmodat",
                                                                 folder, path, mode, flags);
}

int chmod(const char* path, mode_t mode) {
    return callUnlessRefused<int(const char*, mode_t)>(Call::permissions, "chmod", path, mode);
}

int mkdir(const char* path, mode_t mode) {
    return callUnlessRefused<int(const char*, mode_t)>(Call::createFolder, "mkdir", path, mode);
}

int remove(const char* path) {
    return callUnlessRefused<int(const char*)>(Call::remove, "remove", path);
}

int unlink(const char* path) {
    return callUnlessRefused<int(const char*)>(Call::remove, "unlink", path);
}

}  // extern "C"
