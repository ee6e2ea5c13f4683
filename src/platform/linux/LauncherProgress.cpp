#include "platform/linux/LauncherProgress.h"

#include <gio/gio.h>

#include <string>

#include "platform/linux/Identity.h"

namespace tavrin {

void LauncherProgress::show(const ShownWork& work, const std::function<void()>& /*cancel*/) {
  if (work.share || isShown_) update(work.share);
}

void LauncherProgress::end(WorkEnd /*end*/) {
  if (isShown_) update(std::nullopt);
}

void LauncherProgress::update(std::optional<double> share) {
  if (connection_ == nullptr) return;
  isShown_ = share.has_value();
  const std::string launcher = std::string("application://") + identity::applicationId + ".desktop";
  GVariantBuilder properties;
  g_variant_builder_init(&properties, G_VARIANT_TYPE_VARDICT);
  g_variant_builder_add(&properties, "{sv}", "progress", g_variant_new_double(share.value_or(0)));
  g_variant_builder_add(&properties, "{sv}", "progress-visible",
                        g_variant_new_boolean(isShown_ ? TRUE : FALSE));
  // It fails on a closed connection alone, where nobody is left to be told.
  g_dbus_connection_emit_signal(connection_, nullptr, "/app/tavrin/Tavrin/LauncherEntry",
                                "com.canonical.Unity.LauncherEntry", "Update",
                                g_variant_new("(sa{sv})", launcher.c_str(), &properties), nullptr);
}

}  // namespace tavrin
