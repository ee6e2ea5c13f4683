#pragma once

#include <string>

/// For the file managers that run on GTK 3.
namespace tavrin::gtk3 {

/// Puts a text, in UTF-8, on the clipboard, where it stays when the file manager ends.
void copyText(const std::string& text);

/// For a program that is started by the click being handled; "" when there is no such click.
std::string startupToken();

}  // namespace tavrin::gtk3
