#pragma once
// An INI file with the semantics of the Windows private-profile functions:
// section and key names compare without regard to case, integers are read as
// the profile integer reader reads them, writing a key keeps every other line
// of the file as it was, and a missing file or section is created on write.

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tarvel {

class IniFile {
public:
    explicit IniFile(std::filesystem::path path);   // reads the file if it exists

    const std::filesystem::path& path() const { return path_; }
    bool reload();

    // Leading digits (after an optional sign and blanks, as the Windows reader
    // takes them); a value without digits reads as 0; a missing key as `fallback`.
    int getInt(std::string_view section, std::string_view key, int fallback) const;
    std::string getString(std::string_view section, std::string_view key, std::string_view fallback) const;
    bool hasKey(std::string_view section, std::string_view key) const;

    // Each write goes straight to the file; false when the file cannot be written.
    bool setString(std::string_view section, std::string_view key, std::string_view value);
    bool setInt(std::string_view section, std::string_view key, int value);
    bool deleteKey(std::string_view section, std::string_view key);

    // A value that overrides the file for this run only and is never written
    // (the command line's --set): "Locate GP2.EXE" and "AutoFile" belong to
    // section "Files", every other key to "Config".
    void setOverride(std::string_view key, std::string_view value);

private:
    std::filesystem::path path_;
    std::vector<std::string> lines_;
    std::vector<std::pair<std::string, std::string>> overrides_;
};

}  // namespace tarvel
