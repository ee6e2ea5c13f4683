#include "extensions/common/SettingsWatch.h"

namespace tavrin {

namespace {

constexpr guint momentInMilliseconds = 100;

}  // namespace

SettingsWatch::~SettingsWatch() {
  if (monitor_) g_signal_handlers_disconnect_by_data(monitor_.get(), this);
  if (moment_ != nullptr) {
    g_source_destroy(moment_);
    g_source_unref(moment_);
  }
}

void SettingsWatch::watch(const std::string& folder) {
  if (monitor_) return;
  // A folder that is not there would be looked for every few seconds.
  if (g_file_test(folder.c_str(), G_FILE_TEST_IS_DIR) == FALSE) return;
  const GObjectPointer<GFile> file(g_file_new_for_path(folder.c_str()));
  GLibError error;
  monitor_.reset(g_file_monitor_directory(file.get(), G_FILE_MONITOR_NONE, nullptr, error.slot()));
  if (!monitor_) return g_warning("cannot watch the settings: %s", error.message().c_str());
  g_signal_connect(monitor_.get(), "changed", G_CALLBACK(fileChanged), this);
}

void SettingsWatch::fileChanged(GFileMonitor*, GFile*, GFile*, GFileMonitorEvent, gpointer watch) {
  static_cast<SettingsWatch*>(watch)->tellSoon();
}

void SettingsWatch::tellSoon() {
  if (moment_ != nullptr) return;
  moment_ = g_timeout_source_new(momentInMilliseconds);
  g_source_set_callback(moment_, momentIsOver, this, nullptr);
  g_source_attach(moment_, g_main_context_get_thread_default());
}

gboolean SettingsWatch::momentIsOver(gpointer watch) {
  auto* self = static_cast<SettingsWatch*>(watch);
  g_source_unref(self->moment_);
  self->moment_ = nullptr;
  try {
    self->changed_();
  } catch (...) {
    g_warning("the menu cannot follow its settings");
  }
  return G_SOURCE_REMOVE;
}

}  // namespace tavrin
