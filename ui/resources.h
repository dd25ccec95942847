#pragma once

// Registers the resource bundle of the user interface (":/icon/...", ":/images/...",
// ":/font/...") with Qt. Safe to call any number of times.
//
// The bundle is compiled into the static library oryx_ui, and a linker keeps an object of a
// static library only when something refers to it. Calling this function is that reference:
// call it at the start of main(), before any form or image is loaded. (Constructing a Style
// also calls it.)
void initOryxResources();

