// Takes a frame and asks nobody how large it is, behind the end of a fork of its own; with an
// argument the fork does so in its place.

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <vector>

int main(int argc, char** /*argv*/) {
  void* const library = dlopen("libKR9ScanAPI.so", RTLD_NOW);
  if (library == nullptr) {
    return 1;
  }
  const bool is_forks = argc > 1;
  const pid_t fork = ::fork();
  if (fork > 0) {
    ::waitpid(fork, nullptr, 0);
  }
  if ((fork == 0) != is_forks) {
    return 0;
  }
  const auto open =
      reinterpret_cast<void* (*)(int)>(dlsym(library, "ftrScanOpenDeviceOnInterface"));
  const auto take =
      reinterpret_cast<int (*)(void*, int, void*)>(dlsym(library, "ftrScanGetImageByVariableDose"));
  std::vector<unsigned char> frame(1 << 20);
  return take(open(0), 60, frame.data()) == 0 ? 1 : 0;
}
