#include "FileAccess.h"

#include <cerrno>
#include <cstring>

namespace recording {

std::string cannotRead() {
    return std::string("The file cannot be read: ") + std::strerror(errno) + ".";
}

std::string problemOpening(LineSource::Opening opening) {
    using Opening = LineSource::Opening;
    switch (opening) {
        case Opening::OPENED:
            return {};
        case Opening::NOT_FOUND:
            return "The file does not exist.";
        case Opening::FOLDER:
            return "This is a folder.";
        case Opening::NAMED_PIPE:
            return "This is a named pipe, not a file; only files can be replayed.";
        case Opening::DEVICE:
            return "This is a device, not a file; only files can be replayed.";
        case Opening::SOCKET:
            return "This is a socket, not a file; only files can be replayed.";
        case Opening::FAILED:
            break;
    }
    return cannotRead();
}

}  // namespace recording
