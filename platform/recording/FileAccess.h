// Why a recording cannot be read at all, in the words both readers use.
#pragma once

#include <string>

namespace recording {

// Empty when the path names a file that exists; otherwise why not ("The file does not exist.").
std::string problemReaching(const std::string& path);

// After a failed open or read: the system's reason.
std::string cannotRead();

}  // namespace recording
