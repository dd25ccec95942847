// The GPU side of a camera: its context and the sticky error state that GPU work leaves behind.
// Without a GPU back end the context is null and only the error state is kept.
#pragma once

#include <bw/types.hpp>

namespace bw::gpu {

enum Error : int { SUCCESS = 0, OUT_OF_MEMORY = 2, NOT_INITIALIZED = 3, INVALID_CONTEXT = 201 };

// Makes ctx current for the calling thread. Work the camera queued on the GPU reports its
// failures here, as a real driver does when the context is next used.
int makeContextCurrent(CUcontext ctx);

// The last error, which is cleared by reading it.
int getLastError();

const char* errorName(int error);

}  // namespace bw::gpu

namespace bw::sim {
// Called by a simulated camera that was told to run out of GPU memory: the next context
// activation reports OUT_OF_MEMORY.
void failNextGpuContextActivation();
}  // namespace bw::sim
