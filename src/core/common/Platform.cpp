#include "common/Platform.h"

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace tarvel {

#if defined(_WIN32)

bool syncFileToDisk(const std::filesystem::path& path) {
    const int fd = _wopen(path.c_str(), _O_RDWR | _O_BINARY);
    if (fd < 0) return false;
    const bool ok = _commit(fd) == 0;
    _close(fd);
    return ok;
}

bool syncFolderToDisk(const std::filesystem::path&) { return true; }

#else

namespace {
bool syncDescriptor(const std::filesystem::path& path, int flags) {
    const int fd = ::open(path.c_str(), flags);
    if (fd < 0) return false;
    const bool ok = ::fsync(fd) == 0;
    ::close(fd);
    return ok;
}
}  // namespace

bool syncFileToDisk(const std::filesystem::path& path) { return syncDescriptor(path, O_RDONLY); }
bool syncFolderToDisk(const std::filesystem::path& folder) { return syncDescriptor(folder, O_RDONLY | O_DIRECTORY); }

#endif

}  // namespace tarvel
