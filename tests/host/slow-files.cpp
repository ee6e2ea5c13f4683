// Loaded into the host ahead of the C library (LD_PRELOAD): as long as the file exists that
// TAVRIN_SLOW_FILES names, each change of a file takes as long as on a slow disk, so that a test
// does not need millions of files to see what is shown of long work.
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr useconds_t delayInMicroseconds = 20'000;

void wait() {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the host changes it before its first thread, if at all
  static const char* const mark = std::getenv("TAVRIN_SLOW_FILES");
  if (mark != nullptr && ::access(mark, F_OK) == 0) ::usleep(delayInMicroseconds);
}

template <typename Function>
Function* next(Function* /*ours*/, const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

using OpenAt = int(int, const char*, int, mode_t);

int openSlowly(const char* function, int folder, const char* path, int flags, mode_t mode) {
  if ((flags & O_CREAT) != 0) wait();
  return next<OpenAt>(nullptr, function)(folder, path, flags, mode);
}

mode_t modeOf(int flags, va_list& arguments) {
  return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

int openat(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  return openSlowly("openat", folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  return openSlowly("openat64", folder, path, flags, mode);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
  wait();
  return next(&unlinkat, "unlinkat")(folder, path, flags);
}

int renameat2(int oldFolder, const char* oldPath, int newFolder, const char* newPath,
              unsigned flags) noexcept {
  wait();
  return next(&renameat2, "renameat2")(oldFolder, oldPath, newFolder, newPath, flags);
}

}  // extern "C"
#pragma GCC visibility pop
