#include "TerminalProgress.h"

#include <cstdio>

namespace tarvel::cli {

TerminalProgress::TerminalProgress(Context& context, Style style)
    : err_(context.err), style_(style), enabled_(context.progressToTerminal) {}

TerminalProgress::~TerminalProgress() {
    if (drawn_) err_ << "\n";
}

void TerminalProgress::setCategory(std::string_view label) {
    if (enabled_ && style_ == Lines) err_ << label << "\n";
}

void TerminalProgress::setFile(std::string_view name) {
    if (!enabled_) return;
    if (style_ == Lines) {
        err_ << "  FILE : " << name << "\n";
        return;
    }
    file_ = std::string(name);
    redraw();
}

void TerminalProgress::setSubImage(int index, int count) {
    if (!enabled_ || style_ != InPlace) return;
    char text[32];
    std::snprintf(text, sizeof text, "%.2d / %.2d", index, count);
    image_ = text;
    redraw();
}

void TerminalProgress::setColours(int found, int max) {
    if (!enabled_ || style_ != InPlace) return;
    char text[48];
    std::snprintf(text, sizeof text, "%.3d      [max:%.3d]", found, max);
    colours_ = text;
    redraw();
}

void TerminalProgress::beep() {
    if (enabled_ && style_ == InPlace) err_ << '\a';
}

void TerminalProgress::redraw() {
    err_ << "\r" << file_ << "  " << image_ << "  " << colours_ << "   " << std::flush;
    drawn_ = true;
}

}  // namespace tarvel::cli
