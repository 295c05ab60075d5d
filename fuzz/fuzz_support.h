// What the fuzz targets share: a scratch folder that is removed when the run ends, and a check
// that stops the run (so libFuzzer keeps the input) when an invariant breaks.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace talvex::fuzz {

// Stops the run with a message; libFuzzer saves the input that got here as a crash.
[[noreturn]] inline void Fail(const char* what) {
  std::fprintf(stderr, "invariant broken: %s\n", what);
  std::abort();
}

inline void Require(bool holds, const char* what) {
  if (!holds) Fail(what);
}

// One scratch folder per process under $TMPDIR, made on first use and removed with everything
// in it at exit: a target never writes anywhere else. libFuzzer ends a fuzzing run without the
// exit handlers, so fuzz/run.sh points $TMPDIR into a folder it removes itself.
inline const std::filesystem::path& ScratchFolder() {
  static const std::filesystem::path folder = [] {
    std::string pattern = (std::filesystem::temp_directory_path() / "talvex-fuzz-XXXXXX").string();
    if (!mkdtemp(pattern.data())) Fail("cannot make a scratch folder");
    std::atexit([] {
      std::error_code error;
      std::filesystem::remove_all(ScratchFolder(), error);
    });
    return std::filesystem::path(pattern);
  }();
  return folder;
}

}  // namespace talvex::fuzz
