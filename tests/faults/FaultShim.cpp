// SPDX-License-Identifier: MIT
#include "tests/faults/FaultShim.h"

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <mutex>
#include <string>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
using FaultShim::Kind;

struct State {
    std::recursive_mutex mutex;
    std::string folder;
    std::map<int, std::string> descriptors;
    std::map<DIR *, std::string> dirs;
    long calls[FaultShim::kindCount] = {};
    int delays[FaultShim::kindCount] = {};
    long writes = 0;
    Kind armedKind = FaultShim::Open;
    long armedCall = 0;
    int fault = FaultShim::none;
    std::string spoiled;
    std::string report;
    FaultShim::Hook hook = nullptr;
    void *context = nullptr;
    bool isInHook = false;
};

void configure(State *state);

// Never destroyed: the toolkit still makes calls after static objects are gone.
State &state()
{
    static State *const instance = [] {
        auto *const fresh = new State;
        configure(fresh);
        return fresh;
    }();
    return *instance;
}

// The function that this one stands before.
template<typename Function>
Function *next(Function *, const char *name)
{
    return reinterpret_cast<Function *>(::dlsym(RTLD_NEXT, name));
}

#define NEXT(name) static auto *const real = next(&::name, #name)

const char *environment(const char *name)
{
    const char *const value = std::getenv(name);
    return value != nullptr ? value : "";
}

int faultOf(const std::string &name)
{
    static const std::map<std::string, int> faults = {{"EIO", EIO},
                                                      {"ENOENT", ENOENT},
                                                      {"EACCES", EACCES},
                                                      {"ELOOP", ELOOP},
                                                      {"EMFILE", EMFILE},
                                                      {"end", FaultShim::endOfData},
                                                      {"short", FaultShim::shortRead}};
    const auto found = faults.find(name);
    return found != faults.end() ? found->second : FaultShim::none;
}

Kind kindOf(const std::string &name)
{
    static const std::map<std::string, Kind> kinds = {{"open", FaultShim::Open},
                                                      {"read", FaultShim::Read},
                                                      {"stat", FaultShim::Stat},
                                                      {"list", FaultShim::List}};
    const auto found = kinds.find(name);
    return found != kinds.end() ? found->second : FaultShim::Open;
}

void configure(State *state)
{
    state->folder = environment("FAULT_SHIM_FOLDER");
    state->report = environment("FAULT_SHIM_REPORT");
    state->armedKind = kindOf(environment("FAULT_SHIM_KIND"));
    state->armedCall = std::atol(environment("FAULT_SHIM_N"));
    state->fault = faultOf(environment("FAULT_SHIM_FAULT"));
    state->delays[state->armedKind] = std::atoi(environment("FAULT_SHIM_DELAY"));
}

bool isWatched(const State &state, const std::string &path)
{
    return !state.folder.empty() && path.compare(0, state.folder.size(), state.folder) == 0
        && (path.size() == state.folder.size() || path[state.folder.size()] == '/');
}

std::string pathAt(const State &state, int descriptor, const char *name)
{
    if (name[0] == '/' || descriptor == AT_FDCWD) {
        return name;
    }
    const auto found = state.descriptors.find(descriptor);
    if (found == state.descriptors.end()) {
        return name;
    }
    return name[0] == '\0' ? found->second : found->second + '/' + name;
}

std::string pathOf(const State &state, int descriptor)
{
    const auto found = state.descriptors.find(descriptor);
    return found != state.descriptors.end() ? found->second : std::string();
}

void report(const State &state)
{
    NEXT(open);
    if (state.report.empty()) {
        return;
    }
    const int descriptor =
        real(state.report.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    const std::string line = state.spoiled + '\n';
    if (descriptor < 0 || ::write(descriptor, line.data(), line.size()) < 0) {
        std::abort();
    }
    ::close(descriptor);
}

void wait(int milliseconds)
{
    timespec rest = {milliseconds / 1000, milliseconds % 1000 * 1000000L};
    while (::nanosleep(&rest, &rest) != 0 && errno == EINTR) {
    }
}

// Counts the call and tells what is to become of it: none, an error or another fault.
int step(Kind kind, const std::string &path)
{
    State &s = state();
    FaultShim::Hook hook = nullptr;
    long number = 0;
    int milliseconds = 0;
    int fault = FaultShim::none;
    {
        const std::lock_guard<std::recursive_mutex> lock(s.mutex);
        if (s.isInHook || !isWatched(s, path)) {
            return FaultShim::none;
        }
        number = ++s.calls[kind];
        milliseconds = s.delays[kind];
        hook = s.hook;
        if (s.armedKind == kind && s.armedCall == number) {
            fault = s.fault;
            s.spoiled = path;
            report(s);
        }
        s.isInHook = hook != nullptr;
    }
    if (milliseconds > 0) {
        wait(milliseconds);
    }
    if (hook != nullptr) {
        hook(kind, path.c_str(), number, s.context);
        s.isInHook = false;
    }
    return fault;
}

int stepAt(Kind kind, int descriptor, const char *name)
{
    std::string path;
    {
        State &s = state();
        const std::lock_guard<std::recursive_mutex> lock(s.mutex);
        path = pathAt(s, descriptor, name);
    }
    return step(kind, path);
}

int stepOn(Kind kind, int descriptor)
{
    std::string path;
    {
        State &s = state();
        const std::lock_guard<std::recursive_mutex> lock(s.mutex);
        path = pathOf(s, descriptor);
    }
    return path.empty() ? FaultShim::none : step(kind, path);
}

bool fails(int fault)
{
    if (fault > 0) {
        errno = fault;
    }
    return fault > 0;
}

void remember(int descriptor, const std::string &path)
{
    State &s = state();
    const std::lock_guard<std::recursive_mutex> lock(s.mutex);
    if (descriptor >= 0 && isWatched(s, path)) {
        s.descriptors[descriptor] = path;
    }
}

void countWrite(int descriptor, const char *name)
{
    State &s = state();
    const std::lock_guard<std::recursive_mutex> lock(s.mutex);
    if (!s.isInHook && isWatched(s, pathAt(s, descriptor, name))) {
        ++s.writes;
    }
}

template<typename Function>
int openFile(const Function &real, int descriptor, const char *name, int flags, mode_t mode)
{
    if ((flags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) != 0) {
        countWrite(descriptor, name);
    }
    if (fails(stepAt(FaultShim::Open, descriptor, name))) {
        return -1;
    }
    std::string path;
    {
        State &s = state();
        const std::lock_guard<std::recursive_mutex> lock(s.mutex);
        path = pathAt(s, descriptor, name);
    }
    const int opened = real(descriptor, name, flags, mode);
    remember(opened, path);
    return opened;
}

mode_t modeOf(int flags, va_list arguments)
{
    return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
}

// Tells how many bytes may be read; below zero when the call is over.
ssize_t allowedBytes(int descriptor, size_t bytes)
{
    const int fault = stepOn(FaultShim::Read, descriptor);
    if (fails(fault)) {
        return -1;
    }
    if (fault == FaultShim::endOfData) {
        return 0;
    }
    return static_cast<ssize_t>(fault == FaultShim::shortRead ? (bytes + 1) / 2 : bytes);
}

bool listingGoesOn(DIR *dir)
{
    std::string path;
    {
        State &s = state();
        const std::lock_guard<std::recursive_mutex> lock(s.mutex);
        const auto found = s.dirs.find(dir);
        path = found != s.dirs.end() ? found->second : std::string();
    }
    const int fault = path.empty() ? FaultShim::none : step(FaultShim::List, path);
    return !fails(fault) && fault != FaultShim::endOfData;
}
} // namespace

void FaultShim::watch(const char *folder)
{
    State &s = state();
    const std::lock_guard<std::recursive_mutex> lock(s.mutex);
    s.folder = folder;
    s.descriptors.clear();
    s.dirs.clear();
    s.hook = nullptr;
    s.writes = 0;
    std::memset(s.delays, 0, sizeof s.delays);
    arm(Open, 0, none);
}

void FaultShim::arm(Kind kind, long n, int fault)
{
    State &s = state();
    const std::lock_guard<std::recursive_mutex> lock(s.mutex);
    std::memset(s.calls, 0, sizeof s.calls);
    s.armedKind = kind;
    s.armedCall = n;
    s.fault = fault;
    s.spoiled.clear();
}

void FaultShim::delay(Kind kind, int milliseconds)
{
    State &s = state();
    const std::lock_guard<std::recursive_mutex> lock(s.mutex);
    s.delays[kind] = milliseconds;
}

void FaultShim::setHook(Hook hook, void *context)
{
    State &s = state();
    const std::lock_guard<std::recursive_mutex> lock(s.mutex);
    s.hook = hook;
    s.context = context;
}

long FaultShim::calls(Kind kind)
{
    State &s = state();
    const std::lock_guard<std::recursive_mutex> lock(s.mutex);
    return s.calls[kind];
}

long FaultShim::writes()
{
    State &s = state();
    const std::lock_guard<std::recursive_mutex> lock(s.mutex);
    return s.writes;
}

const char *FaultShim::spoiledPath()
{
    return state().spoiled.c_str();
}

extern "C" {

#define OPEN(name) \
    int name(const char *path, int flags, ...) \
    { \
        NEXT(name); \
        va_list arguments; \
        va_start(arguments, flags); \
        const mode_t mode = modeOf(flags, arguments); \
        va_end(arguments); \
        const auto call = [](int, const char *file, int openFlags, mode_t openMode) { \
            return real(file, openFlags, openMode); \
        }; \
        return openFile(call, AT_FDCWD, path, flags, mode); \
    }

#define OPENAT(name) \
    int name(int descriptor, const char *path, int flags, ...) \
    { \
        NEXT(name); \
        va_list arguments; \
        va_start(arguments, flags); \
        const mode_t mode = modeOf(flags, arguments); \
        va_end(arguments); \
        const auto call = [](int dir, const char *file, int openFlags, mode_t openMode) { \
            return real(dir, file, openFlags, openMode); \
        }; \
        return openFile(call, descriptor, path, flags, mode); \
    }

#define PREAD(name, offset_type) \
    ssize_t name(int descriptor, void *data, size_t bytes, offset_type offset) \
    { \
        NEXT(name); \
        const ssize_t allowed = allowedBytes(descriptor, bytes); \
        return allowed < 0 ? -1 : real(descriptor, data, static_cast<size_t>(allowed), offset); \
    }

#define STAT(name, type) \
    int name(const char *path, type *status) noexcept \
    { \
        NEXT(name); \
        return fails(stepAt(FaultShim::Stat, AT_FDCWD, path)) ? -1 : real(path, status); \
    }

#define FSTAT(name, type) \
    int name(int descriptor, type *status) noexcept \
    { \
        NEXT(name); \
        return fails(stepOn(FaultShim::Stat, descriptor)) ? -1 : real(descriptor, status); \
    }

#define FSTATAT(name, type) \
    int name(int descriptor, const char *path, type *status, int flags) noexcept \
    { \
        NEXT(name); \
        return fails(stepAt(FaultShim::Stat, descriptor, path)) \
            ? -1 \
            : real(descriptor, path, status, flags); \
    }

#define READDIR(name, type) \
    type *name(DIR *dir) \
    { \
        NEXT(name); \
        return listingGoesOn(dir) ? real(dir) : nullptr; \
    }

OPEN(open)
OPEN(open64)
OPENAT(openat)
OPENAT(openat64)
PREAD(pread, off_t)
PREAD(pread64, off64_t)
STAT(stat, struct stat)
STAT(stat64, struct stat64)
STAT(lstat, struct stat)
STAT(lstat64, struct stat64)
FSTAT(fstat, struct stat)
FSTAT(fstat64, struct stat64)
FSTATAT(fstatat, struct stat)
FSTATAT(fstatat64, struct stat64)
READDIR(readdir, dirent)
READDIR(readdir64, dirent64)

ssize_t read(int descriptor, void *data, size_t bytes)
{
    NEXT(read);
    const ssize_t allowed = allowedBytes(descriptor, bytes);
    return allowed < 0 ? -1 : real(descriptor, data, static_cast<size_t>(allowed));
}

int statx(int descriptor, const char *path, int flags, unsigned mask, struct statx *status) noexcept
{
    NEXT(statx);
    return fails(stepAt(FaultShim::Stat, descriptor, path))
        ? -1
        : real(descriptor, path, flags, mask, status);
}

ssize_t readlink(const char *path, char *data, size_t bytes) noexcept
{
    NEXT(readlink);
    return fails(stepAt(FaultShim::Stat, AT_FDCWD, path)) ? -1 : real(path, data, bytes);
}

char *realpath(const char *path, char *resolved) noexcept
{
    NEXT(realpath);
    return fails(stepAt(FaultShim::Stat, AT_FDCWD, path)) ? nullptr : real(path, resolved);
}

DIR *opendir(const char *path)
{
    NEXT(opendir);
    if (fails(stepAt(FaultShim::Open, AT_FDCWD, path))) {
        return nullptr;
    }
    DIR *const dir = real(path);
    if (dir != nullptr) {
        remember(::dirfd(dir), path);
        State &s = state();
        const std::lock_guard<std::recursive_mutex> lock(s.mutex);
        s.dirs[dir] = path;
    }
    return dir;
}

int closedir(DIR *dir)
{
    NEXT(closedir);
    {
        State &s = state();
        const std::lock_guard<std::recursive_mutex> lock(s.mutex);
        s.dirs.erase(dir);
        s.descriptors.erase(::dirfd(dir));
    }
    return real(dir);
}

int close(int descriptor)
{
    NEXT(close);
    {
        State &s = state();
        const std::lock_guard<std::recursive_mutex> lock(s.mutex);
        s.descriptors.erase(descriptor);
    }
    return real(descriptor);
}

int unlink(const char *path) noexcept
{
    NEXT(unlink);
    countWrite(AT_FDCWD, path);
    return real(path);
}

int rename(const char *from, const char *to) noexcept
{
    NEXT(rename);
    countWrite(AT_FDCWD, from);
    return real(from, to);
}
}
