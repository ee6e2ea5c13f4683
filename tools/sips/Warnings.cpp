#include "sips/Warnings.h"

#include <vips/vips.h>

#include <algorithm>

namespace tavrin::sips {

namespace {

constexpr const char* libraryDomain = "VIPS";

}  // namespace

Warnings::Warnings()
    : handler_(g_log_set_handler(libraryDomain, G_LOG_LEVEL_WARNING, &Warnings::keep, this)) {}

Warnings::~Warnings() {
  g_log_remove_handler(libraryDomain, handler_);
}

std::string Warnings::reason() {
  std::string error = vips_error_buffer();
  while (error.ends_with('\n')) error.pop_back();
  std::replace(error.begin(), error.end(), '\n', ';');
  const std::lock_guard lock(mutex_);
  return error.empty() ? first_ : error;
}

void Warnings::keep(const gchar* /*domain*/, GLogLevelFlags /*level*/, const gchar* message,
                    gpointer self) {
  auto& warnings = *static_cast<Warnings*>(self);
  const std::lock_guard lock(warnings.mutex_);
  if (warnings.first_.empty()) warnings.first_ = message;
}

}  // namespace tavrin::sips
