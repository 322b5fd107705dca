#pragma once
// Progress on standard error while it is a terminal: the transfers print one
// line per category and file, the picture commands redraw one line in place.
// Shows nothing when standard error is not a terminal.

#include "Cli.h"

#include "common/Progress.h"

#include <ostream>
#include <string>

namespace tarvel::cli {

class TerminalProgress : public Progress {
public:
    enum Style { Lines, InPlace };
    TerminalProgress(Context& context, Style style);
    ~TerminalProgress() override;
    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;

    // For operations that take an optional progress: nullptr when nothing is shown.
    Progress* shown() { return enabled_ ? this : nullptr; }

    void setCategory(std::string_view label) override;
    void setFile(std::string_view name) override;
    void setSubImage(int index, int count) override;
    void setColours(int found, int max) override;
    void beep() override;

private:
    void redraw();
    std::ostream& err_;
    Style style_;
    bool enabled_;
    std::string file_, image_, colours_;
    bool drawn_ = false;
};

}  // namespace tarvel::cli
