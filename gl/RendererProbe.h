// Start-up check of the OpenGL implementation: which renderer draws the GL views, and the
// settings that follow from it for the whole process.
#pragma once

#include <QString>

#include "RenderSettings.h"

// GL_RENDERER of a context made on an offscreen surface: "llvmpipe (LLVM 15.0.6, 256 bits)",
// "NVIDIA Tegra Orin (nvgpu)/integrated", ... Empty when no context can be made. Needs the
// application object.
QString probeGlRenderer();

// Puts `settings` in force for the GL surfaces and views made from now on: their sample count in
// the default surface format, and the settings as the active ones.
void installRenderSettings(const RenderSettings& settings);

// Chooses the render settings from the override variable or, without a valid one, from the
// renderer `probe` names; installs their sample count in the default surface format and makes
// them the active settings. Call it once the application object exists and before the first GL
// widget does. An invalid override is reported on standard error and ignored.
RenderSettings setUpGlRendering(QString (*probe)() = probeGlRenderer);
