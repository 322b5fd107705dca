#include "carset/DocumentTitle.h"

#include <array>
#include <cctype>
#include <cstdio>

namespace tarvel {

std::string fileTitle(const std::filesystem::path& path) { return path.filename().string(); }

std::string documentTitle(const CarSet& set) {
    std::string title = "Tarvel-32 v1.86 - [ ";
    title += set.document.hasFile ? fileTitle(set.document.path) : std::string(".....");
    title += " ]";
    struct Count {
        char letter;
        int value;
    };
    const std::array<Count, 5> counts{{{'W', set.wheelCount},
                                       {'C', set.cockpitCount},
                                       {'J', set.jamCount},
                                       {'H', set.menuHelmetCount},
                                       {'S', set.soundCount}}};
    for (const Count& c : counts) {
        if (c.value == 0) continue;
        char part[32];
        std::snprintf(part, sizeof part, " - %c(%d)", c.letter, c.value);
        title += part;
    }
    return title;
}

Message saveChangesQuestion(const CarSet& set) {
    if (!set.document.hasFile) return Message{MessageId::SaveChangesToCarSet, {}};
    std::string name = fileTitle(set.document.path);
    for (char& c : name) c = char(std::toupper(static_cast<unsigned char>(c)));
    return Message{MessageId::SaveChangesToFile, name};
}

}  // namespace tarvel
