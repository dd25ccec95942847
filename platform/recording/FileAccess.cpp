#include "FileAccess.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

namespace recording {

std::string cannotRead() {
    return std::string("The file cannot be read: ") + std::strerror(errno) + ".";
}

std::string problemReaching(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0)
        return errno == ENOENT ? "The file does not exist." : cannotRead();
    if (S_ISDIR(info.st_mode)) return "This is a folder.";
    return {};
}

}  // namespace recording
