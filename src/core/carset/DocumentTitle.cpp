#include "carset/DocumentTitle.h"

#include "carset/AssetKinds.h"

#include <cctype>
#include <cstdio>

namespace tarvel {

std::string fileTitle(const std::filesystem::path& path) { return path.filename().string(); }

std::string documentTitle(const CarSetDocument& document) {
    std::string title = "Tarvel-32 v1.86 - [ ";
    title += document.state.hasFile ? fileTitle(document.state.path) : std::string(".....");
    title += " ]";
    for (const AssetKindInfo& kind : kAssetKinds) {
        const int count = document.set.*kind.count;
        if (count == 0) continue;
        char part[32];
        std::snprintf(part, sizeof part, " - %c(%d)", kind.titleLetter, count);
        title += part;
    }
    return title;
}

Message saveChangesQuestion(const CarSetDocument& document) {
    if (!document.state.hasFile) return Message{MessageId::SaveChangesToCarSet, {}};
    std::string name = fileTitle(document.state.path);
    for (char& c : name) c = char(std::toupper(static_cast<unsigned char>(c)));
    return Message{MessageId::SaveChangesToFile, name};
}

}  // namespace tarvel
