#pragma once

// thunarx-provider-plugin.h declares for C alone, the headers below it for C++ too.
#include <gtk/gtk.h>

extern "C" {
#include <thunarx/thunarx.h>
}
