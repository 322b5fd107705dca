#include "common/Platform.h"

#include <algorithm>
#include <system_error>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <sys/stat.h>
#include <windows.h>
#else
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
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

bool createFileDurably(const std::filesystem::path& name, std::span<const std::uint8_t> data) {
    const int fd = _wopen(name.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY | _O_BINARY, _S_IREAD | _S_IWRITE);
    if (fd < 0) return false;
    bool ok = true;
    for (std::size_t done = 0; ok && done < data.size();) {
        const int n = _write(fd, data.data() + done, unsigned(std::min<std::size_t>(data.size() - done, 1u << 30)));
        ok = n > 0;
        done += ok ? std::size_t(n) : 0;
    }
    ok = ok && _commit(fd) == 0;
    ok = _close(fd) == 0 && ok;
    if (!ok) _wunlink(name.c_str());
    return ok;
}

int terminationRequestDescriptor() { return -1; }

long currentProcessId() { return long(_getpid()); }

bool processMayBeAlive(long pid) {
    HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, DWORD(pid));
    if (!process) return GetLastError() != ERROR_INVALID_PARAMETER;
    const bool running = WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
    CloseHandle(process);
    return running;
}

#else

namespace {

bool syncDescriptor(const std::filesystem::path& path, int flags) {
    const int fd = ::open(path.c_str(), flags);
    if (fd < 0) return false;
    const bool ok = ::fsync(fd) == 0;
    ::close(fd);
    return ok;
}

bool writeAll(int fd, std::span<const std::uint8_t> data) {
    for (std::size_t done = 0; done < data.size();) {
        const ssize_t n = ::write(fd, data.data() + done, data.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += std::size_t(n);
    }
    return ::fsync(fd) == 0;
}

// The data in an unnamed file of the target's folder, linked to its name once
// complete; -1 where the file system has no unnamed files.
int createUnnamed(const std::filesystem::path& name, std::span<const std::uint8_t> data, bool& written) {
    written = false;
#if defined(O_TMPFILE)
    std::filesystem::path folder = name.parent_path();
    if (folder.empty()) folder = ".";
    const int fd = ::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0644);
    if (fd < 0) return -1;
    if (writeAll(fd, data)) {
        const std::string self = "/proc/self/fd/" + std::to_string(fd);
        written = ::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
    }
    ::close(fd);
    return 0;
#else
    (void)name;
    (void)data;
    return -1;
#endif
}

}  // namespace

bool syncFileToDisk(const std::filesystem::path& path) { return syncDescriptor(path, O_RDONLY); }
bool syncFolderToDisk(const std::filesystem::path& folder) { return syncDescriptor(folder, O_RDONLY | O_DIRECTORY); }

bool createFileDurably(const std::filesystem::path& name, std::span<const std::uint8_t> data) {
    bool written = false;
    if (createUnnamed(name, data, written) == 0) return written;
    const int fd = ::open(name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0644);
    if (fd < 0) return false;
    bool ok = writeAll(fd, data);
    ok = ::close(fd) == 0 && ok;
    if (!ok) ::unlink(name.c_str());
    return ok;
}

namespace {
int terminationPipe[2] = {-1, -1};

void onTerminationSignal(int signal) {
    const int saved = errno;
    const unsigned char byte = static_cast<unsigned char>(signal);
    // A full pipe already holds a request; nothing more to say.
    [[maybe_unused]] const auto written = ::write(terminationPipe[1], &byte, 1);
    errno = saved;
}
}  // namespace

int terminationRequestDescriptor() {
    if (terminationPipe[0] >= 0) return terminationPipe[0];
    if (::pipe(terminationPipe) != 0) return -1;
    for (int fd : terminationPipe) {
        ::fcntl(fd, F_SETFD, FD_CLOEXEC);
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    }
    struct sigaction action {};
    action.sa_handler = onTerminationSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
    return terminationPipe[0];
}

long currentProcessId() { return long(::getpid()); }

bool processMayBeAlive(long pid) { return pid > 0 && (::kill(pid_t(pid), 0) == 0 || errno != ESRCH); }

#endif

}  // namespace tarvel
