// Linked into the GUI tests of the AddressSanitizer build only.
//
// On an X server without a GPU (Xvfb), Mesa's GLX loads its software driver when Qt creates the
// first window and unloads it again when the display connection closes. The driver keeps some
// bookkeeping for the life of the process, referenced only from its own static data; once the
// module is unmapped nothing points at those blocks any more and LeakSanitizer reports them at
// exit, with frames in "<unknown module>" that no suppression can name. Loading the same driver
// once more with RTLD_NODELETE keeps it mapped until exit, so the blocks stay reachable and are
// not reported. Leaks in our own code are still reported.

#include <dlfcn.h>

namespace {

struct KeepGlDriverLoaded {
    KeepGlDriverLoaded() {
#ifdef ORYX_GL_DRIVER_PATH
        // The handle is deliberately never closed: RTLD_NODELETE pins the driver anyway.
        dlopen(ORYX_GL_DRIVER_PATH, RTLD_LAZY | RTLD_LOCAL | RTLD_NODELETE);
#endif
    }
};

const KeepGlDriverLoaded keepGlDriverLoaded;

}  // namespace
