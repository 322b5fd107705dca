#pragma once
// Character conversions. Names are held as Windows-1252 bytes; they become
// UTF-8 at the window, command-line and JSON edges, and OEM code page 437 where
// they cross into the game's files (as the Windows conversion functions do it,
// with a best-fit character where no exact one exists).

#include <string>
#include <string_view>

namespace tarvel {

std::string windows1252ToUtf8(std::string_view text);
// Characters that Windows-1252 cannot hold become '?'; *lossy tells whether any did.
std::string utf8ToWindows1252(std::string_view text, bool* lossy = nullptr);

std::string windowsToOem(std::string_view text);   // Windows-1252 -> code page 437 (best fit)
std::string oemToWindows(std::string_view text);   // code page 437 -> Windows-1252 (best fit)
unsigned char windowsToOemChar(unsigned char c);
unsigned char oemToWindowsChar(unsigned char c);

}  // namespace tarvel
