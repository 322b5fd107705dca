#include "common/IniFile.h"

#include "common/FileIO.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace tarvel {
namespace {

constexpr std::string_view kBlanks = " \t";
// Keys of the command line's --set that live in section "Files"; all others are "Config".
constexpr std::string_view kFilesKeys[] = {"Locate GP2.EXE", "AutoFile"};

std::string_view trim(std::string_view s) {
    auto first = s.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    auto last = s.find_last_not_of(kBlanks);
    return s.substr(first, last - first + 1);
}

char lower(char c) { return (c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : c; }

bool sameName(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return lower(x) == lower(y);
           });
}

// The line without its terminator.
std::string_view body(const std::string& line) {
    std::string_view s = line;
    if (!s.empty() && s.back() == '\n') s.remove_suffix(1);
    if (!s.empty() && s.back() == '\r') s.remove_suffix(1);
    return s;
}

// "[name]" -> name; nullopt for any other line.
std::optional<std::string_view> sectionName(std::string_view line) {
    line = trim(line);
    if (line.empty() || line.front() != '[') return std::nullopt;
    auto close = line.find(']');
    if (close == std::string_view::npos) return trim(line.substr(1));
    return trim(line.substr(1, close - 1));
}

struct KeyLine {
    std::string_view key;
    std::string_view value;
};

std::optional<KeyLine> keyLine(std::string_view line) {
    std::string_view t = trim(line);
    if (t.empty() || t.front() == ';' || t.front() == '[') return std::nullopt;
    auto eq = t.find('=');
    if (eq == std::string_view::npos) return std::nullopt;
    return KeyLine{trim(t.substr(0, eq)), trim(t.substr(eq + 1))};
}

// Where a section's lines are: the header at `header`, its lines up to `end`.
struct SectionSpan {
    std::size_t header;
    std::size_t end;
};

std::optional<SectionSpan> findSection(const std::vector<std::string>& lines, std::string_view section) {
    for (std::size_t i = 0; i < lines.size(); ++i) {
        auto name = sectionName(body(lines[i]));
        if (!name || !sameName(*name, section)) continue;
        std::size_t end = i + 1;
        while (end < lines.size() && !sectionName(body(lines[end]))) ++end;
        return SectionSpan{i, end};
    }
    return std::nullopt;
}

std::optional<std::size_t> findKey(const std::vector<std::string>& lines, SectionSpan span, std::string_view key) {
    for (std::size_t i = span.header + 1; i < span.end; ++i) {
        auto kv = keyLine(body(lines[i]));
        if (kv && sameName(kv->key, key)) return i;
    }
    return std::nullopt;
}

// A value as the profile string reader returns it: trimmed, with one pair of
// matching surrounding quotes removed.
std::string unquote(std::string_view value) {
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front())
        value = value.substr(1, value.size() - 2);
    return std::string(value);
}

// The terminator that new lines get: the one of the file's first line, else LF.
std::string_view lineEnding(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) {
        if (line.size() >= 2 && line.ends_with("\r\n")) return "\r\n";
        if (line.ends_with("\n")) return "\n";
    }
    return "\n";
}

std::string_view overrideSection(std::string_view key) {
    for (std::string_view k : kFilesKeys)
        if (sameName(k, key)) return "Files";
    return "Config";
}

}  // namespace

IniFile::IniFile(std::filesystem::path path) : path_(std::move(path)) { reload(); }

bool IniFile::reload() {
    lines_.clear();
    auto data = readWholeFile(path_);
    if (!data) return false;
    std::string current;
    for (std::uint8_t b : *data) {
        current.push_back(char(b));
        if (b == '\n') {
            lines_.push_back(std::move(current));
            current.clear();
        }
    }
    if (!current.empty()) lines_.push_back(std::move(current));
    return true;
}

bool IniFile::hasKey(std::string_view section, std::string_view key) const {
    for (const auto& [k, v] : overrides_)
        if (sameName(k, key) && sameName(overrideSection(k), section)) return true;
    auto span = findSection(lines_, section);
    return span && findKey(lines_, *span, key);
}

std::string IniFile::getString(std::string_view section, std::string_view key, std::string_view fallback) const {
    for (const auto& [k, v] : overrides_)
        if (sameName(k, key) && sameName(overrideSection(k), section)) return unquote(trim(v));
    auto span = findSection(lines_, section);
    if (!span) return std::string(fallback);
    auto at = findKey(lines_, *span, key);
    if (!at) return std::string(fallback);
    return unquote(keyLine(body(lines_[*at]))->value);
}

int IniFile::getInt(std::string_view section, std::string_view key, int fallback) const {
    if (!hasKey(section, key)) return fallback;
    std::string text = getString(section, key, "");
    std::string_view s = trim(text);
    if (s.empty()) return fallback;
    bool negative = false;
    std::size_t i = 0;
    if (s[i] == '-' || s[i] == '+') negative = s[i++] == '-';
    // Digits accumulate modulo 2^32, as the 32-bit reader does.
    std::uint32_t value = 0;
    for (; i < s.size() && s[i] >= '0' && s[i] <= '9'; ++i) value = value * 10u + std::uint32_t(s[i] - '0');
    if (negative) value = 0u - value;
    return static_cast<int>(value);
}

bool IniFile::setString(std::string_view section, std::string_view key, std::string_view value) {
    reload();   // another process may have written since we read
    const std::string eol(lineEnding(lines_));
    // A last line without terminator gets one before anything follows it.
    auto terminateLast = [&] {
        if (!lines_.empty() && !lines_.back().ends_with("\n")) lines_.back() += eol;
    };
    auto span = findSection(lines_, section);
    if (!span) {
        terminateLast();
        lines_.push_back("[" + std::string(section) + "]" + eol);
        lines_.push_back(std::string(key) + "=" + std::string(value) + eol);
    } else if (auto at = findKey(lines_, *span, key)) {
        std::string& line = lines_[*at];
        std::string_view ending = std::string_view(line).substr(body(line).size());
        std::string keptKey(keyLine(body(line))->key);
        line = keptKey + "=" + std::string(value) + std::string(ending);
    } else {
        // After the section's last non-blank line.
        std::size_t insertAt = span->header + 1;
        for (std::size_t i = span->header + 1; i < span->end; ++i)
            if (!trim(body(lines_[i])).empty()) insertAt = i + 1;
        if (insertAt == lines_.size()) terminateLast();
        lines_.insert(lines_.begin() + std::ptrdiff_t(insertAt), std::string(key) + "=" + std::string(value) + eol);
    }
    std::string text;
    for (const std::string& line : lines_) text += line;
    return writeFileAtomically(path_, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

bool IniFile::setInt(std::string_view section, std::string_view key, int value) {
    return setString(section, key, std::to_string(value));
}

bool IniFile::deleteKey(std::string_view section, std::string_view key) {
    reload();
    auto span = findSection(lines_, section);
    if (!span) return true;
    auto at = findKey(lines_, *span, key);
    if (!at) return true;
    lines_.erase(lines_.begin() + std::ptrdiff_t(*at));
    std::string text;
    for (const std::string& line : lines_) text += line;
    return writeFileAtomically(path_, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

void IniFile::setOverride(std::string_view key, std::string_view value) {
    for (auto& [k, v] : overrides_) {
        if (sameName(k, key)) {
            v = std::string(value);
            return;
        }
    }
    overrides_.emplace_back(std::string(key), std::string(value));
}

}  // namespace tarvel
