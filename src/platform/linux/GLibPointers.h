#pragma once

#include <gio/gio.h>

#include <memory>
#include <string>

/// Owners of GLib's objects.
namespace tavrin {

struct GLibDeleter {
  void operator()(GVariant* value) const { g_variant_unref(value); }
  void operator()(GMainContext* context) const { g_main_context_unref(context); }
  void operator()(GMainLoop* loop) const { g_main_loop_unref(loop); }
  void operator()(GDBusNodeInfo* info) const { g_dbus_node_info_unref(info); }
  void operator()(GKeyFile* file) const { g_key_file_unref(file); }
  void operator()(char* text) const { g_free(text); }
  void operator()(char** texts) const { g_strfreev(texts); }
};

template <typename Type>
using GLibPointer = std::unique_ptr<Type, GLibDeleter>;

struct GObjectDeleter {
  void operator()(gpointer object) const { g_object_unref(object); }
};

template <typename Type>
using GObjectPointer = std::unique_ptr<Type, GObjectDeleter>;

/// Receives the error of a GLib call: pass `slot()` to one call.
class GLibError {
 public:
  GLibError() = default;
  GLibError(const GLibError&) = delete;
  GLibError& operator=(const GLibError&) = delete;
  ~GLibError() { g_clear_error(&error_); }

  GError** slot() {
    g_clear_error(&error_);
    return &error_;
  }
  bool matches(GQuark domain, int code) const {
    return g_error_matches(error_, domain, code) != FALSE;
  }
  std::string message() const { return error_ == nullptr ? std::string() : error_->message; }

 private:
  GError* error_ = nullptr;
};

}  // namespace tavrin
