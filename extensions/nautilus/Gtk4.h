#pragma once

#include <string>

/// For a file manager that runs on GTK 4. What is needed of GTK is looked up in its process, where
/// it is loaded in any case.
namespace tavrin::gtk4 {

/// Puts a text, in UTF-8, on the clipboard, where it stays when the file manager ends.
void copyText(const std::string& text);

/// For a program that is started by the click being handled; "" when there is no such click.
std::string startupToken();

}  // namespace tavrin::gtk4
