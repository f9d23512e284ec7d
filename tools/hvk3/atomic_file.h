#pragma once

#include <cstdio>
#include <memory>
#include <string>

/// @file
/// A file that is there whole or not at all.

namespace hvk3 {

/// Writes into a temporary file beside the target, which takes the target's place at `commit`. Only
/// the user may read it, from the first moment on.
class AtomicFile {
 public:
  /// @throws Failure `OutputFailed`
  explicit AtomicFile(const std::string& path);

  /// Removes the temporary file unless it was committed.
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  std::FILE* stream() { return m_pStream.get(); }

  /// Brings everything to the disk and puts the file in the target's place.
  /// @throws Failure `OutputFailed`; the target is then what it was
  void commit();

  /// Likewise, but never in the place of another file.
  /// @return false when there is one
  /// @throws Failure `OutputFailed`
  bool commit_new();

  /// @throws Failure `OutputFailed` with the path and the reason of `errno`
  [[noreturn]] void fail() const;

 private:
  void flush();

  struct Closer {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
  };

  std::string m_sPath;
  std::string m_sTemporary;
  std::unique_ptr<std::FILE, Closer> m_pStream;
};

}  // namespace hvk3
