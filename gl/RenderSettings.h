// How the GL views are set up for the OpenGL implementation the process runs on.
//
// A GPU draws the orientation view with 16 samples per pixel at the main window's 25 frames per
// second for next to nothing. A software rasteriser (a virtual machine, a remote desktop, a
// container, Xvfb) spends the CPU on every sample of every frame, and on every pixel of the
// window that Qt composes through OpenGL, so there the view draws without multisampling, only
// when what it shows has changed, and in a native window of its own.
#pragma once

#include <QString>

enum class RenderPath { Hardware, Software };

struct RenderSettings {
    RenderPath path = RenderPath::Hardware;
    int samples = 16;                 // default surface format of every GL surface
    bool redrawOnlyOnChange = false;  // the orientation view skips frames that would not differ
    // A GL widget makes Qt compose its whole top-level window through OpenGL at every update of
    // any widget in it (the chart redraws up to 66 times a second); a GL widget with a native
    // window of its own is composed alone, and only when it draws.
    bool nativeWindow = false;

    static RenderSettings forPath(RenderPath path);

    // The settings in force for the GL views of this process: the hardware ones unless start-up
    // found otherwise (RendererProbe) and installed others.
    static const RenderSettings& active();
    static void setActive(const RenderSettings& settings);
};

// The environment variable that overrides the detection: "software" or "hardware"; unset or
// empty means detect.
inline constexpr const char* kRenderingVariable = "ORYX_GL_RENDERING";

enum class RenderingOverride { None, Software, Hardware, Invalid };

// Reads the override variable's text; letter case and surrounding blanks do not matter.
RenderingOverride parseRenderingOverride(const QString& text);

// Whether a GL_RENDERER string names a renderer that rasterises on the CPU.
bool isSoftwareRenderer(const QString& glRenderer);

// The path for a probed renderer string and the override. A valid override wins; an invalid
// one is ignored, so the renderer decides as if the variable were unset. An empty renderer
// string (no context could be made) keeps the hardware path: nothing is known to be slow.
RenderPath chooseRenderPath(const QString& glRenderer, RenderingOverride override);
