#include <atomic>
#include <bw/gpu.hpp>

namespace {

std::atomic<int> lastError{bw::gpu::SUCCESS};
std::atomic<bool> failNextActivation{false};

}  // namespace

namespace bw::gpu {

int makeContextCurrent(CUcontext) {
    if (failNextActivation.exchange(false)) {
        lastError = OUT_OF_MEMORY;
        return OUT_OF_MEMORY;
    }
    return SUCCESS;
}

int getLastError() { return lastError.exchange(SUCCESS); }

const char* errorName(int error) {
    switch (error) {
        case SUCCESS:
            return "cudaSuccess";
        case OUT_OF_MEMORY:
            return "cudaErrorMemoryAllocation";
        case NOT_INITIALIZED:
            return "cudaErrorInitializationError";
        case INVALID_CONTEXT:
            return "cudaErrorInvalidContext";
        default:
            return "cudaErrorUnknown";
    }
}

}  // namespace bw::gpu

namespace bw::sim {

void failNextGpuContextActivation() { failNextActivation = true; }

}  // namespace bw::sim
