#pragma once

namespace tavrin {

/// Owns an open file descriptor and closes it.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  /// Takes over `descriptor`; a negative one owns nothing.
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(other.release()) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept;
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() { reset(); }

  explicit operator bool() const { return descriptor_ >= 0; }
  int get() const { return descriptor_; }

  /// Gives up ownership.
  int release();
  void reset();
  /// Closes it and gives what that tells: 0, or the errno value of writing that failed late, as
  /// network file systems do it (close(2)).
  int close();

 private:
  int descriptor_ = -1;
};

}  // namespace tavrin
