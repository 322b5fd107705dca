#pragma once
// The car sets opened or saved last, newest first, kept in the configuration
// file (section "Recent Car Sets", keys "File1" to "File10").

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarvel {

class IniFile;

constexpr std::size_t kRecentFilesMax = 10;

std::vector<std::string> readRecentFiles(const IniFile& ini);
// Writes the list, removing the keys of entries it no longer has; false when
// the file could not be written.
bool writeRecentFiles(IniFile& ini, const std::vector<std::string>& files);

// `files` with `path` first: an earlier entry of the same path leaves its place,
// and the list keeps the newest ten.
std::vector<std::string> withRecentFile(std::vector<std::string> files, const std::string& path);
std::vector<std::string> withoutRecentFile(std::vector<std::string> files, const std::string& path);

// A path as the menu shows it: the home folder as "~", and folders in the middle
// left out ("...") until it fits `maxChars`; the file name is always whole.
std::string shortenedPath(std::string_view path, std::string_view home, std::size_t maxChars = 60);

}  // namespace tarvel
