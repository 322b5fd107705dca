#pragma once
// Texts the editor derives from the document: the window title with the
// asset counts, and the save-changes question.

#include "carset/CarSetDocument.h"
#include "common/Messages.h"

#include <filesystem>
#include <string>

namespace tarvel {

// The file title (name with extension) of a path, as the window shows it.
std::string fileTitle(const std::filesystem::path& path);

// "Tarvel-32 v1.86 - [ NAME.GP2 ]" ("....." without a file), followed by
// " - W(%d)", " - C(%d)", " - J(%d)", " - H(%d)", " - S(%d)" for every
// non-zero asset count, in that order.
std::string documentTitle(const CarSetDocument& document);

// "Save Changes to %s?" with the upper-cased file title, or "Save Changes to
// Car Set?" for a document that has no file.
Message saveChangesQuestion(const CarSetDocument& document);

}  // namespace tarvel
