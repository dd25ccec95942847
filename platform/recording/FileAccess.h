// Why a recording cannot be read at all, in the words both readers use.
#pragma once

#include <string>

#include "LineSource.h"

namespace recording {

// Why the path cannot be read as a recording file; empty when it was opened.
std::string problemOpening(LineSource::Opening opening);

// After a failed open or read: the system's reason.
std::string cannotRead();

}  // namespace recording
