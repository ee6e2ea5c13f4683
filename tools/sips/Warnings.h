#pragma once

#include <glib.h>

#include <mutex>
#include <string>

namespace tavrin::sips {

/// Holds back, as long as it lives, what the image library would print on standard error. Of a
/// failure its warnings may be all that it says.
class Warnings {
 public:
  Warnings();
  Warnings(const Warnings&) = delete;
  Warnings& operator=(const Warnings&) = delete;
  ~Warnings();

  /// Why something has failed: the library's error, or else its first warning.
  std::string reason();

 private:
  /// Called on any thread of the library's.
  static void keep(const gchar* domain, GLogLevelFlags level, const gchar* message, gpointer self);

  guint handler_;
  std::mutex mutex_;
  std::string first_;
};

}  // namespace tavrin::sips
