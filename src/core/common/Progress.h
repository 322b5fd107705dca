#pragma once
// Progress of a long operation (JAM conversion, import, export), shown by the
// editor's progress window and by the command line on a terminal. Every method
// has a do-nothing default so that a caller that shows nothing passes a plain
// Progress.

#include <string_view>

namespace tarvel {

class Progress {
public:
    virtual ~Progress() = default;
    virtual void setCategory(std::string_view /*label*/) {}      // "Team Data", "Car JAMs", ...
    virtual void setFile(std::string_view /*name*/) {}           // the file being processed
    virtual void setSubImage(int /*index*/, int /*count*/) {}    // "%.2d / %.2d", index from 1
    virtual void setColours(int /*found*/, int /*max*/) {}       // "%.3d      [max:%.3d]"
    virtual void beep() {}                                       // a sub-image has more colours than its table
    virtual bool aborted() { return false; }                     // polled between items and sub-images
};

}  // namespace tarvel
